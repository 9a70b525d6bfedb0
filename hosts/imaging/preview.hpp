// A picture of a frame for a person to look at.
#pragma once

#include <cstdint>
#include <span>

#include "imaging/frame_layout.hpp"
#include "imaging/image.hpp"

namespace orvane::host {

/// The frame in colour if it has any, brightened so that something can be seen, and with no side
/// longer than `longestSide`. `frame` holds frameBytes(layout) bytes.
ScreenImage previewOf(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                      int longestSide = 2400);

/// The same of an image that was taken through a mosaic, or none.
ScreenImage previewOf(Image image, Mosaic mosaic, int longestSide);

}  // namespace orvane::host
