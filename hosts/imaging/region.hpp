// A region anywhere in a frame: cut out of the frame's bytes, with the Bayer pattern that it has
// there.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "imaging/frame_layout.hpp"

namespace orvane::host {

/// A rectangle of a frame, in the frame's pixels.
struct Region {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;

  /// True when it has pixels, and all of them are in a frame of this size.
  bool isInside(int frameWidth, int frameHeight) const;

  friend bool operator==(const Region&, const Region&) = default;
};

/// "640 x 480 at 10, 20".
std::string regionText(const Region& region);

/// "10,20,640x480": the form in which users give a region, and files state it.
std::string regionValue(const Region& region);

/// The region in that form. None if the text is something else, or the region has no pixels.
std::optional<Region> regionFromValue(std::string_view text);

/// The layout of a region inside a frame. A region that starts in an odd column or row has another
/// Bayer pattern than the frame.
FrameLayout layoutOf(const Region& region, const FrameLayout& frame);

/// Moves the region's rows to the start of a frame of frameBytes(layout) bytes, and returns them.
/// The region must be inside the frame.
std::span<std::uint8_t> cutOut(const Region& region, std::span<std::uint8_t> frame,
                               const FrameLayout& layout);

/// The smallest width and height from the frame's top left corner, in pixels after binning, that a
/// camera can be opened with to deliver this region, at most those of the whole frame. Rounded up
/// to what every maker's SDK delivers unchanged: width in steps of 8 and height in steps of 2 (the
/// strictest are ZWO's), 16 or more (ToupTek's least).
struct CornerSize {
  int width = 0;
  int height = 0;
};
CornerSize cornerHolding(const Region& region, int wholeWidth, int wholeHeight);

}  // namespace orvane::host
