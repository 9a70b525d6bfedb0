// Steps of exposure and gain, for keys, and places on a slider.
#pragma once

#include <cstdint>

namespace orvane::host {

/// The longest exposure that the library takes, microseconds.
constexpr std::int64_t longestExposureUs = 2147483647;

/// The shortest that a slider offers, microseconds: shorter ones are of no use in the night.
constexpr std::int64_t shortestSliderExposureUs = 10;

/// The exposure `steps` steps from this one (negative: shorter), clamped to 1 microsecond and
/// `longestUs`. Ten steps make a factor of ten: 1, 1.25, 1.6, 2, 2.5, 3.2, 4, 5,
/// 6.4, 8, 10. An exposure between two steps goes to the next of them first.
std::int64_t steppedExposure(std::int64_t exposureUs, int steps, std::int64_t longestUs);

/// The place of an exposure on a slider, 0 to 1, on a logarithmic scale.
double exposurePlace(std::int64_t exposureUs, std::int64_t longestUs);

/// The step's exposure nearest to a place on the slider.
std::int64_t exposureAtPlace(double place, std::int64_t longestUs);

/// A range of whole numbers, such as a camera's gain.
struct NumberRange {
  int smallest = 0;
  int largest = 0;

  /// A hundredth of the range, or ten of them for large steps; 1 or more.
  int step(bool isLarge) const;

  /// The number, clamped to the range.
  int clamped(std::int64_t number) const;

  double place(int number) const;
  int atPlace(double place) const;
};

}  // namespace orvane::host
