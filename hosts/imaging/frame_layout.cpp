// The layout of a frame's bytes: size, pixel format and Bayer pattern.
#include "imaging/frame_layout.hpp"

#include <algorithm>
#include <array>

#include "system/text.hpp"

namespace orvane::host {

namespace {

struct Format {
  const char* name;
  std::size_t bytesPerPixel;
};

// In the order of their codes, which begin at 0.
constexpr std::array<Format, 4> formats{{{"raw8", 1}, {"raw16", 2}, {"rgb24", 3}, {"mono8", 1}}};

// In the order of their codes.
constexpr std::array<const char*, 4> patternNames{"RGGB", "GRBG", "GBRG", "BGGR"};
constexpr int firstPattern = static_cast<int>(BayerPattern::Rggb);

const Format& row(PixelFormat format) {
  return formats.at(static_cast<std::size_t>(format));
}

}  // namespace

const char* formatName(PixelFormat format) {
  return row(format).name;
}

std::optional<PixelFormat> formatFromName(std::string_view name) {
  for (std::size_t code = 0; code < formats.size(); ++code) {
    if (name == formats.at(code).name) {
      return static_cast<PixelFormat>(code);
    }
  }
  return std::nullopt;
}

BayerPattern bayerFromCode(int code) {
  return code >= firstPattern && code <= static_cast<int>(BayerPattern::Bggr)
             ? static_cast<BayerPattern>(code)
             : BayerPattern::None;
}

std::optional<BayerPattern> bayerFromName(std::string_view name) {
  const auto isName = [&](std::string_view known) {
    return known.size() == name.size() && containsIgnoringCase(known, name);
  };
  const auto found = std::find_if(patternNames.begin(), patternNames.end(), isName);
  if (found != patternNames.end()) {
    return static_cast<BayerPattern>(firstPattern + (found - patternNames.begin()));
  }
  return isName("none") ? std::optional(BayerPattern::None) : std::nullopt;
}

const char* bayerName(BayerPattern bayer) {
  return bayer == BayerPattern::None
             ? ""
             : patternNames.at(static_cast<std::size_t>(static_cast<int>(bayer) - firstPattern));
}

BayerPattern shiftedBayer(BayerPattern bayer, int column, int row) {
  // Two bits of the code are the column and row of the red pixel. None becomes an unknown code, so
  // it stays None.
  return bayerFromCode(static_cast<int>(bayer) ^ ((column & 1) | (row & 1) << 1));
}

std::size_t frameBytes(const FrameLayout& layout) {
  return pixelCount(layout.width, layout.height) * row(layout.format).bytesPerPixel;
}

}  // namespace orvane::host
