// "oc_capture doctor": whether the makers' SDKs are there, load, and have all that is needed.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace orvane::host {

struct DoctorCommand {
  std::string sdkDirectory;
  bool mayScan = false;  ///< every camera may be opened for a moment
  bool asJson = false;
};

/// Adds the command to the program's others; what the user gives with it goes into `command`.
CLI::App* addDoctorCommand(CLI::App& app, DoctorCommand& command);

/// Writes what was found to standard output. Returns the exit status: 1 when an SDK that is present
/// cannot be used, or when the scan failed.
int examineSdks(const DoctorCommand& command);

}  // namespace orvane::host
