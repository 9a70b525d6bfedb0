// How sharp a planet, the Moon or another extended object is.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "imaging/frame_layout.hpp"
#include "imaging/image.hpp"
#include "imaging/region.hpp"

namespace orvane::host {

/// The root of the gradient energy (the squared differences of neighbouring pixels) of the bright
/// part, divided by the energy of its light, times 100: more is sharper, and neither the exposure
/// nor the level of the sky counts. The sky's noise is subtracted. 0 if there is nothing bright.
///
/// Measured in at most 512 x 512 pixels: in the middle of `region`, else around the bright part.
/// `reduced` is the frame reduced by reduceFrame() with `factor`; `frame` holds frameBytes(layout)
/// bytes.
double measureSharpness(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                        const Image& reduced, int factor,
                        const std::optional<Region>& region = std::nullopt);

}  // namespace orvane::host
