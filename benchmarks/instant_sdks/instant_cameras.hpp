// How many cameras each instant SDK has.
#pragma once

#include <cstdlib>

namespace orvane::benchmarks {

/// 1, or what the environment variable ORVANE_INSTANT_CAMERAS says, at most 128: asked once, for a
/// benchmark times the functions that call this.
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
