// Images in memory, and how a frame becomes one.
#include "imaging/image.hpp"

#include <algorithm>

namespace orvane::host {

namespace {

// Mirrors around the first and the last coordinate themselves, so that the Bayer pattern continues.
int mirrored(int coordinate, int size) {
  const int inside = coordinate < 0      ? -coordinate
                     : coordinate < size ? coordinate
                                         : 2 * (size - 1) - coordinate;
  return std::clamp(inside, 0, size - 1);
}

std::uint16_t mean(int a, int b) {
  return static_cast<std::uint16_t>((a + b + 1) / 2);
}

std::uint16_t mean(int a, int b, int c, int d) {
  return static_cast<std::uint16_t>((a + b + c + d + 2) / 4);
}

}  // namespace

Image imageFromFrame(std::span<const std::uint8_t> frame, const FrameLayout& layout) {
  Image image{layout.width, layout.height, layout.format == PixelFormat::Rgb24 ? 3 : 1, {}};
  const int scale = layout.format == PixelFormat::Raw16 ? 1 : 257;
  image.samples.resize(sampleCount(frame, layout.format));
  for (std::size_t index = 0; index < image.samples.size(); ++index) {
    image.samples[index] =
        static_cast<std::uint16_t>(scale * sampleAt(frame, layout.format, index));
  }
  return image;
}

Image shrink(Image image, int longestSide) {
  const int factor = (std::max(image.width, image.height) + longestSide - 1) / longestSide;
  if (factor <= 1) {
    return image;
  }
  // A side shorter than the factor still leaves one pixel.
  const int acrossX = std::min(factor, image.width);
  const int acrossY = std::min(factor, image.height);
  Image small{image.width / acrossX, image.height / acrossY, image.channels, {}};
  const auto channels = static_cast<std::size_t>(image.channels);
  const auto area = static_cast<std::uint64_t>(acrossX) * static_cast<std::uint64_t>(acrossY);
  small.samples.reserve(pixelCount(small.width, small.height) * channels);
  for (int y = 0; y < small.height; ++y) {
    for (int x = 0; x < small.width; ++x) {
      for (std::size_t channel = 0; channel < channels; ++channel) {
        std::uint64_t sum = 0;
        for (int row = y * acrossY; row < (y + 1) * acrossY; ++row) {
          for (int column = x * acrossX; column < (x + 1) * acrossX; ++column) {
            sum += image.samples[pixelIndex(image.width, column, row) * channels + channel];
          }
        }
        small.samples.push_back(static_cast<std::uint16_t>(sum / area));
      }
    }
  }
  return small;
}

Image debayer(const Image& raw, BayerPattern bayer) {
  const int width = raw.width;
  const int height = raw.height;
  const RedPixel red = redPixelOf(bayer);

  Image image{width, height, 3, {}};
  image.samples.resize(raw.samples.size() * 3);
  std::uint16_t* pixel = image.samples.data();
  for (int y = 0; y < height; ++y) {
    const auto row = [&](int at) {
      return raw.samples.data() + pixelCount(width, mirrored(at, height));
    };
    const std::uint16_t* const above = row(y - 1);
    const std::uint16_t* const here = row(y);
    const std::uint16_t* const below = row(y + 1);
    const bool isRedRow = y % 2 == red.row;
    for (int x = 0; x < width; ++x, pixel += 3) {
      const auto left = static_cast<std::size_t>(mirrored(x - 1, width));
      const auto middle = static_cast<std::size_t>(x);
      const auto right = static_cast<std::size_t>(mirrored(x + 1, width));
      const std::uint16_t own = here[middle];
      const bool isRedColumn = x % 2 == red.column;
      if (isRedRow != isRedColumn) {  // green, between two of red and two of blue
        const std::uint16_t beside = mean(here[left], here[right]);
        const std::uint16_t upright = mean(above[middle], below[middle]);
        pixel[0] = isRedRow ? beside : upright;
        pixel[1] = own;
        pixel[2] = isRedRow ? upright : beside;
      } else {  // red or blue, with the other of the two at the corners
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
