// Corrects frames whose layout differs from what the SDK reported, and cuts a region out of them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "imaging/frame_layout.hpp"
#include "imaging/image.hpp"
#include "imaging/region.hpp"

namespace orvane::host {

/// What to correct in every frame.
struct FrameCorrection {
  bool flips = false;                 ///< reverses the order of the rows
  bool swapsRedAndBlue = false;       ///< of RGB frames
  std::optional<BayerPattern> bayer;  ///< the pattern of the raw frames that the camera delivers
  std::optional<Region> region = {};  ///< cut out of the frame that the camera delivers
};

/// The layout of the corrected frames. Flipping frames of even height swaps the rows of the Bayer
/// pattern. Throws UsageError if the correction does not apply to this format, or the region is not
/// inside the frame.
FrameLayout correctedLayout(const FrameLayout& layout, const FrameCorrection& correction);

/// Corrects a frame of frameBytes(layout) bytes in place. Returns the bytes of the corrected frame,
/// which are fewer if a region was cut out.
std::span<std::uint8_t> correctFrame(std::span<std::uint8_t> frame, const FrameLayout& layout,
                                     const FrameCorrection& correction);

/// Corrects the image of a whole frame in place; no region is cut out. Returns the Bayer pattern of
/// the corrected image.
BayerPattern correctImage(Image& image, BayerPattern bayer, const FrameCorrection& correction);

}  // namespace orvane::host
