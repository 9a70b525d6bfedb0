// What "oc_capture bench" is told on the command line.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "oc_capture/subcommand.hpp"

namespace orvane::host {

struct BenchCommand {
  CameraChoice camera;          ///< with no camera: all; with no format: all that the camera has
  std::int64_t durationUs = 0;  ///< of each measurement
  std::optional<std::filesystem::path> chart;
  bool mayOverwrite = false;
  Reporting reporting;
};

/// The options of "bench" as a part of the argument parser.
class BenchOptions : public Subcommand {
 public:
  explicit BenchOptions(CLI::App& app);

  /// What was asked for; valid once the arguments have been parsed. Throws UsageError.
  BenchCommand command() const;

 private:
  BenchCommand bench_;
  CameraTexts camera_;
  std::string seconds_ = "2";
  std::optional<std::string> chart_;
};

}  // namespace orvane::host
