// What the fuzzers check. The bytes of an input determine a run. Each check returns the violations,
// empty if there are none.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orvane::fuzz {

/// Runs the library against adversarial SDKs: calls the thirteen functions. Their order, their
/// arguments and the answers of the SDKs follow from the bytes.
std::vector<std::string> runSession(std::span<const std::uint8_t> bytes);

/// Makes a camera from the bytes, describes it, and parses the description with an independent JSON
/// parser.
std::vector<std::string> checkDescriptionOf(std::span<const std::uint8_t> bytes);

/// Reads the bytes as the Host header and the parameters of a request to the network server.
std::vector<std::string> checkRequest(std::span<const std::uint8_t> bytes);

}  // namespace orvane::fuzz
