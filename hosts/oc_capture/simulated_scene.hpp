// "--scene": a recording that simulated cameras look at. Real cameras know nothing of it.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace orvane::host {

/// Adds the option to a command that uses cameras. It takes effect while the arguments are parsed,
/// which is before any SDK is loaded. Throws UsageError for a file that is not there or cannot be
/// named to the simulated SDKs.
void addSceneOption(CLI::App& command);

}  // namespace orvane::host
