// Cuts a region out of a frame and transposes it.
#pragma once

#include <cstdint>
#include <span>

#include "imaging/frame_layout.hpp"
#include "imaging/region.hpp"

namespace orvane::host {

/// Writes the region's pixels column by column: y changes fastest. The region is inside the frame.
/// `frame` holds frameBytes(layout) bytes, `transposed` those of the region.
void transposeRegion(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                     const Region& region, std::span<std::uint8_t> transposed);

}  // namespace orvane::host
