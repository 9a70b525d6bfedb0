// Which camera a user means.
#pragma once

#include <orvane_desktop_camera.hpp>
#include <string>
#include <vector>

namespace orvane::host {

/// The camera that is meant by an index, or by a name or a part of one that fits a single camera.
/// Upper and lower case are the same. A number that is an index is taken as the index; a camera
/// whose whole name is given is preferred to those that have it as a part of theirs.
///
/// Throws UsageError with a sentence that lists what there is.
const oc::CameraInfo& chooseCamera(const std::vector<oc::CameraInfo>& cameras,
                                   const std::string& wish);

}  // namespace orvane::host
