// The free space of a disk.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace orvane::host {

/// The bytes that this user can still write into the directory; none if the system does not tell.
std::optional<std::int64_t> freeSpace(const std::filesystem::path& directory);

}  // namespace orvane::host
