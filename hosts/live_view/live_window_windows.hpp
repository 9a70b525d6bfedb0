// The window: turns keys and mouse into commands for the camera, and frames into pictures.
#pragma once

#include "live_view/live_session.hpp"

namespace orvane::host {

/// Opens the window, starts the camera's thread and handles messages until the user closes the
/// window. Throws std::runtime_error.
void runLiveWindow(LiveOptions options);

}  // namespace orvane::host
