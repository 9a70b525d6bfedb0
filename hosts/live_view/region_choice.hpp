// The region of the frame that is recorded: drawn with the mouse, moved with keys.
#pragma once

#include <optional>

#include "imaging/region.hpp"
#include "live_view/key_commands.hpp"
#include "live_view/live_picture.hpp"

namespace orvane::host {

/// The shortest side of a region, pixels.
constexpr int leastRegionSide = 16;

/// The region with two opposite corners at these places of a frame: inside the frame, with sides of
/// an even number of pixels, because players and encoders want that. None if a side is shorter than
/// leastRegionSide.
std::optional<Region> regionBetween(double x1, double y1, double x2, double y2, int frameWidth,
                                    int frameHeight);

/// How far a command moves the region, in pixels of the frame.
struct RegionMove {
  int right = 0;
  int down = 0;
};

/// The movement of this command; none if it does not move the region.
std::optional<RegionMove> regionMoveOf(ViewCommand command);

/// The region after it was moved as far as the frame allows.
Region movedRegion(const Region& region, const RegionMove& move, int frameWidth, int frameHeight);

/// The outline around a region, within the area of the picture.
PixelRect regionOutline(const Region& region, const PictureView& view);

}  // namespace orvane::host
