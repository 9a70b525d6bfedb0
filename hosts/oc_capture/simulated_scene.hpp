// "--scene": a recording that simulated cameras look at. It has no effect on real cameras.
#pragma once

#include "oc_capture/command.hpp"

namespace orvane::host {

/// The option takes effect when its value is read, which is before any SDK is loaded. It is wrong
/// when there is no such file, or when the path cannot be passed to the simulated SDKs.
void addSceneOption(CommandOptions& options);

}  // namespace orvane::host
