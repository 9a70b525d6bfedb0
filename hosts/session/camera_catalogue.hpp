// The cameras that a scan found, described.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "session/camera_description.hpp"

namespace orvane::host {

/// A camera whose description cannot be read is left out, with a word about it among the problems.
struct CameraCatalogue {
  std::vector<std::string> libraries;  ///< the SDKs that were loaded
  std::string problems;                ///< what failed, "; " between two; "" if nothing did
  std::vector<CameraDescription> cameras;
  nlohmann::ordered_json json;  ///< an array with the same cameras as the library describes them
};

/// Scans with the SDKs in this directory. Throws UsageError when there is no such directory.
CameraCatalogue readCatalogue(const std::string& sdkDirectory);

}  // namespace orvane::host
