// From what was typed to the camera that is meant and the settings to open it with.
#pragma once

#include <string>

#include "oc_capture/camera_options.hpp"
#include "session/camera_catalogue.hpp"
#include "session/camera_description.hpp"
#include "session/camera_session.hpp"

namespace orvane::host {

struct ChosenCamera {
  CameraDescription description;
  CameraSettings settings;
};

/// Scans for cameras to use one of them. What failed during the scan goes to standard error: the
/// camera that is meant may be there all the same. Throws CameraError when there is none at all.
CameraCatalogue findCameras(const std::string& sdkDirectory);

/// Scans and chooses. Throws UsageError when the choice fits no camera, or not this one, and
/// CameraError when there is none at all.
ChosenCamera findCamera(const CameraChoice& choice);

}  // namespace orvane::host
