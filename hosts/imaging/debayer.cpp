// Colour images from colour mosaics.
#include "imaging/debayer.hpp"

#include <algorithm>

namespace orvane::host {

namespace {

// The coordinate before the first is the second, so that the mosaic's colours go on in turn.
std::size_t mirrored(int coordinate, int size) {
  const int inside = coordinate < 0      ? -coordinate
                     : coordinate < size ? coordinate
                                         : 2 * (size - 1) - coordinate;
  return static_cast<std::size_t>(std::clamp(inside, 0, size - 1));
}

std::uint16_t mean(int a, int b) {
  return static_cast<std::uint16_t>((a + b + 1) / 2);
}

std::uint16_t mean(int a, int b, int c, int d) {
  return static_cast<std::uint16_t>((a + b + c + d + 2) / 4);
}

}  // namespace

Image debayer(const Image& mosaicImage, Mosaic mosaic) {
  const int width = mosaicImage.width;
  const int height = mosaicImage.height;
  const bool redInOddColumns = mosaic == Mosaic::Grbg || mosaic == Mosaic::Bggr;
  const bool redInOddRows = mosaic == Mosaic::Gbrg || mosaic == Mosaic::Bggr;

  Image image{width, height, 3, {}};
  image.samples.resize(mosaicImage.samples.size() * 3);
  std::uint16_t* pixel = image.samples.data();
  for (int y = 0; y < height; ++y) {
    const auto row = [&](int at) {
      return mosaicImage.samples.data() + mirrored(at, height) * static_cast<std::size_t>(width);
    };
    const std::uint16_t* const above = row(y - 1);
    const std::uint16_t* const here = row(y);
    const std::uint16_t* const below = row(y + 1);
    const bool isRedRow = (y % 2 != 0) == redInOddRows;
    for (int x = 0; x < width; ++x, pixel += 3) {
      const std::size_t left = mirrored(x - 1, width);
      const auto middle = static_cast<std::size_t>(x);
      const std::size_t right = mirrored(x + 1, width);
      const std::uint16_t own = here[middle];
      const bool isRedColumn = (x % 2 != 0) == redInOddColumns;
      if (isRedRow != isRedColumn) {  // green: one of the others stands beside it, one above it
        const std::uint16_t beside = mean(here[left], here[right]);
        const std::uint16_t upright = mean(above[middle], below[middle]);
        pixel[0] = isRedRow ? beside : upright;
        pixel[1] = own;
        pixel[2] = isRedRow ? upright : beside;
      } else {  // red or blue: green stands around it, the other one at the corners
        const std::uint16_t corners = mean(above[left], above[right], below[left], below[right]);
        pixel[0] = isRedRow ? own : corners;
        pixel[1] = mean(above[middle], below[middle], here[left], here[right]);
        pixel[2] = isRedRow ? corners : own;
      }
    }
  }
  return image;
}

}  // namespace orvane::host
