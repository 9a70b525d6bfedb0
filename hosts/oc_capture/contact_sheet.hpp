// A recording at a glance: some of its frames side by side.
#pragma once

#include <string>

#include "formats/ser_reader.hpp"
#include "imaging/frame_correction.hpp"
#include "imaging/image.hpp"
#include "oc_capture/status_line.hpp"

namespace orvane::host {

/// Up to twelve frames from the first to the last, each brightened for itself, with its number
/// (from 0 on) and its time since the first. Throws UsageError where the frames cannot be corrected
/// so, std::runtime_error where they cannot be read.
ScreenImage contactSheet(const SerReader& recording, const FrameCorrection& correction,
                         const std::string& title, const std::string& subtitle, StatusLine& line);

}  // namespace orvane::host
