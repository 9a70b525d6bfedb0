// The cameras as a table for a person to read.
#pragma once

#include <string>
#include <vector>

#include "session/camera_description.hpp"

namespace orvane::host {

/// One line of headings and one line for each camera, in columns.
std::string cameraTable(const std::vector<CameraDescription>& cameras);

}  // namespace orvane::host
