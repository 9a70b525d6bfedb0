// The SDK directory, the cameras that a scan finds there, and facts derived from their
// descriptions.
#pragma once

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <orvane_desktop_camera.hpp>
#include <string>

namespace orvane::host {

/// The full path of the directory of SDKs that the user named, with this system's separators,
/// because Windows loads libraries only by full path. Throws UsageError when there is no such
/// directory.
std::filesystem::path fullSdkDirectory(const std::string& named);

/// The scan in a form that can be shown: names and error are valid UTF-8 (other bytes become
/// U+FFFD), and a pixel size that is not a finite number is NaN.
oc::Scan presentable(oc::Scan found);

/// Scans with the SDKs in this directory. Returns a presentable scan. Throws UsageError when there
/// is no such directory.
oc::Scan readCatalogue(const std::string& sdkDirectory);

/// The library's description of a presentable camera, its keys in the library's order. A pixel size
/// that is not a number is null.
nlohmann::ordered_json descriptionOf(const oc::CameraInfo& camera);

/// Both are unknown for a camera that another program uses.
inline bool hasGainRange(const oc::CameraInfo& camera) {
  return camera.minGain < camera.maxGain;
}
inline bool hasLongestExposure(const oc::CameraInfo& camera) {
  return camera.maxExposureUs > 0;
}

/// The gain if the user has not given any: a third of the range.
int usualGain(const oc::CameraInfo& camera);

/// The middle of the range. With it, simulated cameras show a recording unchanged.
int middleGain(const oc::CameraInfo& camera);

}  // namespace orvane::host
