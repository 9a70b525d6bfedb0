// The free space of a disk.
#include "system/disk_space.hpp"

#include <limits>
#include <system_error>

namespace orvane::host {

std::optional<std::int64_t> freeSpace(const std::filesystem::path& directory) {
  // GCC's library for Windows takes the directory before the last separator, and leaves a number
  // unknown if it is 0.
  constexpr auto unknown = std::numeric_limits<std::uintmax_t>::max();
  std::error_code error;
  const std::filesystem::space_info space = std::filesystem::space(directory / "", error);
  if (error || space.capacity == unknown) {
    return std::nullopt;
  }
  return space.available == unknown ? 0 : static_cast<std::int64_t>(space.available);
}

}  // namespace orvane::host
