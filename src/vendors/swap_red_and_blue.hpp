// Swaps red and blue: turns blue-green-red pixels into red-green-blue ones.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvane {

/// The implementations of the swap.
enum class SwapImplementation {
  Scalar,  ///< runs on every processor
  Ssse3,   ///< needs SSSE3: shuffles 16-byte registers
};

/// Whether this processor can run the implementation.
bool isSupported(SwapImplementation implementation);

/// The fastest implementation that this processor supports.
SwapImplementation fastestSwap();

/// Swaps, in place, the first and the third byte of every 3-byte group that starts below
/// `byteCount`, with the fastest implementation. The buffer holds the whole last group and may have
/// any address; nothing outside the groups is touched.
void swapRedAndBlue(std::uint8_t* pixels, std::size_t byteCount);

/// The same with a given implementation, which must be supported.
void swapRedAndBlue(SwapImplementation implementation, std::uint8_t* pixels, std::size_t byteCount);

}  // namespace orvane
