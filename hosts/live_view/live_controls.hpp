// Exposure, gain and offset as keys and sliders change them.
#pragma once

#include <optional>

#include "live_view/control_steps.hpp"
#include "live_view/key_commands.hpp"
#include "live_view/live_session.hpp"
#include "session/camera_description.hpp"

namespace orvane::host {

/// The slider that a mouse moves.
enum class SliderKind { Exposure, Gain, Offset };

/// The offset that the slider offers; the cameras do not tell theirs and refuse what is too much.
constexpr NumberRange offsetSliderRange{0, 300};

/// The longest exposure of the camera, or the library's where the camera tells none.
std::int64_t longestExposureOf(const CameraDescription& camera);

/// The camera's gain, or a range to try where it tells none.
NumberRange gainRangeOf(const CameraDescription& camera);

/// The controls after this command; nothing when it does not concern them.
std::optional<ControlsRequest> controlsAfter(ViewCommand command, const ControlsRequest& now,
                                             const CameraDescription& camera);

/// The controls after a slider was moved to this place, 0 to 1.
ControlsRequest controlsAfter(SliderKind slider, double place, const ControlsRequest& now,
                              const CameraDescription& camera);

/// Where the slider stands, 0 to 1.
double placeOf(SliderKind slider, const ControlsRequest& now, const CameraDescription& camera);

}  // namespace orvane::host
