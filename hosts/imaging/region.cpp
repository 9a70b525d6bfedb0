// A region anywhere in a frame: cut out of the frame's bytes, with the Bayer pattern that it has
// there.
#include "imaging/region.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <system_error>

#include "system/text.hpp"

namespace orvane::host {

namespace {

int roundedUp(int length, int step) {
  return (length + step - 1) / step * step;
}

}  // namespace

bool Region::isInside(int frameWidth, int frameHeight) const {
  return left >= 0 && top >= 0 && width > 0 && height > 0 && left < frameWidth &&
         top < frameHeight && width <= frameWidth - left && height <= frameHeight - top;
}

std::string regionText(const Region& region) {
  return dimensionsText(region.width, region.height) + " at " + std::to_string(region.left) + ", " +
         std::to_string(region.top);
}

std::string regionValue(const Region& region) {
  return std::to_string(region.left) + "," + std::to_string(region.top) + "," +
         std::to_string(region.width) + "x" + std::to_string(region.height);
}

std::optional<Region> regionFromValue(std::string_view text) {
  std::array<int, 4> numbers{};
  constexpr std::string_view separators = ",,x";
  for (std::size_t at = 0; at < numbers.size(); ++at) {
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, numbers.at(at));
    if (parsed.ec != std::errc() || numbers.at(at) < 0) {
      return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(parsed.ptr - text.data()));
    const std::string_view expected = separators.substr(at, 1);
    if (text.substr(0, 1) != expected) {
      return std::nullopt;
    }
    text.remove_prefix(expected.size());
  }
  const Region region{numbers[0], numbers[1], numbers[2], numbers[3]};
  return text.empty() && region.width > 0 && region.height > 0 ? std::optional(region)
                                                               : std::nullopt;
}

FrameLayout layoutOf(const Region& region, const FrameLayout& frame) {
  return {region.width, region.height, frame.format,
          shiftedBayer(frame.bayer, region.left, region.top)};
}

std::span<std::uint8_t> cutOut(const Region& region, std::span<std::uint8_t> frame,
                               const FrameLayout& layout) {
  const std::size_t pixelBytes = frameBytes({1, 1, layout.format, BayerPattern::None});
  const std::size_t rowBytes = pixelCount(region.width, 1) * pixelBytes;
  for (int row = 0; row < region.height; ++row) {
    const std::size_t from = pixelIndex(layout.width, region.left, region.top + row) * pixelBytes;
    // A row may overlap its new place, but no row that is still to be moved.
    std::memmove(&frame[pixelIndex(region.width, 0, row) * pixelBytes], &frame[from], rowBytes);
  }
  return frame.first(rowBytes * static_cast<std::size_t>(region.height));
}

CornerSize cornerHolding(const Region& region, int wholeWidth, int wholeHeight) {
  const auto extent = [](int start, int length, int step, int whole) {
    constexpr int least = 16;
    return std::min(std::max(roundedUp(start + length, step), least), whole);
  };
  return {extent(region.left, region.width, 8, wholeWidth),
          extent(region.top, region.height, 2, wholeHeight)};
}

}  // namespace orvane::host
