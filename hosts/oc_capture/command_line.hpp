// What the user typed, understood as far as that is possible without having seen the cameras.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "common/frame_layout.hpp"
#include "oc_capture/doctor_command.hpp"

namespace orvane::host {

struct ListCommand {
  std::string sdkDirectory;
  bool asJson = false;
};

/// What is not given is left to the camera.
struct RecordCommand {
  std::string sdkDirectory;
  std::string camera;  ///< index or part of the name
  std::optional<int> width;
  std::optional<int> height;
  int bin = 1;
  std::optional<PixelFormat> format;
  std::int64_t exposureUs = 0;
  std::optional<int> gain;
  int offset = 0;
  std::optional<int> frames;               ///< the recording ends after as many frames
  std::optional<std::int64_t> durationUs;  ///< or after this time
  std::filesystem::path file;
  bool mayOverwrite = false;
  std::string observer;
  std::string telescope;
};

/// A text that was asked for in place of any work.
struct HelpText {
  std::string text;
};

using Command = std::variant<ListCommand, RecordCommand, DoctorCommand, HelpText>;

/// Reads the arguments after the program's name, in UTF-8. Throws UsageError with a sentence.
Command parseCommandLine(std::vector<std::string> arguments);

}  // namespace orvane::host
