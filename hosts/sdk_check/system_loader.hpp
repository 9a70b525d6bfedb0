// Loading libraries with the system's loader, by the same rules as the library loads SDKs, and
// what the loader says when it does not. One source file per system.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "sdk_check/library_file.hpp"

namespace orvane::host {

/// The file name that a library of this base name has on this system.
std::string libraryFileName(const std::string& baseName);

struct LoadResult {
  void* module = nullptr;            ///< stays loaded until the process ends; null on failure
  std::string problem;               ///< the system's own words, in UTF-8
  std::optional<std::int64_t> code;  ///< the system's number, where it has one
};

/// Loads a library by its full path. A library's own start code runs; a system that would show a
/// message box shows none.
LoadResult loadLibrary(const std::filesystem::path& file);

/// Whether the loaded library exports the function.
bool hasFunction(void* module, const std::string& name);

/// Whether it is safe to hand a file that is cut off or damaged to the system's loader.
extern const bool loaderSurvivesDamage;

/// Where a library that another one needs would be taken from.
struct ImportPlace {
  std::filesystem::path file;  ///< empty: it is not found
  bool isSystems = false;      ///< it came from the system's own directories, or is loaded already
};

/// Looks for a library by the name under which `importer` needs it. `sdkFile` is the library that
/// was to be loaded in the first place, `content` what stands in the importer's file.
ImportPlace findImport(const std::string& name, const std::filesystem::path& sdkFile,
                       const std::filesystem::path& importer, const LibraryFile& content);

}  // namespace orvane::host
