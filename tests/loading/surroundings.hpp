// What surrounds a process and must not decide which SDK is loaded: its current directory and its
// environment. What a test changes stays changed until its process ends.
#pragma once

#include <filesystem>
#include <string>

namespace orvane::testing {

/// Sets an environment variable of this process; an empty value removes it.
void setEnvironment(const std::string& name, const std::filesystem::path& value);

/// Puts the directory in front of every list of directories in which programs, or libraries, are
/// searched.
void prependToSearchPaths(const std::filesystem::path& directory);

/// Whether this process holds the library, whoever loaded it.
bool isLoaded(const std::filesystem::path& library);

/// The whole content of a file.
std::string contentOf(const std::filesystem::path& file);

/// A path in the form in which oc_library_dir() takes it.
std::string utf8Of(const std::filesystem::path& path);

}  // namespace orvane::testing
