// The file that a command writes: "--out" and "--overwrite".
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "oc_capture/command.hpp"
#include "system/file.hpp"

namespace orvane::host {

struct OutputPath {
  std::filesystem::path path;  ///< empty when no file is wanted
  bool mayOverwrite = false;

  bool isGiven() const { return !path.empty(); }
  Existing existing() const { return mayOverwrite ? Existing::Replace : Existing::Refuse; }
};

/// The help texts of the two options, and the allowed endings of the file's name.
struct OutputOption {
  const char* type;
  const char* description;
  std::vector<std::string> endings;
  Presence presence = Presence::Optional;
};

void addOutputOptions(CommandOptions& options, OutputPath& output, const OutputOption& texts);

/// True when the path has this ending. Ignores case.
bool hasEnding(const std::filesystem::path& path, const std::string& ending);

/// Throws UsageError if a file is wanted, and its directory is missing, or it exists and must not
/// be replaced. Throws std::runtime_error if another program is writing it.
void requireUsable(const OutputPath& output);

}  // namespace orvane::host
