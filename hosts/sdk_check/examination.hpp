// Examines a maker's SDK where it lies: the file, whether it loads, and what it lacks. No camera is
// touched.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "sdk_check/library_file.hpp"
#include "sdk_check/sdk_functions.hpp"

namespace orvane::host {

/// A library that the SDK needs, or that another such library needs.
struct ImportFinding {
  std::string name;
  std::string neededBy;        ///< the file name of the library that needs it
  std::filesystem::path file;  ///< where it is; empty where that is not known
  bool isMissing = false;
  std::string problem;  ///< one sentence about why the file that was found cannot serve, or ""

  bool isFine() const { return !isMissing && problem.empty(); }
};

enum class LoadOutcome {
  NotTried,
  Failed,
  Loaded,
};

struct SdkFindings {
  Sdk sdk;
  std::filesystem::path file;  ///< full path
  bool isPresent = false;      ///< there is something of this name; all below is empty otherwise
  std::string problem;         ///< one sentence about what is wrong with the file, or ""
  LibraryFile content;
  LoadOutcome load = LoadOutcome::NotTried;
  std::string loadProblem;                    ///< the system's own words
  std::optional<std::int64_t> loadCode;       ///< the system's number, where it has one
  std::vector<std::string> missingFunctions;  ///< known of a loaded SDK only
  std::vector<ImportFinding> imports;         ///< the SDK's own first

  /// It loads and has every function that the library calls.
  bool isHealthy() const { return load == LoadOutcome::Loaded && missingFunctions.empty(); }
};

/// Examines the SDK in this directory, given by its full path. An SDK that loads stays loaded.
SdkFindings examineSdk(const Sdk& sdk, const std::filesystem::path& directory);

}  // namespace orvane::host
