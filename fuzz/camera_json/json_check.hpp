// Checks the JSON description of a camera with an independent parser.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orvane::fuzz {

/// Makes a camera from the bytes, describes it, and parses the description. Returns the violations,
/// empty if there are none.
std::vector<std::string> checkDescriptionOf(std::span<const std::uint8_t> bytes);

}  // namespace orvane::fuzz
