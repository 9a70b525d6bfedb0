// Loads libraries by the rules by which our library loads SDKs, and finds the libraries that they
// need. One source file per system.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "sdk_check/library_file.hpp"

namespace orvane::host {

/// The file name of a library with this base name.
std::string libraryFileName(const std::string& baseName);

struct LoadResult {
  void* module = nullptr;            ///< null on failure; stays loaded until the process ends
  std::string problem;               ///< the system's message
  std::optional<std::int64_t> code;  ///< the system's error code, if it has one
};

/// Loads a library by its full path, and runs its start code. From now on, the system shows this
/// thread no message boxes about files.
LoadResult loadLibrary(const std::filesystem::path& file);

/// The address of a function that a loaded library exports; null if it exports none of this name.
void* functionNamed(void* module, const std::string& name);

/// Whether the loader reports a damaged file instead of crashing.
extern const bool loaderSurvivesDamage;

/// Where the loader finds a library that another one needs.
struct ImportPlace {
  std::filesystem::path file;  ///< empty if not found
  bool isSystems = false;      ///< from the system's own directories, or already loaded
};

/// Finds the library that the loader would use for an import of `importer`, which has this content,
/// while it loads `sdkFile`.
ImportPlace findImport(const std::string& name, const std::filesystem::path& sdkFile,
                       const std::filesystem::path& importer, const LibraryFile& content);

}  // namespace orvane::host
