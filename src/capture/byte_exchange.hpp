// Turning blue-green-red pixels into red-green-blue ones.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvane {

/// Exchanges, in place, the first and the third byte of every 3-byte group that starts below
/// `byteCount`. The buffer holds the whole of its last group.
void exchangeRedAndBlue(std::uint8_t* pixels, std::size_t byteCount);

}  // namespace orvane
