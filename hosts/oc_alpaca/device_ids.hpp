// The unique ids of cameras, which clients remember.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "oc_alpaca/worker_protocol.hpp"

namespace orvane::host {

/// The place of the file with the ids for this user; empty if the user has no profile.
std::filesystem::path deviceIdsFile();

/// The ids of these cameras, in their order: random when a camera is first seen, and from then on
/// read from the file. The SDKs tell no serial numbers, so a camera is known by its name and, among
/// those of one name, by its place in the scan. Throws std::runtime_error, with a sentence that
/// names the file, if that cannot be read or written.
std::vector<std::string> deviceIds(const std::filesystem::path& file,
                                   const std::vector<oc::CameraInfo>& cameras);

}  // namespace orvane::host
