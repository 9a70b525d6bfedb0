// What "oc_capture snap" is told on the command line.
#pragma once

#include <filesystem>
#include <string>

#include "oc_capture/subcommand.hpp"

namespace orvane::host {

struct SnapCommand {
  CameraChoice camera;
  std::filesystem::path file;
  bool isFits = false;  ///< and PNG if not
  bool mayOverwrite = false;
  std::string observer;
  std::string telescope;
  Reporting reporting;
};

/// The options of "snap" as a part of the argument parser.
class SnapOptions : public Subcommand {
 public:
  explicit SnapOptions(CLI::App& app);

  /// What was asked for; valid once the arguments have been parsed. Throws UsageError.
  SnapCommand command() const;

 private:
  SnapCommand snap_;
  CameraTexts camera_;
  std::string file_;
};

}  // namespace orvane::host
