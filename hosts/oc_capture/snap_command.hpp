// "oc_capture snap": one frame of a camera, written into a PNG or FITS file.
#pragma once

#include "oc_capture/snap_options.hpp"

namespace orvane::host {

/// Takes the frame, writes the file and tells about it on standard output.
///
/// Throws UsageError when the camera cannot do what is asked, CameraError when it fails or the user
/// stops it before a frame has come, and std::runtime_error when the file cannot be written; the
/// camera is closed then.
void snap(const SnapCommand& command);

}  // namespace orvane::host
