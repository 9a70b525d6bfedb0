// Frame timing from the time stamps of a recording, and quantiles of measured times.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace orvane::host {

struct FrameTiming {
  double seconds = 0;  ///< from the first frame to the last
  double framesPerSecond = 0;
  double medianInterval = 0;         ///< seconds from frame to frame
  std::int32_t gaps = 0;             ///< intervals of more than one and a half times the median
  std::int64_t missedFrames = 0;     ///< that would have filled the gaps, about
  double longestGap = 0;             ///< seconds
  std::int32_t longestGapAfter = 0;  ///< the number of the frame before it, from 0 on
  std::int32_t stepsBack = 0;        ///< frames with an earlier time than the one before
};

/// The value that this part (0 to 1) of the values does not exceed: the smallest at 0, the median
/// at 0.5, the largest at 1. 0 if there are none. `sorted` is in ascending order.
double quantile(const std::vector<double>& sorted, double part);

/// Time stamps as serTicks() counts. None when there are less than two, when they hold a time that
/// is none (before the year 1 or after 9999), or when the last is no later than the first.
std::optional<FrameTiming> frameTiming(const std::vector<std::int64_t>& ticks);

}  // namespace orvane::host
