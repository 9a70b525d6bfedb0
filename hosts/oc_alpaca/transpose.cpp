// Cuts a region out of a frame and transposes it.
#include "oc_alpaca/transpose.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace orvane::host {

namespace {

// In squares of this side, both the rows that are read and the columns that are written stay in the
// processor's cache.
constexpr std::size_t side = 32;

template <std::size_t pixelBytes>
void transposePixels(const std::uint8_t* from, std::size_t rowBytes, std::size_t width,
                     std::size_t height, std::uint8_t* to) {
  for (std::size_t left = 0; left < width; left += side) {
    const std::size_t right = std::min(left + side, width);
    for (std::size_t top = 0; top < height; top += side) {
      const std::size_t bottom = std::min(top + side, height);
      for (std::size_t x = left; x < right; ++x) {
        std::uint8_t* out = to + (x * height + top) * pixelBytes;
        const std::uint8_t* in = from + top * rowBytes + x * pixelBytes;
        for (std::size_t y = top; y < bottom; ++y) {
          std::memcpy(out, in, pixelBytes);
          out += pixelBytes;
          in += rowBytes;
        }
      }
    }
  }
}

}  // namespace

void transposeRegion(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                     const Region& region, std::span<std::uint8_t> transposed) {
  const std::size_t pixelBytes = layout.format == PixelFormat::Raw16   ? 2
                                 : layout.format == PixelFormat::Rgb24 ? 3
                                                                       : 1;
  const auto width = static_cast<std::size_t>(region.width);
  const auto height = static_cast<std::size_t>(region.height);
  const std::size_t rowBytes = static_cast<std::size_t>(layout.width) * pixelBytes;
  const std::uint8_t* const from =
      frame.data() + pixelIndex(layout.width, region.left, region.top) * pixelBytes;
  if (pixelBytes == 1) {
    transposePixels<1>(from, rowBytes, width, height, transposed.data());
  } else if (pixelBytes == 2) {
    transposePixels<2>(from, rowBytes, width, height, transposed.data());
  } else {
    transposePixels<3>(from, rowBytes, width, height, transposed.data());
  }
}

}  // namespace orvane::host
