// When the frames of a recording arrived: their times, the gaps between them, and quantiles.
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

FrameStamps::System FrameStamps::add(Steady arrival, System arrivalTime) {
  if (!first_) {
    first_.emplace(arrival, arrivalTime);
  }
  return first_->second + std::chrono::round<System::duration>(arrival - first_->first);
}

double quantile(const std::vector<double>& sorted, double part) {
  if (sorted.empty()) {
    return 0;
  }
  const auto rank = static_cast<std::size_t>(std::ceil(part * static_cast<double>(sorted.size())));
  return sorted[std::clamp<std::size_t>(rank, 1, sorted.size()) - 1];
}

std::span<const FrameGap> GapFinder::add(double interval) {
  foundCount_ = 0;
  intervals_[static_cast<std::size_t>(added_) % latest] = interval;
  ++added_;
  const std::size_t known = std::min(static_cast<std::size_t>(added_), latest);
  if (known < judged) {
    return {};
  }
  std::array<double, latest> ordered = intervals_;
  const auto median = ordered.begin() + static_cast<std::ptrdiff_t>((known - 1) / 2);
  std::nth_element(ordered.begin(), median, ordered.begin() + static_cast<std::ptrdiff_t>(known));
  frameTime_ = *median > 0 || exposure_ > 0 ? std::max(*median, exposure_) : 0;
  if (known == judged) {
    for (std::size_t frame = 0; frame < judged; ++frame) {
      judge(intervals_[frame], static_cast<std::int64_t>(frame));
    }
  } else {
    judge(interval, added_ - 1);
  }
  return {found_.data(), foundCount_};
}

void GapFinder::judge(double interval, std::int64_t after) {
  // If most intervals are 0, there is no usual interval to compare the others with.
  if (frameTime_ <= 0 || interval <= mostFrameTimes * frameTime_) {
    return;
  }
  found_[foundCount_++] = {interval, after};
  ++count_.gaps;
  count_.missedFrames += std::llround(interval / frameTime_) - 1;
  if (interval > count_.longestGap) {
    count_.longestGap = interval;
    count_.longestGapAfter = after;
  }
}

std::optional<FrameTiming> frameTiming(const std::vector<std::int64_t>& ticks,
                                       std::int64_t exposureUs) {
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
  GapFinder finder(exposureUs);
  for (const double interval : intervals) {
    timing.stepsBack += interval < 0 ? 1 : 0;
    finder.add(interval);
  }
  static_cast<GapCount&>(timing) = finder.count();
  return timing;
}

}  // namespace orvane::host
