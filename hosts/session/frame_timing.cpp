// Frame timing from the time stamps of a recording, and quantiles of measured times.
#include "session/frame_timing.hpp"

#include <algorithm>
#include <cmath>

namespace orvane::host {

namespace {

constexpr double ticksPerSecond = 1e7;
constexpr std::int64_t endOfTime = 3'155'378'975'999'999'999;  // of the year 9999

bool isTime(std::int64_t ticks) {
  return ticks > 0 && ticks <= endOfTime;
}

}  // namespace

double quantile(const std::vector<double>& sorted, double part) {
  if (sorted.empty()) {
    return 0;
  }
  const auto rank = static_cast<std::size_t>(std::ceil(part * static_cast<double>(sorted.size())));
  return sorted[std::clamp<std::size_t>(rank, 1, sorted.size()) - 1];
}

std::optional<FrameTiming> frameTiming(const std::vector<std::int64_t>& ticks) {
  if (ticks.size() < 2 || !std::all_of(ticks.begin(), ticks.end(), isTime) ||
      ticks.back() <= ticks.front()) {
    return std::nullopt;
  }
  std::vector<double> intervals;
  for (std::size_t frame = 1; frame < ticks.size(); ++frame) {
    intervals.push_back(static_cast<double>(ticks[frame] - ticks[frame - 1]) / ticksPerSecond);
  }
  std::vector<double> sorted = intervals;
  std::sort(sorted.begin(), sorted.end());

  FrameTiming timing;
  timing.seconds = static_cast<double>(ticks.back() - ticks.front()) / ticksPerSecond;
  timing.framesPerSecond = static_cast<double>(intervals.size()) / timing.seconds;
  timing.medianInterval = quantile(sorted, 0.5);
  for (std::size_t frame = 0; frame < intervals.size(); ++frame) {
    const double interval = intervals[frame];
    timing.stepsBack += interval < 0 ? 1 : 0;
    // If most intervals are 0, there is no usual interval to compare the others with.
    if (timing.medianInterval > 0 && interval > 1.5 * timing.medianInterval) {
      ++timing.gaps;
      timing.missedFrames += std::llround(interval / timing.medianInterval) - 1;
      if (interval > timing.longestGap) {
        timing.longestGap = interval;
        timing.longestGapAfter = static_cast<std::int32_t>(frame);
      }
    }
  }
  return timing;
}

}  // namespace orvane::host
