// One run of the library against adversarial SDKs.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orvane::fuzz {

/// Calls the thirteen functions. Their order, their arguments and the answers of the SDKs follow
/// from the bytes. Returns the violations, empty if there are none.
std::vector<std::string> runSession(std::span<const std::uint8_t> bytes);

}  // namespace orvane::fuzz
