// The current directory and the environment, which must not decide which SDK is loaded. Changes
// stay until the process ends.
#pragma once

#include <filesystem>
#include <string>

namespace orvane::testing {

/// Sets an environment variable of this process; an empty value removes it.
void setEnvironment(const std::string& name, const std::filesystem::path& value);

/// Prepends the directory to every search path for programs or libraries.
void prependToSearchPaths(const std::filesystem::path& directory);

/// Whether this process has loaded the library.
bool isLoaded(const std::filesystem::path& library);

}  // namespace orvane::testing
