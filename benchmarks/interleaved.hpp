// Measures contenders side by side: in one process, in random order, in many short rounds.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>
#include <numeric>
#include <random>
#include <vector>

namespace orvane::benchmarks {

/// Runs every contender once in each round. Returns their median times, in nanoseconds. The order
/// in a round is random, so that no contender always profits from what another leaves in the
/// caches.
inline std::vector<double> medianTimes(int rounds,
                                       const std::vector<std::function<void()>>& contenders) {
  using Clock = std::chrono::steady_clock;
  static std::minstd_rand random(1);
  std::vector<std::size_t> order(contenders.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::vector<std::vector<double>> times(contenders.size());
  for (int i = 0; i < rounds; ++i) {
    std::shuffle(order.begin(), order.end(), random);
    for (const std::size_t contender : order) {
      const Clock::time_point start = Clock::now();
      contenders[contender]();
      const std::chrono::duration<double, std::nano> spent = Clock::now() - start;
      times[contender].push_back(spent.count());
    }
  }
  std::vector<double> medians;
  for (std::vector<double>& ofOne : times) {
    const auto middle = ofOne.begin() + static_cast<std::ptrdiff_t>(ofOne.size() / 2);
    std::nth_element(ofOne.begin(), middle, ofOne.end());
    medians.push_back(*middle);
  }
  return medians;
}

/// The main() of a benchmark: `run` returns whether all gates held. `usage` begins with the
/// program's name. The exit status is 0, 1 if a gate was missed, and 2 for any other failure.
template <class Run>
int runBenchmark(const char* usage, bool hasItsArguments, Run run) {
  if (!hasItsArguments) {
    std::fprintf(stderr, "%s\n", usage);
    return 2;
  }
  try {
    return run() ? 0 : 1;
  } catch (const std::exception& failure) {
    const auto nameLength = static_cast<int>(std::strcspn(usage, " "));
    std::fprintf(stderr, "%.*s: %s\n", nameLength, usage, failure.what());
    return 2;
  }
}

}  // namespace orvane::benchmarks
