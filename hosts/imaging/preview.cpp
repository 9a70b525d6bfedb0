// A picture of a frame for a person to look at.
#include "imaging/preview.hpp"

#include <utility>

#include "imaging/debayer.hpp"
#include "imaging/stretch.hpp"

namespace orvane::host {

ScreenImage previewOf(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                      int longestSide) {
  return previewOf(imageFromFrame(frame, layout), layout.mosaic, longestSide);
}

ScreenImage previewOf(Image image, Mosaic mosaic, int longestSide) {
  if (mosaic != Mosaic::None) {
    image = debayer(image, mosaic);
  }
  return stretched(shrink(std::move(image), longestSide));
}

}  // namespace orvane::host
