// When the frames of a recording arrived: their times, the gaps between them, and quantiles.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace orvane::host {

/// The time stamps of a recording's frames. They go on by the steady clock, because the system's
/// clock may be set in the middle of a recording.
class FrameStamps {
 public:
  using Steady = std::chrono::steady_clock::time_point;
  using System = std::chrono::system_clock::time_point;

  /// The time stamp of the next frame, from its arrival by both clocks.
  System add(Steady arrival, System arrivalTime);

 private:
  std::optional<std::pair<Steady, System>> first_;
};

/// An interval in which frames are missing.
struct FrameGap {
  double seconds = 0;
  std::int64_t after = 0;  ///< number of the frame before it, from 0
};

/// All gaps of a recording.
struct GapCount {
  std::int64_t gaps = 0;
  std::int64_t missedFrames = 0;     ///< about as many as would have filled the gaps
  double longestGap = 0;             ///< seconds
  std::int64_t longestGapAfter = 0;  ///< number of the frame before it, from 0
};

/// Finds gaps while frames arrive. A gap is an interval of more than three frame times. The frame
/// time is the median of the latest intervals, but at least the exposure. The first five intervals
/// are judged together, because fewer do not tell what is usual.
class GapFinder {
 public:
  /// An exposure of 0 is unknown.
  explicit GapFinder(std::int64_t exposureUs = 0)
      : exposure_(static_cast<double>(exposureUs) / 1e6) {}

  /// Adds the seconds from one frame to the next. Returns the gaps that this reveals, until the
  /// next call.
  std::span<const FrameGap> add(double interval);

  /// 0 until five intervals are known, and where most of them are 0.
  double frameTime() const { return frameTime_; }

  const GapCount& count() const { return count_; }

  /// How many frame times may pass without a frame.
  static constexpr double mostFrameTimes = 3;

 private:
  static constexpr std::size_t judged = 5;
  static constexpr std::size_t latest = 63;

  void judge(double interval, std::int64_t after);

  double exposure_;
  double frameTime_ = 0;
  std::array<double, latest> intervals_{};
  std::int64_t added_ = 0;
  std::array<FrameGap, judged> found_{};
  std::size_t foundCount_ = 0;
  GapCount count_;
};

struct FrameTiming : GapCount {
  double seconds = 0;  ///< from the first frame to the last
  double framesPerSecond = 0;
  double medianInterval = 0;   ///< seconds from frame to frame
  std::int32_t stepsBack = 0;  ///< frames with an earlier time than the one before
};

/// A quantile of values in ascending order: the smallest for part 0, the median for 0.5, the
/// largest for 1. Returns 0 if there are no values.
double quantile(const std::vector<double>& sorted, double part);

/// The timing of a recording with these time stamps, in the ticks of serTicks(). None if there are
/// fewer than two, if one is before the year 1 or after 9999, or if the last is not later than the
/// first. An exposure of 0 is unknown.
std::optional<FrameTiming> frameTiming(const std::vector<std::int64_t>& ticks,
                                       std::int64_t exposureUs = 0);

}  // namespace orvane::host
