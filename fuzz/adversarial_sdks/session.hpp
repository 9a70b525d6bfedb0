// One run of the library against SDKs that answers.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orvane::fuzz {

/// Calls the thirteen functions in an order, with arguments, and with answers of the SDKs that all
/// follow from the bytes. Returns the rules that were broken, none when all is well.
std::vector<std::string> runSession(std::span<const std::uint8_t> bytes);

}  // namespace orvane::fuzz
