// What "oc_capture doctor" is told on the command line.
#pragma once

#include <string>

#include "oc_capture/subcommand.hpp"

namespace orvane::host {

struct DoctorCommand {
  std::string sdkDirectory;
  bool mayScan = false;  ///< every camera may be opened for a moment
  bool asJson = false;
};

/// The options of "doctor" as a part of the argument parser.
class DoctorOptions : public Subcommand {
 public:
  explicit DoctorOptions(CLI::App& app);

  /// What was asked for; valid once the arguments have been parsed.
  DoctorCommand command() const { return doctor_; }

 private:
  DoctorCommand doctor_;
};

}  // namespace orvane::host
