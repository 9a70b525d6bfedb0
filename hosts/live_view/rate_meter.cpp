// How many frames come a second.
#include "live_view/rate_meter.hpp"

#include <algorithm>

namespace orvane::host {

namespace {

constexpr std::chrono::seconds span{2};

}  // namespace

void RateMeter::add(Clock::time_point when) {
  arrivals_.push_back(when);
  while (arrivals_.size() > 2 && when - arrivals_.front() > span) {
    arrivals_.pop_front();
  }
}

double RateMeter::perSecond(Clock::time_point now) const {
  if (arrivals_.size() < 2) {
    return 0;
  }
  const double intervals = static_cast<double>(arrivals_.size()) - 1;
  const double between =
      std::chrono::duration<double>(arrivals_.back() - arrivals_.front()).count();
  const double silent = std::chrono::duration<double>(now - arrivals_.back()).count();
  // A frame that is overdue counts as one that comes now.
  return 1 / std::max({between / intervals, silent, 1e-6});
}

}  // namespace orvane::host
