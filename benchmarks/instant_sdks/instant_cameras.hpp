// The number of cameras of each instant SDK.
#pragma once

#include <cstdlib>

namespace orvane::benchmarks {

/// 1, or the value of the environment variable ORVANE_INSTANT_CAMERAS, at most 128. Read once,
/// because a benchmark measures the functions that call this one.
inline int instantCameraCount() {
  static const int count = [] {
    const char* const text =
        std::getenv("ORVANE_INSTANT_CAMERAS");  // NOLINT(concurrency-mt-unsafe)
    const int wanted = text == nullptr ? 1 : std::atoi(text);
    return wanted < 1 ? 1 : wanted > 128 ? 128 : wanted;
  }();
  return count;
}

}  // namespace orvane::benchmarks
