// A picture of a frame for a person to look at.
#include "common/preview.hpp"

#include <utility>

#include "common/debayer.hpp"
#include "common/stretch.hpp"

namespace orvane::host {

ScreenImage previewOf(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                      int longestSide) {
  Image image = imageFromFrame(frame, layout);
  if (layout.mosaic != Mosaic::None) {
    image = debayer(image, layout.mosaic);
  }
  return stretched(shrink(std::move(image), longestSide));
}

}  // namespace orvane::host
