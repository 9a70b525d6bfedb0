// What "oc_capture record" is told on the command line.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "oc_capture/subcommand.hpp"

namespace orvane::host {

struct RecordCommand {
  CameraChoice camera;
  std::optional<int> frames;               ///< the recording ends after as many frames
  std::optional<std::int64_t> durationUs;  ///< or after this time
  std::int64_t waitingBytes = 0;           ///< frames that wait to be written may take as much
  std::filesystem::path file;
  bool mayOverwrite = false;
  std::string observer;
  std::string telescope;
  Reporting reporting;
};

/// The options of "record" as a part of the argument parser.
class RecordOptions : public Subcommand {
 public:
  explicit RecordOptions(CLI::App& app);

  /// What was asked for; valid once the arguments have been parsed. Throws UsageError.
  RecordCommand command() const;

 private:
  RecordCommand record_;
  CameraTexts camera_;
  std::optional<std::string> frames_, seconds_;
  std::string memory_ = "256", file_;
};

}  // namespace orvane::host
