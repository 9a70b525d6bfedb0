// What "oc_capture watch" is told on the command line.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "oc_capture/subcommand.hpp"

namespace orvane::host {

struct WatchCommand {
  CameraChoice camera;
  std::optional<int> frames;               ///< the watch ends after as many frames
  std::optional<std::int64_t> durationUs;  ///< or after this time; with neither on Ctrl-C
  std::optional<std::filesystem::path> plot;
  bool mayOverwrite = false;
  Reporting reporting;
};

/// The options of "watch" as a part of the argument parser.
class WatchOptions : public Subcommand {
 public:
  explicit WatchOptions(CLI::App& app);

  /// What was asked for; valid once the arguments have been parsed. Throws UsageError.
  WatchCommand command() const;

 private:
  WatchCommand watch_;
  CameraTexts camera_;
  std::optional<std::string> frames_, seconds_, plot_;
};

}  // namespace orvane::host
