// Exposure, gain and offset: their steps for keys, and their places on sliders.
#pragma once

#include <cstdint>
#include <optional>

#include "live_view/key_commands.hpp"
#include "live_view/live_session.hpp"

namespace orvane::host {

/// The longest exposure that the library takes, microseconds.
constexpr std::int64_t longestExposureUs = 2147483647;

/// The exposure `steps` steps from this one (negative: shorter), clamped to 1 microsecond and
/// `longestUs`. Ten steps make a factor of ten: 1, 1.25, 1.6, 2, 2.5, 3.2, 4, 5, 6.4, 8, 10. The
/// first step from an exposure between two steps leads to the one beside it.
std::int64_t steppedExposure(std::int64_t exposureUs, int steps, std::int64_t longestUs);

/// The place of an exposure on a slider, 0 to 1, on a logarithmic scale; and the exposure step
/// nearest to a place.
double exposurePlace(std::int64_t exposureUs, std::int64_t longestUs);
std::int64_t exposureAtPlace(double place, std::int64_t longestUs);

/// A range of whole numbers, such as a camera's gain.
struct NumberRange {
  int smallest = 0;
  int largest = 0;

  /// A hundredth of the range, or ten of them for large steps; 1 or more.
  int step(bool isLarge) const;

  int clamped(std::int64_t number) const;

  /// A number's place on a slider, 0 to 1; and the number at a place.
  double place(int number) const;
  int atPlace(double place) const;
};

enum class SliderKind { Exposure, Gain, Offset };

/// The longest exposure of the camera, or the library's if the camera reports none.
std::int64_t longestExposureOf(const oc::CameraInfo& camera);

/// The camera's range of gains, or a usual one if it reports none.
NumberRange gainRangeOf(const oc::CameraInfo& camera);

/// The controls after this command; none if it changes no control.
std::optional<Controls> controlsAfter(ViewCommand command, const Controls& now,
                                      const oc::CameraInfo& camera);

/// The controls after a slider was moved to this place, 0 to 1.
Controls controlsAfter(SliderKind slider, double place, const Controls& now,
                       const oc::CameraInfo& camera);

/// The slider's place, 0 to 1.
double placeOf(SliderKind slider, const Controls& now, const oc::CameraInfo& camera);

}  // namespace orvane::host
