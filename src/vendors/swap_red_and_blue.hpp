// Turning blue-green-red pixels into red-green-blue ones, as fast as the processor allows.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvane {

/// The ways to do it, each with what it needs of the processor.
enum class ByteExchange {
  Scalar,  ///< nothing
  Ssse3,   ///< byte shuffles in 16-byte registers
  Avx2,    ///< byte shuffles in 32-byte registers
};

/// Whether this processor, under this operating system, can do it in this way.
bool isSupported(ByteExchange way);

/// The fastest supported way for so many bytes.
ByteExchange fastestByteExchange(std::size_t byteCount);

/// Exchanges, in place, the first and the third byte of every 3-byte group that starts below
/// `byteCount`, in the fastest way. The buffer holds the whole of its last group and may lie at any
/// address; nothing outside the groups is touched.
void exchangeRedAndBlue(std::uint8_t* pixels, std::size_t byteCount);

/// The same in a given way, which must be supported.
void exchangeRedAndBlue(ByteExchange way, std::uint8_t* pixels, std::size_t byteCount);

}  // namespace orvane
