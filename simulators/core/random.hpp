// Pseudo-random numbers that depend on a counter only, so that any part of a frame can be rendered
// again, in any order.
#pragma once

#include <cstdint>

namespace orvane::sim {

// Mixes all bits of a counter (the finaliser of SplitMix64).
constexpr std::uint64_t mix(std::uint64_t counter) {
  counter += 0x9E3779B97F4A7C15U;
  counter = (counter ^ (counter >> 30U)) * 0xBF58476D1CE4E5B9U;
  counter = (counter ^ (counter >> 27U)) * 0x94D049BB133111EBU;
  return counter ^ (counter >> 31U);
}

// At least 0, less than 1.
constexpr double unitInterval(std::uint64_t bits) {
  return static_cast<double>(bits >> 11U) * 0x1p-53;
}

}  // namespace orvane::sim
