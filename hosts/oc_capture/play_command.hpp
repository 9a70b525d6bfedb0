// "oc_capture play": what a recording holds.
#pragma once

#include "oc_capture/play_options.hpp"

namespace orvane::host {

/// Tells about the recording on standard output and writes its contact sheet, if one is wanted.
///
/// Throws UsageError when what is asked cannot be done with this recording, and std::runtime_error
/// when a file cannot be read or written.
void play(const PlayCommand& command);

}  // namespace orvane::host
