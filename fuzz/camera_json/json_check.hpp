// Holds the description of a camera against an independent JSON parser.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orvane::fuzz {

/// Makes a camera of the bytes, describes it, and reads the description back. Returns the rules
/// that were broken, none when all is well.
std::vector<std::string> checkDescriptionOf(std::span<const std::uint8_t> bytes);

}  // namespace orvane::fuzz
