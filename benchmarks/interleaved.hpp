// Measures two contenders side by side: in one process, in random order, in many short rounds.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <random>
#include <vector>

namespace orvane::benchmarks {

/// Median times of one round, nanoseconds.
struct Medians {
  double ours;
  double floor;
};

inline double medianOf(std::vector<double> times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

inline double nanosecondsOf(const std::function<void()>& round) {
  const auto start = std::chrono::steady_clock::now();
  round();
  const std::chrono::duration<double, std::nano> spent = std::chrono::steady_clock::now() - start;
  return spent.count();
}

/// Runs both `rounds` times. The order in a round is random, so that neither contender always
/// profits from what the other leaves in the caches.
inline Medians timeSideBySide(int rounds, const std::function<void()>& ours,
                              const std::function<void()>& floor) {
  static std::minstd_rand random(1);
  std::vector<double> oursTimes;
  std::vector<double> floorTimes;
  for (int i = 0; i < rounds; ++i) {
    if ((random() & 64U) != 0) {
      oursTimes.push_back(nanosecondsOf(ours));
      floorTimes.push_back(nanosecondsOf(floor));
    } else {
      floorTimes.push_back(nanosecondsOf(floor));
      oursTimes.push_back(nanosecondsOf(ours));
    }
  }
  return {medianOf(std::move(oursTimes)), medianOf(std::move(floorTimes))};
}

}  // namespace orvane::benchmarks
