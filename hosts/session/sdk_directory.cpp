// The directory of SDKs that the user named.
#include "session/sdk_directory.hpp"

#include <system_error>

#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

std::filesystem::path fullSdkDirectory(const std::string& named) {
  const std::filesystem::path directory = pathFromUtf8(named);
  std::error_code ignored;
  if (!std::filesystem::is_directory(directory, ignored)) {
    throw UsageError("There is no directory " + inQuotes(named) + ".");
  }
  return std::filesystem::absolute(directory).make_preferred();
}

}  // namespace orvane::host
