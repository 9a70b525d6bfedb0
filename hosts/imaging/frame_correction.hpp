// Corrects frames whose layout differs from what the SDK reported.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "imaging/frame_layout.hpp"
#include "imaging/image.hpp"

namespace orvane::host {

/// What to correct in every frame.
struct FrameCorrection {
  bool flips = false;                 ///< reverses the order of the rows
  bool swapsRedAndBlue = false;       ///< of RGB frames
  std::optional<BayerPattern> bayer;  ///< the pattern of raw frames before they are flipped
};

/// The layout of the corrected frames. Flipping frames of even height swaps the rows of the Bayer
/// pattern. Throws UsageError if the correction does not apply to this format.
FrameLayout correctedLayout(const FrameLayout& layout, const FrameCorrection& correction);

/// Corrects a frame of frameBytes(layout) bytes in place.
void correctFrame(std::span<std::uint8_t> frame, const FrameLayout& layout,
                  const FrameCorrection& correction);

/// Corrects the image of a frame in place. Returns the Bayer pattern of the corrected image.
BayerPattern correctImage(Image& image, BayerPattern bayer, const FrameCorrection& correction);

}  // namespace orvane::host
