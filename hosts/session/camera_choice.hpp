// Which camera a user means.
#pragma once

#include <orvane_desktop_camera.hpp>
#include <string>
#include <vector>

namespace orvane::host {

/// Finds a camera by its index, by its name, or by a part of its name that no other camera has, in
/// this order. Ignores case. Throws UsageError, with a sentence that lists the cameras, when none
/// or several fit.
const oc::CameraInfo& chooseCamera(const std::vector<oc::CameraInfo>& cameras,
                                   const std::string& wish);

}  // namespace orvane::host
