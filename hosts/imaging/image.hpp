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

/// An image that a screen shows.
using ScreenImage = ImageOf<std::uint8_t>;

/// A frame's samples as they came, 8 bits spread over the range of 16; a mosaic stays one.
/// `frame` holds frameBytes(layout) bytes.
Image imageFromFrame(std::span<const std::uint8_t> frame, const FrameLayout& layout);

/// An image with no side longer than `longestSide`: each pixel is the mean of a square of pixels.
/// What does not fill a square at the right and at the bottom is left out.
Image shrink(Image image, int longestSide);

/// The colour image of a one-channel image that was taken through a mosaic (not "none"). Bilinear:
/// of the two colours that a pixel lacks, each is the mean of its nearest neighbours that have it.
/// At the border the image is continued as in a mirror.
Image debayer(const Image& mosaicImage, Mosaic mosaic);

}  // namespace orvane::host
