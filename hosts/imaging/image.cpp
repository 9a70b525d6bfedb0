// Images in memory, and how a frame becomes one.
#include "imaging/image.hpp"

#include <algorithm>

namespace orvane::host {

Image imageFromFrame(std::span<const std::uint8_t> frame, const FrameLayout& layout) {
  Image image{layout.width, layout.height, layout.format == PixelFormat::Rgb24 ? 3 : 1, {}};
  if (layout.format == PixelFormat::Raw16) {
    image.samples.resize(frame.size() / 2);
    for (std::size_t index = 0; index < image.samples.size(); ++index) {
      image.samples[index] =
          static_cast<std::uint16_t>(frame[2 * index] | (frame[2 * index + 1] << 8));
    }
  } else {
    image.samples.resize(frame.size());
    std::transform(frame.begin(), frame.end(), image.samples.begin(),
                   [](std::uint8_t sample) { return static_cast<std::uint16_t>(sample * 257); });
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
  small.samples.reserve(static_cast<std::size_t>(small.width) *
                        static_cast<std::size_t>(small.height) * channels);
  for (int y = 0; y < small.height; ++y) {
    for (int x = 0; x < small.width; ++x) {
      for (std::size_t channel = 0; channel < channels; ++channel) {
        std::uint64_t sum = 0;
        for (int row = y * acrossY; row < (y + 1) * acrossY; ++row) {
          for (int column = x * acrossX; column < (x + 1) * acrossX; ++column) {
            const std::size_t pixel =
                static_cast<std::size_t>(row) * static_cast<std::size_t>(image.width) +
                static_cast<std::size_t>(column);
            sum += image.samples[pixel * channels + channel];
          }
        }
        small.samples.push_back(static_cast<std::uint16_t>(sum / area));
      }
    }
  }
  return small;
}

}  // namespace orvane::host
