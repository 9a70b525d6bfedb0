// A recording's settings, held against what the chosen camera can do.
#pragma once

#include "common/camera_description.hpp"
#include "oc_capture/camera_session.hpp"
#include "oc_capture/command_line.hpp"

namespace orvane::host {

/// The settings that the command asks for, completed with the camera's own. Throws UsageError with
/// a sentence that says what the camera offers.
CameraSettings settingsFor(const RecordCommand& command, const CameraDescription& camera);

}  // namespace orvane::host
