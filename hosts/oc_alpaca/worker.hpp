// A worker process: the only kind of process of this program that loads the makers' SDKs.
#pragma once

#include <string>

namespace orvane::host {

/// Does what the server's commands say, until the server closes the pipe. `memory` is the name of
/// the shared memory for pictures, or "". Returns the exit status.
int runWorker(const std::string& sdkDirectory, const std::string& memory);

}  // namespace orvane::host
