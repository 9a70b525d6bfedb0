// Names of files to write: their endings, and whether they may be written.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace orvane::host {

/// The path that was given with "--out". Throws UsageError when its ending is none of these; upper
/// and lower case are the same.
std::filesystem::path readOutputPath(const std::string& text,
                                     const std::vector<std::string>& endings);

/// True when the path ends so; upper and lower case are the same.
bool hasEnding(const std::filesystem::path& path, const std::string& ending);

/// Throws UsageError when the file's directory is missing, or when the file exists and may not be
/// overwritten.
void requireUsable(const std::filesystem::path& file, bool mayOverwrite);

}  // namespace orvane::host
