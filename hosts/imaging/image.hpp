// Images in memory, and how a frame becomes one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/frame_layout.hpp"

namespace orvane::host {

/// Samples row by row from the top, the channels of a pixel side by side.
template <class Sample>
struct ImageOf {
  int width = 0;
  int height = 0;
  int channels = 1;  ///< 1 grey, or 3: red, green, blue
  std::vector<Sample> samples;
};

/// An image with samples over the whole range of 16 bits.
using Image = ImageOf<std::uint16_t>;

/// An image for a screen.
using ScreenImage = ImageOf<std::uint8_t>;

/// The samples of a frame of frameBytes(layout) bytes, 8 bits scaled to 16. Not debayered.
Image imageFromFrame(std::span<const std::uint8_t> frame, const FrameLayout& layout);

/// An image with no side longer than `longestSide`: each pixel is the mean of a square of pixels.
/// Incomplete squares at the right and at the bottom are left out.
Image shrink(Image image, int longestSide);

/// Makes a colour image from a one-channel image with this Bayer pattern, which is not None.
/// Bilinear: each of the two colours that a pixel lacks is the mean of its nearest neighbours that
/// have it. The image is mirrored at its borders.
Image debayer(const Image& raw, BayerPattern bayer);

}  // namespace orvane::host
