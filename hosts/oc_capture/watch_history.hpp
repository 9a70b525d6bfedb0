// What a watch has seen, in bounded memory.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "imaging/statistics.hpp"

namespace orvane::host {

/// Some neighbouring frames together.
struct WatchPoint {
  double seconds = 0;                 ///< since the watch's start, of the last of the frames
  std::optional<double> temperature;  ///< degrees Celsius, the last that was read
  FrameStatistics statistics;  ///< mean of the means, smallest, largest, most saturated pixels
};

/// As many points as fit; when there is no more room, each two neighbours become one.
class WatchHistory {
 public:
  void add(const WatchPoint& point);

  const std::vector<WatchPoint>& points() const { return points_; }

  static constexpr std::size_t mostPoints = 8192;

 private:
  void halve();

  std::vector<WatchPoint> points_;
  std::vector<WatchPoint> pending_;  // too few yet to be a point
  std::size_t framesPerPoint_ = 1;
};

}  // namespace orvane::host
