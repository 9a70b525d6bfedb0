// Transposing a frame for the network server, compared with copying it.
#include <cstdio>
#include <cstring>
#include <vector>

#include "interleaved.hpp"
#include "oc_alpaca/transpose.hpp"

namespace {

using namespace orvane::host;

void measure(PixelFormat format, const char* name) {
  const FrameLayout layout{4144, 2822, format};
  const Region region{0, 0, layout.width, layout.height};
  std::vector<std::uint8_t> frame(frameBytes(layout), 7);
  std::vector<std::uint8_t> out(frame.size(), 1);
  constexpr int rounds = 41;
  const auto times = orvane::benchmarks::medianTimes(
      rounds, {[&] { transposeRegion(frame, layout, region, out); },
               [&] { std::memcpy(out.data(), frame.data(), frame.size()); }});
  const auto size = static_cast<double>(frame.size());
  std::printf("  %-6s %5.2f GB/s, a copy %5.2f GB/s, ratio %.2f\n", name, size / times[0],
              size / times[1], times[1] / times[0]);
}

}  // namespace

int main() {
  return orvane::benchmarks::runBenchmark("transpose_frame", true, [] {
    measure(PixelFormat::Raw16, "raw16");
    measure(PixelFormat::Raw8, "raw8");
    measure(PixelFormat::Rgb24, "rgb24");
    return true;
  });
}
