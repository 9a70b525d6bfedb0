// Turning blue-green-red pixels into red-green-blue ones.
#include "capture/byte_exchange.hpp"

#include <utility>

namespace orvane {

void exchangeRedAndBlue(std::uint8_t* pixels, std::size_t byteCount) {
  for (std::size_t i = 0; i < byteCount; i += 3) {
    std::swap(pixels[i], pixels[i + 2]);
  }
}

}  // namespace orvane
