// The history of "oc_capture watch": points in bounded memory, and their plot over time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "imaging/image.hpp"
#include "imaging/statistics.hpp"

namespace orvane::host {

/// One frame, or the summary of neighbouring frames.
struct WatchPoint {
  double seconds = 0;                 ///< from the watch's start to the last of the frames
  std::optional<double> temperature;  ///< the last one read, degrees Celsius
  FrameStatistics statistics;  ///< mean of the means, smallest, largest, most saturated pixels
};

/// Keeps fewer than `mostPoints` points: as soon as there are so many, pairs of neighbours are
/// merged.
class WatchHistory {
 public:
  void add(const WatchPoint& point);

  const std::vector<WatchPoint>& points() const { return points_; }

  static constexpr std::size_t mostPoints = 8192;

 private:
  void halve();

  std::vector<WatchPoint> points_;
  std::vector<WatchPoint> pending_;  // frames of the next point
  std::size_t framesPerPoint_ = 1;
};

/// Plots of temperature, samples and saturated pixels, one below the other. The history must hold a
/// point.
ScreenImage watchPlot(const WatchHistory& history, const std::string& title);

}  // namespace orvane::host
