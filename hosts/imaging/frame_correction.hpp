// Puts right what an SDK delivers otherwise than it says.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "imaging/frame_layout.hpp"
#include "imaging/image.hpp"

namespace orvane::host {

/// What is to be done with every frame.
struct FrameCorrection {
  bool flips = false;            ///< the last row becomes the first
  bool swapsRedAndBlue = false;  ///< of RGB frames
  std::optional<Mosaic> mosaic;  ///< of raw frames as they come, before they are flipped
};

/// How the corrected frames are to be understood: with an even height, turning the rows around
/// turns the mosaic's rows around too. Throws UsageError where frames of this format cannot be
/// corrected so.
FrameLayout correctedLayout(const FrameLayout& layout, const FrameCorrection& correction);

/// Corrects a frame of frameBytes(layout) bytes in place.
void correctFrame(std::span<std::uint8_t> frame, const FrameLayout& layout,
                  const FrameCorrection& correction);

/// The same for the image of a frame; and the mosaic that it has then.
Mosaic correctImage(Image& image, Mosaic mosaic, const FrameCorrection& correction);

}  // namespace orvane::host
