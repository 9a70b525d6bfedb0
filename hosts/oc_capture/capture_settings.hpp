// A camera's settings, held against what the chosen camera can do.
#pragma once

#include "oc_capture/camera_options.hpp"
#include "session/camera_description.hpp"
#include "session/camera_session.hpp"

namespace orvane::host {

/// The settings that are asked for, completed with the camera's own. Throws UsageError with
/// a sentence that says what the camera offers.
CameraSettings settingsFor(const CameraChoice& choice, const CameraDescription& camera);

}  // namespace orvane::host
