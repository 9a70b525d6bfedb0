// Names of files to write: their endings, and whether they may be written.
#include "oc_capture/output_path.hpp"

#include <algorithm>
#include <system_error>

#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

bool hasEnding(const std::filesystem::path& path, const std::string& ending) {
  const std::string actual = utf8FromPath(path.extension());
  return actual.size() == ending.size() && containsIgnoringCase(actual, ending);
}

std::filesystem::path readOutputPath(const std::string& text,
                                     const std::vector<std::string>& endings) {
  std::filesystem::path path = pathFromUtf8(text);
  if (std::none_of(endings.begin(), endings.end(),
                   [&](const std::string& ending) { return hasEnding(path, ending); })) {
    throw UsageError("--out needs a file name that ends in " + alternatives(endings) + ", not " +
                     inQuotes(text) + ".");
  }
  return path;
}

void requireUsable(const std::filesystem::path& file, bool mayOverwrite) {
  std::error_code ignored;
  const std::filesystem::path directory = file.parent_path();
  if (!directory.empty() && !std::filesystem::is_directory(directory, ignored)) {
    throw UsageError("There is no directory " + inQuotes(utf8FromPath(directory)) + ".");
  }
  if (!mayOverwrite && std::filesystem::exists(file, ignored)) {
    throw UsageError(inQuotes(utf8FromPath(file)) +
                     " exists already; name another file or add --overwrite.");
  }
}

}  // namespace orvane::host
