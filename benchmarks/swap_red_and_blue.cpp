// How fast a frame's red and blue are swapped: by the library's implementations, a plain loop, and
// two libraries that a host might use instead. The limit is the fastest pass over the same bytes
// that reads and writes each of them once.
//
//     swap_red_and_blue
//
// All contenders of a size work in place on one buffer, in random order. The gates compare the
// medians. The exit status is 1 if a gate is missed.
#include "vendors/swap_red_and_blue.hpp"

#include <libyuv.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "interleaved.hpp"

namespace orvane {
namespace {

struct FrameSize {
  int width, height;

  std::size_t bytes() const {
    return std::size_t{3} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  }
  bool operator==(const FrameSize&) const = default;
};

constexpr FrameSize planetary{1936, 1096};  // 6.4 MB: larger than most second-level caches
constexpr FrameSize largest{9576, 6388};    // 183 MB: larger than any cache
constexpr FrameSize frameSizes[] = {{640, 480}, planetary, {3096, 2080}, largest};

void ours(std::uint8_t* pixels, FrameSize size) {
  swapRedAndBlue(pixels, size.bytes());
}

void oursScalar(std::uint8_t* pixels, FrameSize size) {
  swapRedAndBlue(SwapImplementation::Scalar, pixels, size.bytes());
}

void plainLoop(std::uint8_t* pixels, FrameSize size) {
  for (const std::uint8_t* const end = pixels + size.bytes(); pixels != end; pixels += 3) {
    std::swap(pixels[0], pixels[2]);
  }
}

void libyuvPass(std::uint8_t* pixels, FrameSize size) {
  libyuv::RAWToRGB24(pixels, 3 * size.width, pixels, 3 * size.width, size.width, size.height);
}

// Two headers over the same bytes: with one, OpenCV would copy the frame first.
void openCvPass(std::uint8_t* pixels, FrameSize size) {
  const cv::Mat from(size.height, size.width, CV_8UC3, pixels);
  cv::Mat to(size.height, size.width, CV_8UC3, pixels);
  cv::cvtColor(from, to, cv::COLOR_BGR2RGB);
}

// XOR of aligned blocks. Bytes at the frame's ends that make no full block stay as they are: less
// than two blocks in millions of bytes.
template <class Register, int registersInBlock>
__attribute__((target("avx2"))) void xorPass(std::uint8_t* pixels, FrameSize size) {
  const std::uint8_t* const end = pixels + size.bytes();
  const std::size_t past = reinterpret_cast<std::uintptr_t>(pixels) % sizeof(Register);
  pixels += (sizeof(Register) - past) % sizeof(Register);
  constexpr std::ptrdiff_t blockBytes = sizeof(Register) * registersInBlock;
  for (; end - pixels >= blockBytes; pixels += blockBytes) {
    auto* const block = reinterpret_cast<Register*>(pixels);
#pragma GCC unroll 8
    for (int i = 0; i < registersInBlock; ++i) {
      block[i] ^= 0x55;
    }
  }
}

using Sse2 = std::uint8_t __attribute__((vector_size(16), may_alias));
using Avx2 = std::uint8_t __attribute__((vector_size(32), may_alias));

enum class Kind { Ours, Other, Reported, Limit };

const struct Contender {
  const char* name;
  Kind kind;
  void (*pass)(std::uint8_t* pixels, FrameSize size);
} contenders[] = {
    {"library, SSSE3", Kind::Ours, ours},
    {"library, scalar", Kind::Ours, oursScalar},
    {"plain loop", Kind::Reported, plainLoop},
    {"libyuv", Kind::Other, libyuvPass},
    {"OpenCV, 1 thread", Kind::Other, openCvPass},
    {"XOR, SSE2 x 4", Kind::Limit, xorPass<Sse2, 4>},
    {"XOR, AVX2 x 1", Kind::Limit, xorPass<Avx2, 1>},
    {"XOR, AVX2 x 4", Kind::Limit, xorPass<Avx2, 4>},
    {"XOR, AVX2 x 8", Kind::Limit, xorPass<Avx2, 8>},
    {"OpenCV, threads", Kind::Reported, openCvPass},  // the last: it is measured after the others
};

// Where frames lie: at a 64-byte boundary, and one byte beyond it.
const struct Alignment {
  const char* name;
  std::size_t offset;
} alignments[] = {{"aligned", 0}, {"odd", 1}};

std::vector<std::uint8_t> randomBytes(std::size_t count) {
  std::minstd_rand random(1);
  std::vector<std::uint8_t> bytes(count);
  std::generate(bytes.begin(), bytes.end(),
                [&] { return static_cast<std::uint8_t>(random() >> 16); });
  return bytes;
}

// Whether the pass does what the plain loop does.
bool isRight(const Contender& contender) {
  constexpr FrameSize size{641, 37};
  std::vector<std::uint8_t> expected = randomBytes(size.bytes());
  std::vector<std::uint8_t> got = expected;
  plainLoop(expected.data(), size);
  contender.pass(got.data(), size);
  return got == expected;
}

// The speed of every contender, GB/s. Rounds are short, some 20 MB, because a long one would
// contain pauses in which the system runs other programs: several passes over a small frame, or a
// strip of a large one. The contenders take strip after strip, so no cache holds the next one.
std::vector<double> speedsOf(FrameSize size, std::uint8_t* pixels) {
  constexpr std::size_t roundBytes = 20'000'000;
  const std::size_t strips = std::max<std::size_t>(1, size.bytes() / roundBytes);
  const FrameSize strip{size.width, size.height / static_cast<int>(strips)};
  const std::size_t passes = std::max<std::size_t>(1, roundBytes / size.bytes());
  std::size_t rounds = 0;
  std::vector<std::function<void()>> repeated;
  for (const Contender& contender : contenders) {
    repeated.emplace_back([&, pass = contender.pass] {
      std::uint8_t* const start = pixels + rounds++ % strips * (strip.bytes() / 64 * 64);
      for (std::size_t i = 0; i < passes; ++i) {
        pass(start, strip);
      }
    });
  }
  const std::function<void()> openCvThreads = repeated.back();
  repeated.pop_back();
  cv::setNumThreads(1);
  std::vector<double> times = benchmarks::medianTimes(201, repeated);
  cv::setNumThreads(-1);
  times.push_back(benchmarks::medianTimes(201, {openCvThreads})[0]);

  for (double& time : times) {
    time = static_cast<double>(strip.bytes() * passes) / time;
  }
  return times;
}

// Prints a size's table and its gates. Returns whether all of them hold.
bool report(FrameSize size, Alignment alignment, std::uint8_t* buffer) {
  const std::vector<double> speeds = speedsOf(size, buffer + alignment.offset);
  double limit = 0;
  for (std::size_t i = 0; i < speeds.size(); ++i) {
    limit = contenders[i].kind == Kind::Limit ? std::max(limit, speeds[i]) : limit;
  }
  const std::string name = std::to_string(size.width) + "x" + std::to_string(size.height);
  std::printf("\n  %s, %.1f MB, %s\n", name.c_str(), static_cast<double>(size.bytes()) / 1e6,
              alignment.name);
  for (std::size_t i = 0; i < speeds.size(); ++i) {
    const Contender& contender = contenders[i];
    std::printf("    %-18s %7.2f GB/s %6.2f of the limit%s\n", contender.name, speeds[i],
                speeds[i] / limit,
                contender.kind == Kind::Limit || isRight(contender) ? "" : "  (result is wrong)");
  }

  bool areHeld = true;
  const auto hold = [&](const std::string& what, double ratio, double least) {
    const std::string text = name + " " + alignment.name + ": library " + what;
    std::printf("  %-62s %6.2f, at least %.2f: %s\n", text.c_str(), ratio, least,
                ratio >= least ? "yes" : "NO");
    areHeld = areHeld && ratio >= least;
  };
  const double library = speeds[0];
  if (size == planetary) {
    hold("of the limit", library / limit, 0.60);
  } else if (size == largest) {
    hold("of the limit", library / limit, 0.80);
  }
  for (std::size_t i = 0; i < speeds.size(); ++i) {
    if (contenders[i].kind == Kind::Other) {
      // 1.5 times another library's speed, or nine tenths of the limit if that library is too near
      // to the limit. In the largest frame all of them run at the speed of memory.
      const double wanted = size == planetary
                                ? std::max(1.0, std::min(1.5, 0.9 * limit / speeds[i]))
                            : size == largest ? 0.90
                                              : 1.0;
      hold(std::string("against ") + contenders[i].name, library / speeds[i], wanted);
    }
  }
  return areHeld;
}

bool run() {
  if (fastestSwap() != SwapImplementation::Ssse3 || __builtin_cpu_supports("avx2") == 0) {
    throw std::runtime_error("the gates are for processors with SSSE3 and, for the limit, AVX2");
  }
  std::vector<std::uint8_t> bytes = randomBytes(largest.bytes() + 128);
  const std::size_t past = reinterpret_cast<std::uintptr_t>(bytes.data()) % 64;
  bool areHeld = true;
  for (const FrameSize size : frameSizes) {
    for (const Alignment alignment : alignments) {
      areHeld = report(size, alignment, bytes.data() + (64 - past) % 64) && areHeld;
    }
  }
  return areHeld;
}

}  // namespace
}  // namespace orvane

int main() {
  return orvane::benchmarks::runBenchmark("swap_red_and_blue", true, orvane::run);
}
