// A contact sheet: some frames of a recording side by side.
#pragma once

#include <string>

#include "formats/ser_reader.hpp"
#include "imaging/frame_correction.hpp"
#include "imaging/image.hpp"
#include "oc_capture/status_line.hpp"

namespace orvane::host {

/// Up to twelve frames from the first to the last, each brightened separately, with its number
/// (from 0) and its time since the first frame. Throws UsageError if the correction does not apply
/// to the frames' format, and std::runtime_error if the file cannot be read.
ScreenImage contactSheet(const SerReader& recording, const FrameCorrection& correction,
                         const std::string& title, const std::string& subtitle, StatusLine& line);

}  // namespace orvane::host
