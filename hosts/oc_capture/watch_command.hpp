// "oc_capture watch": a camera's temperature and the brightness of its frames.
#pragma once

#include "oc_capture/watch_options.hpp"

namespace orvane::host {

/// Watches, writes the plot if one is wanted, and tells about it on standard output.
///
/// Throws UsageError when the camera cannot do what is asked, CameraError when it fails, once the
/// plot of what came before is written, and std::runtime_error when the plot cannot be written.
void watch(const WatchCommand& command);

}  // namespace orvane::host
