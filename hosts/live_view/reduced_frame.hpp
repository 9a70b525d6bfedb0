// Small images of large frames, made in one step.
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

  int right() const { return left + width; }
  int bottom() const { return top + height; }
  bool contains(int x, int y) const { return x >= left && y >= top && x < right() && y < bottom(); }
  bool operator==(const PixelRect&) const = default;
};

/// The largest factor by which the frame can be reduced without becoming smaller than `width` x
/// `height`: 1 or more. With a Bayer pattern it is even, because a square needs every colour.
int reductionFactor(const FrameLayout& layout, int width, int height);

/// Reduces each square of `factor` x `factor` pixels to their mean. With a Bayer pattern, each
/// colour is the mean of the pixels that have it. Incomplete squares at the right and at the bottom
/// are left out.
///
/// `frame` holds frameBytes(layout) bytes; `factor` is a value that reductionFactor() can return,
/// not larger than the frame's sides. The image's memory is used again.
void reduceFrame(std::span<const std::uint8_t> frame, const FrameLayout& layout, int factor,
                 Image& reduced);

/// Copies a part of the frame at full resolution, debayered if it has a Bayer pattern. The part is
/// moved and clamped into the frame; with a Bayer pattern it begins at even coordinates. Returns
/// its place.
PixelRect cutFrame(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                   const PixelRect& wanted, Image& part);

}  // namespace orvane::host
