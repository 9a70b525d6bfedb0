// "oc_capture record": a camera's frames, written into a SER file.
#pragma once

#include "oc_capture/record_options.hpp"

namespace orvane::host {

/// Records, writes the preview beside the recording, and tells about it on standard output.
///
/// Throws UsageError when the camera cannot do what is asked, CameraError when it fails and
/// std::runtime_error when a file does; the frames recorded before are in a valid file then, and
/// the camera is closed.
void record(const RecordCommand& command);

}  // namespace orvane::host
