// Shared by the instant SDKs: the makers' SDKs with functions that return at once.
#pragma once

#include <cstdlib>

#include "simulated_sdk.hpp"

/// Defines a function that does nothing and returns 0. The list names the types of its arguments.
#define RETURNS_ZERO(result, name, ...) \
  result name(__VA_ARGS__) {            \
    return 0;                           \
  }

namespace orvane::benchmarks {

/// The size of every camera's frames, unless the SDK has prepared frames.
constexpr int instantWidth = 64;
constexpr int instantHeight = 48;

/// The number of cameras of each instant SDK: 1, or the value of the environment variable
/// ORVANE_INSTANT_CAMERAS, at most 128. Read once, because a benchmark measures the functions that
/// call this one.
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
