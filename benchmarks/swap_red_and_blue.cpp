// How fast a frame's red and blue are swapped: by the library's implementations, the plain loop and
// two libraries that a host might use instead. The physical limit is the fastest pass over the same
// bytes that reads and writes each of them once.
//
//     swap_red_and_blue [GOOGLE-BENCHMARK-OPTIONS]
//
// All contenders of a size work in place on one buffer, interleaved in random order. The gates
// compare the medians. Ends with status 1 when a gate is missed.
#include "vendors/swap_red_and_blue.hpp"

#include <benchmark/benchmark.h>
#include <immintrin.h>
#include <libyuv.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvane {
namespace {

struct FrameSize {
  int width, height;

  std::size_t bytes() const {
    return std::size_t{3} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  }
  std::string name() const { return std::to_string(width) + "x" + std::to_string(height); }
};

constexpr FrameSize planetary{1936, 1096};  // 6.4 MB: larger than most second-level caches
constexpr FrameSize largest{9576, 6388};    // 183 MB: larger than any cache
constexpr FrameSize frameSizes[] = {{640, 480}, planetary, {3096, 2080}, largest};

using Pass = void (*)(std::uint8_t* pixels, FrameSize size);

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

void openCvSerial(std::uint8_t* pixels, FrameSize size) {
  cv::setNumThreads(1);
  openCvPass(pixels, size);
}

void openCvThreads(std::uint8_t* pixels, FrameSize size) {
  cv::setNumThreads(-1);
  openCvPass(pixels, size);
}

// Bytes of the frame's end that make no full block stay as they are: a block in millions.
template <int registersInBlock>
__attribute__((target("avx2"))) void xorAvx2(std::uint8_t* pixels, FrameSize size) {
  const std::uint8_t* const end = pixels + size.bytes();
  pixels += (32 - reinterpret_cast<std::uintptr_t>(pixels) % 32) % 32;
  const __m256i pattern = _mm256_set1_epi8(0x55);
  for (; end - pixels >= 32 * registersInBlock; pixels += 32 * registersInBlock) {
    auto* const block = reinterpret_cast<__m256i*>(pixels);
#pragma GCC unroll 8
    for (int i = 0; i < registersInBlock; ++i) {
      _mm256_store_si256(block + i, _mm256_xor_si256(_mm256_load_si256(block + i), pattern));
    }
  }
  _mm256_zeroupper();
}

template <int registersInBlock>
void xorSse2(std::uint8_t* pixels, FrameSize size) {
  const std::uint8_t* const end = pixels + size.bytes();
  pixels += (16 - reinterpret_cast<std::uintptr_t>(pixels) % 16) % 16;
  const __m128i pattern = _mm_set1_epi8(0x55);
  for (; end - pixels >= 16 * registersInBlock; pixels += 16 * registersInBlock) {
    auto* const block = reinterpret_cast<__m128i*>(pixels);
#pragma GCC unroll 8
    for (int i = 0; i < registersInBlock; ++i) {
      _mm_store_si128(block + i, _mm_xor_si128(_mm_load_si128(block + i), pattern));
    }
  }
}

enum class Kind { Ours, Other, Limit, Reported };

struct Contender {
  const char* name;
  Kind kind;
  Pass pass;
};

const Contender contenders[] = {
    {"library, SSSE3", Kind::Ours, ours},
    {"library, scalar", Kind::Ours, oursScalar},
    {"plain loop", Kind::Reported, plainLoop},
    {"libyuv", Kind::Other, libyuvPass},
    {"OpenCV, 1 thread", Kind::Other, openCvSerial},
    {"OpenCV, threads", Kind::Reported, openCvThreads},
    {"XOR, SSE2 x 4", Kind::Limit, xorSse2<4>},
    {"XOR, AVX2 x 1", Kind::Limit, xorAvx2<1>},
    {"XOR, AVX2 x 4", Kind::Limit, xorAvx2<4>},
    {"XOR, AVX2 x 8", Kind::Limit, xorAvx2<8>},
};

// Where frames lie: at a 64-byte boundary, and one byte beyond it.
struct Alignment {
  const char* name;
  std::size_t offset;
};
constexpr Alignment alignments[] = {{"aligned", 0}, {"odd", 1}};

class Buffer {
 public:
  Buffer() : bytes_(largest.bytes() + 128) {
    std::minstd_rand random(1);
    for (std::uint8_t& byte : bytes_) {
      byte = static_cast<std::uint8_t>(random() >> 16);
    }
  }

  std::uint8_t* at(Alignment alignment) {
    const std::size_t past = reinterpret_cast<std::uintptr_t>(bytes_.data()) % 64;
    return bytes_.data() + (64 - past) % 64 + alignment.offset;
  }

 private:
  std::vector<std::uint8_t> bytes_;
};

// The same for all contenders: chosen by a first run's time, it would be one that a busy moment of
// the machine has chosen, and one pass alone starts with another contender's bytes in the caches.
benchmark::IterationCount passesInRow(FrameSize size) {
  constexpr std::size_t bytes = 200'000'000;
  return static_cast<benchmark::IterationCount>(std::max<std::size_t>(2, bytes / size.bytes()));
}

std::string runName(FrameSize size, Alignment alignment, const Contender& contender) {
  return size.name() + "/" + alignment.name + "/" + contender.name;
}

// Whether the pass does what the plain loop does.
bool isRight(const Contender& contender) {
  constexpr FrameSize size{641, 37};
  std::vector<std::uint8_t> expected(size.bytes());
  std::minstd_rand random(2);
  std::generate(expected.begin(), expected.end(),
                [&] { return static_cast<std::uint8_t>(random() >> 16); });
  std::vector<std::uint8_t> got = expected;
  plainLoop(expected.data(), size);
  contender.pass(got.data(), size);
  return got == expected;
}

// Keeps every run's time, in nanoseconds a pass.
class Collector : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& /*context*/) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
        times_[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
      }
    }
  }

  double median(const std::string& name) {
    std::vector<double>& times = times_.at(name);
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
  }

 private:
  std::map<std::string, std::vector<double>> times_;
};

class Gates {
 public:
  void hold(const std::string& what, double ratio, double least) {
    const bool isHeld = ratio >= least;
    std::printf("  %-62s %6.2f, at least %.2f: %s\n", what.c_str(), ratio, least,
                isHeld ? "yes" : "NO");
    areHeld_ = areHeld_ && isHeld;
  }
  bool areHeld() const { return areHeld_; }

 private:
  bool areHeld_ = true;
};

// Prints a size's table and holds its ratios against the gates.
void report(FrameSize size, Alignment alignment, Collector& collector, Gates& gates) {
  const auto speed = [&](const Contender& contender) {
    return static_cast<double>(size.bytes()) /
           collector.median(runName(size, alignment, contender));
  };
  double limit = 0;
  for (const Contender& contender : contenders) {
    if (contender.kind == Kind::Limit) {
      limit = std::max(limit, speed(contender));
    }
  }
  std::printf("\n  %s, %.1f MB, %s\n", size.name().c_str(), static_cast<double>(size.bytes()) / 1e6,
              alignment.name);
  for (const Contender& contender : contenders) {
    std::printf("    %-18s %7.2f GB/s %6.2f of the limit%s\n", contender.name, speed(contender),
                speed(contender) / limit,
                contender.kind == Kind::Limit || isRight(contender) ? "" : "  (result is wrong)");
  }
  const std::string where = size.name() + " " + alignment.name + ": ";
  const double library = speed(contenders[0]);
  const bool isPlanetary = size.width == planetary.width;
  if (isPlanetary) {
    gates.hold(where + "library of the limit", library / limit, 0.40);
  }
  const bool isLargest = size.width == largest.width;
  if (isLargest) {
    gates.hold(where + "library of the limit", library / limit, 0.70);
  }
  for (const Contender& contender : contenders) {
    if (contender.kind == Kind::Other) {
      // 1.5 times another library's speed, or nine tenths of the limit if that library is too near
      // to the limit. In the largest frame all of them run at the speed of memory, which varies.
      const double wanted = isPlanetary
                                ? std::max(1.0, std::min(1.5, 0.9 * limit / speed(contender)))
                            : isLargest ? 0.85
                                        : 1.0;
      gates.hold(where + "library against " + contender.name, library / speed(contender), wanted);
    }
  }
}

bool run(int count, char** arguments) {
  if (fastestSwap() != SwapImplementation::Ssse3 || __builtin_cpu_supports("avx2") == 0) {
    throw std::runtime_error("the gates are for processors with SSSE3 and, for the limit, AVX2");
  }
  std::vector<std::string> words{arguments[0], "--benchmark_enable_random_interleaving=true",
                                 "--benchmark_repetitions=21"};
  words.insert(words.end(), arguments + 1, arguments + count);
  std::vector<char*> wordPointers;
  wordPointers.reserve(words.size());
  for (std::string& word : words) {
    wordPointers.push_back(word.data());
  }
  int wordCount = static_cast<int>(words.size());
  benchmark::Initialize(&wordCount, wordPointers.data());

  static Buffer buffer;
  for (const FrameSize size : frameSizes) {
    for (const Alignment alignment : alignments) {
      for (const Contender& contender : contenders) {
        benchmark::RegisterBenchmark(
            runName(size, alignment, contender).c_str(),
            [size, alignment, pass = contender.pass](benchmark::State& state) {
              for ([[maybe_unused]] const auto turn : state) {
                pass(buffer.at(alignment), size);
                benchmark::ClobberMemory();
              }
            })
            ->Iterations(passesInRow(size))
            ->UseRealTime();
      }
    }
  }
  Collector collector;
  benchmark::RunSpecifiedBenchmarks(&collector);

  Gates gates;
  for (const FrameSize size : frameSizes) {
    for (const Alignment alignment : alignments) {
      report(size, alignment, collector, gates);
    }
  }
  return gates.areHeld();
}

}  // namespace
}  // namespace orvane

int main(int count, char** arguments) {
  try {
    return orvane::run(count, arguments) ? 0 : 1;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "swap_red_and_blue: %s\n", failure.what());
    return 2;
  }
}
