// How sharp a frame is: the size of its brightest star, and the sharpness of a planet or the Moon.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "imaging/frame_layout.hpp"
#include "imaging/image.hpp"
#include "imaging/region.hpp"

namespace orvane::host {

/// A star; coordinates are pixels of the frame.
struct Star {
  double x = 0;  ///< of its centre; 0.5 is the middle of the first pixel
  double y = 0;
  double halfFluxDiameter = 0;  ///< twice the mean distance of its light from the centre
};

struct Focus {
  std::optional<Star> star;  ///< the brightest star; hot pixels and planets do not count
  double sharpness = 0;      ///< of a planet or the Moon, see measureSharpness(); more is sharper
};

/// How far from a place a star is searched: pixels in each direction.
constexpr int starSearchReach = 12;

/// Measures a frame. Prefers a star near `before` to the brightest one, so that the figures of
/// successive frames are of the same star. `reduced` is the frame reduced by reduceFrame() with
/// `factor`; stars are searched in it. `frame` holds frameBytes(layout) bytes. The sharpness is
/// that of the region, if there is one.
Focus measureFocus(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                   const Image& reduced, int factor,
                   const std::optional<Star>& before = std::nullopt,
                   const std::optional<Region>& region = std::nullopt);

}  // namespace orvane::host
