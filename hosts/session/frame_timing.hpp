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
  std::int64_t missedFrames = 0;     ///< about as many as would have filled the gaps
  double longestGap = 0;             ///< seconds
  std::int32_t longestGapAfter = 0;  ///< number of the frame before it, from 0
  std::int32_t stepsBack = 0;        ///< frames with an earlier time than the one before
};

/// A quantile of values in ascending order: the smallest for part 0, the median for 0.5, the
/// largest for 1. Returns 0 if there are no values.
double quantile(const std::vector<double>& sorted, double part);

/// The timing of a recording with these time stamps, in the ticks of serTicks(). None if there are
/// fewer than two, if one is before the year 1 or after 9999, or if the last is not later than the
/// first.
std::optional<FrameTiming> frameTiming(const std::vector<std::int64_t>& ticks);

}  // namespace orvane::host
