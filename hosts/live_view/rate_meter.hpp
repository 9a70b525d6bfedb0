// How many frames come a second.
#pragma once

#include <chrono>
#include <deque>

namespace orvane::host {

class RateMeter {
 public:
  using Clock = std::chrono::steady_clock;

  /// Notes that a frame came.
  void add(Clock::time_point when);

  /// The rate over the last two seconds, or over the last two frames where they are farther apart.
  /// It falls when no further frame comes. 0 before the second frame.
  double perSecond(Clock::time_point now) const;

  void clear() { arrivals_.clear(); }

 private:
  std::deque<Clock::time_point> arrivals_;
};

}  // namespace orvane::host
