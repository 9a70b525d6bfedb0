// What "oc_capture play" is told on the command line.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "oc_capture/subcommand.hpp"

namespace orvane::host {

struct PlayCommand {
  std::filesystem::path file;
  std::optional<std::filesystem::path> sheet;
  bool mayOverwrite = false;
  FrameCorrection correction;
  Reporting reporting;
};

/// The options of "play" as a part of the argument parser.
class PlayOptions : public Subcommand {
 public:
  explicit PlayOptions(CLI::App& app);

  /// What was asked for; valid once the arguments have been parsed. Throws UsageError.
  PlayCommand command() const;

 private:
  PlayCommand play_;
  CorrectionTexts correction_;
  std::string file_;
  std::optional<std::string> sheet_;
};

}  // namespace orvane::host
