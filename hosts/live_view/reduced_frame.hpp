// Small images of large frames, made in one step: what a window shows needs no more.
#pragma once

#include <cstdint>
#include <span>

#include "imaging/frame_layout.hpp"
#include "imaging/image.hpp"

namespace orvane::host {

/// A part of a frame or of a window, in pixels.
struct PixelRect {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;

  bool contains(int x, int y) const {
    return x >= left && y >= top && x < left + width && y < top + height;
  }
  bool operator==(const PixelRect&) const = default;
};

/// How many frame pixels, in each direction, may become one pixel of an image that is to fill
/// `width` x `height` and must not be smaller than that. Even for a mosaic, whose smallest square
/// with every colour has two pixels a side; 1 or more for other frames.
int reductionFactor(const FrameLayout& layout, int width, int height);

/// The frame with `factor` x `factor` pixels made one; of a mosaic, each colour is the mean of the
/// pixels that have it. What does not fill a square at the right and at the bottom is left out.
///
/// `frame` holds frameBytes(layout) bytes; `factor` is one that reductionFactor() may return, and
/// no larger than the frame's sides. The image's memory is used again.
void reduceFrame(std::span<const std::uint8_t> frame, const FrameLayout& layout, int factor,
                 Image& reduced);

/// A part of the frame at full resolution, in colour if it has any. The part is moved and cut so
/// that it lies in the frame; of a mosaic, it begins at even coordinates. Returns where it lies.
PixelRect cutFrame(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                   const PixelRect& wanted, Image& part);

}  // namespace orvane::host
