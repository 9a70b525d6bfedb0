// From what was typed to the camera that is meant and the settings to open it with.
#include "oc_capture/chosen_camera.hpp"

#include <iostream>

#include "oc_capture/capture_settings.hpp"
#include "session/camera_choice.hpp"
#include "system/failures.hpp"

namespace orvane::host {

CameraCatalogue findCameras(const std::string& sdkDirectory) {
  CameraCatalogue catalogue = readCatalogue(sdkDirectory);
  if (!catalogue.problems.empty()) {
    std::cerr << "oc_capture: " << catalogue.problems << "\n";
  }
  if (catalogue.cameras.empty()) {
    throw CameraError("No camera was found.");
  }
  return catalogue;
}

ChosenCamera findCamera(const CameraChoice& choice) {
  const CameraCatalogue catalogue = findCameras(choice.sdkDirectory);
  const CameraDescription& camera = chooseCamera(catalogue.cameras, choice.camera);
  return {camera, settingsFor(choice, camera)};
}

}  // namespace orvane::host
