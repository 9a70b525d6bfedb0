// The cameras that a scan found, and what follows from their descriptions.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <orvane_desktop_camera.hpp>
#include <string>

namespace orvane::host {

/// The scan with texts to show: names and error are valid UTF-8 (other bytes become U+FFFD), and a
/// pixel size that is not a number is NaN.
oc::Scan presentable(oc::Scan found);

/// Scans with the SDKs in this directory. Returns what was found, presentable. Throws UsageError
/// when there is no such directory.
oc::Scan readCatalogue(const std::string& sdkDirectory);

/// A presentable camera as the library describes it, the keys in their order. A pixel size that is
/// not a number is null.
nlohmann::ordered_json descriptionOf(const oc::CameraInfo& camera);

/// A camera that another program uses tells neither of these.
inline bool hasGainRange(const oc::CameraInfo& camera) {
  return camera.minGain < camera.maxGain;
}
inline bool hasLongestExposure(const oc::CameraInfo& camera) {
  return camera.maxExposureUs > 0;
}

/// The gain for a user who has given none: a third of the range.
int usualGain(const oc::CameraInfo& camera);

}  // namespace orvane::host
