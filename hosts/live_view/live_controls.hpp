// Exposure, gain and offset: what keys and sliders change.
#pragma once

#include <optional>

#include "live_view/control_steps.hpp"
#include "live_view/key_commands.hpp"
#include "live_view/live_session.hpp"

namespace orvane::host {

/// The slider that a mouse moves.
enum class SliderKind { Exposure, Gain, Offset };

/// The slider's range of offsets. Cameras do not tell theirs; they refuse an offset that is too
/// large.
constexpr NumberRange offsetSliderRange{0, 300};

/// The longest exposure of the camera, or the library's if the camera tells none.
std::int64_t longestExposureOf(const oc::CameraInfo& camera);

/// The camera's range of gains, or a usual one if it tells none.
NumberRange gainRangeOf(const oc::CameraInfo& camera);

/// The controls after this command; none if it changes no control.
std::optional<ControlsRequest> controlsAfter(ViewCommand command, const ControlsRequest& now,
                                             const oc::CameraInfo& camera);

/// The controls after a slider was moved to this place, 0 to 1.
ControlsRequest controlsAfter(SliderKind slider, double place, const ControlsRequest& now,
                              const oc::CameraInfo& camera);

/// The slider's place, 0 to 1.
double placeOf(SliderKind slider, const ControlsRequest& now, const oc::CameraInfo& camera);

}  // namespace orvane::host
