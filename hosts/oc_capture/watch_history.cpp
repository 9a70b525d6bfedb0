// What a watch has seen, in bounded memory.
#include "oc_capture/watch_history.hpp"

#include <algorithm>
#include <span>

namespace orvane::host {

namespace {

WatchPoint together(std::span<const WatchPoint> points) {
  WatchPoint all = points.back();
  double sum = 0;
  for (const WatchPoint& point : points) {
    sum += point.statistics.mean;
    all.statistics.smallest = std::min(all.statistics.smallest, point.statistics.smallest);
    all.statistics.largest = std::max(all.statistics.largest, point.statistics.largest);
    all.statistics.saturated = std::max(all.statistics.saturated, point.statistics.saturated);
  }
  all.statistics.mean = sum / static_cast<double>(points.size());
  return all;
}

}  // namespace

void WatchHistory::add(const WatchPoint& point) {
  pending_.push_back(point);
  if (pending_.size() < framesPerPoint_) {
    return;
  }
  points_.push_back(together(pending_));
  pending_.clear();
  if (points_.size() == mostPoints) {
    halve();
  }
}

void WatchHistory::halve() {
  for (std::size_t index = 0; index < mostPoints / 2; ++index) {
    points_[index] = together(std::span(points_).subspan(2 * index, 2));
  }
  points_.resize(mostPoints / 2);
  framesPerPoint_ *= 2;
}

}  // namespace orvane::host
