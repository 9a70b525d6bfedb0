// The directory of SDKs that the user named.
#pragma once

#include <filesystem>
#include <string>

namespace orvane::host {

/// The directory's full path with this system's separators, because Windows loads libraries only by
/// full path. Throws UsageError when there is no such directory.
std::filesystem::path fullSdkDirectory(const std::string& named);

}  // namespace orvane::host
