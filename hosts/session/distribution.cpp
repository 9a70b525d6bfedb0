// What a set of measured values is like.
#include "session/distribution.hpp"

#include <algorithm>
#include <cmath>

namespace orvane::host {

double quantile(const std::vector<double>& sorted, double part) {
  if (sorted.empty()) {
    return 0;
  }
  const auto rank = static_cast<std::size_t>(std::ceil(part * static_cast<double>(sorted.size())));
  return sorted[std::clamp<std::size_t>(rank, 1, sorted.size()) - 1];
}

}  // namespace orvane::host
