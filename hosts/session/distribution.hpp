// What a set of measured values is like.
#pragma once

#include <vector>

namespace orvane::host {

/// The value that this part (0 to 1) of the values does not exceed: the smallest at 0, the median
/// at 0.5, the largest at 1. 0 when there are none. `sorted` is in ascending order.
double quantile(const std::vector<double>& sorted, double part);

}  // namespace orvane::host
