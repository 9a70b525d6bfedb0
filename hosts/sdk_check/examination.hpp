// Examines a maker's SDK: its file, whether it loads, and what it lacks. Opens no camera.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "sdk_check/library_file.hpp"
#include "sdk_check/sdk_functions.hpp"
#include "sdk_check/system_loader.hpp"

namespace orvane::host {

/// A library that the SDK needs, or that another such library needs.
struct ImportFinding {
  std::string name;
  std::string neededBy;        ///< file name of the library that needs it
  std::filesystem::path file;  ///< empty if not known
  bool isMissing = false;
  std::string problem;  ///< one sentence: why the file that was found cannot be used; or ""
  std::string cure;     ///< what the SDK's user can do about it; empty if it is fine

  bool isFine() const { return !isMissing && problem.empty(); }
};

struct SdkFindings {
  Sdk sdk;
  std::filesystem::path file;  ///< full path
  bool isPresent = false;      ///< otherwise everything below is empty
  LibraryFile content;
  std::optional<LoadResult> load;             ///< empty if loading was not tried
  std::vector<std::string> missingFunctions;  ///< only if the SDK was loaded
  std::vector<ImportFinding> imports;         ///< each followed by its own imports

  bool isLoaded() const { return load && load->module != nullptr; }

  /// It loads and has every function that the library calls.
  bool isHealthy() const { return isLoaded() && missingFunctions.empty(); }
};

/// Examines the SDK in this directory, given by its full path. An SDK that loads stays loaded.
SdkFindings examineSdk(const Sdk& sdk, const std::filesystem::path& directory);

/// Throws std::runtime_error with the cure if this directory, given by its full path, has the file
/// of an SDK that could crash the system's loader, and with it this process.
void refuseSdksThatCrashTheLoader(const std::filesystem::path& directory);

}  // namespace orvane::host
