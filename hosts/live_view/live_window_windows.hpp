// The window: turns keys and mouse into commands for the camera, and frames into pictures.
#pragma once

#include <functional>

#include "live_view/live_session.hpp"
#include "live_view/live_settings.hpp"

namespace orvane::host {

/// Opens the window, starts the camera's thread and handles messages until the user closes the
/// window. Asks for the directory of SDKs if there is none. `save` is called when the window
/// closes, with what is to be remembered. Throws std::runtime_error.
void runLiveWindow(LiveOptions options, RememberedSettings settings,
                   std::function<void(const RememberedSettings&)> save);

}  // namespace orvane::host
