// The layout of a frame's bytes: size, pixel format and Bayer pattern. The types are the library's,
// but no function of the library is called.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <orvane_desktop_camera.hpp>
#include <span>
#include <string_view>

namespace orvane::host {

using PixelFormat = oc::Format;
using BayerPattern = oc::Bayer;
using FrameLayout = oc::FrameLayout;

/// "raw8", "raw16", "rgb24" or "mono8".
const char* formatName(PixelFormat format);

/// The format with this name.
std::optional<PixelFormat> formatFromName(std::string_view name);

/// The Bayer pattern with this code of the library; None for an unknown code.
BayerPattern bayerFromCode(int code);

/// The Bayer pattern with this name: "RGGB" and so on, or "none". Ignores case.
std::optional<BayerPattern> bayerFromName(std::string_view name);

/// "RGGB" and so on; "" for None.
const char* bayerName(BayerPattern bayer);

/// The column and row (0 or 1) of the red pixel in a Bayer pattern's 2 x 2 pixels. Blue is in the
/// other column and the other row; the two others are green.
struct RedPixel {
  int column = 0;
  int row = 0;
};

constexpr RedPixel redPixelOf(BayerPattern bayer) {
  const auto code = static_cast<int>(bayer);  // bit 0 is the column, bit 1 the row
  return {code & 1, code >> 1 & 1};
}

/// The pattern of what starts in this column and row of an image with the Bayer pattern.
BayerPattern shiftedBayer(BayerPattern bayer, int column, int row);

/// The size of one frame in bytes, rows without padding.
std::size_t frameBytes(const FrameLayout& layout);

constexpr std::size_t pixelCount(int width, int height) {
  return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

/// The index of a pixel in an image of this width, row by row.
constexpr std::size_t pixelIndex(int width, int x, int y) {
  return pixelCount(width, y) + static_cast<std::size_t>(x);
}

/// How many samples these bytes of a frame hold: three a pixel in RGB24, one in other formats.
constexpr std::size_t sampleCount(std::span<const std::uint8_t> frame, PixelFormat format) {
  return format == PixelFormat::Raw16 ? frame.size() / 2 : frame.size();
}

constexpr int sampleAt(std::span<const std::uint8_t> frame, PixelFormat format, std::size_t index) {
  return format == PixelFormat::Raw16 ? frame[2 * index] | frame[2 * index + 1] << 8 : frame[index];
}

}  // namespace orvane::host
