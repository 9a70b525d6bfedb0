// The layout of a frame's bytes: size, pixel format and Bayer pattern.
#include "imaging/frame_layout.hpp"

#include <array>

#include "system/text.hpp"

namespace orvane::host {

namespace {

struct Format {
  PixelFormat format;
  const char* name;
  std::size_t bytesPerPixel;
};

constexpr std::array<Format, 4> formats{{{PixelFormat::Raw8, "raw8", 1},
                                         {PixelFormat::Raw16, "raw16", 2},
                                         {PixelFormat::Rgb24, "rgb24", 3},
                                         {PixelFormat::Mono8, "mono8", 1}}};

struct NamedBayerPattern {
  BayerPattern bayer;
  const char* name;
};

constexpr std::array<NamedBayerPattern, 4> patterns{{{BayerPattern::Rggb, "RGGB"},
                                                     {BayerPattern::Grbg, "GRBG"},
                                                     {BayerPattern::Gbrg, "GBRG"},
                                                     {BayerPattern::Bggr, "BGGR"}}};

const Format& row(PixelFormat format) {
  return formats.at(static_cast<std::size_t>(format));
}

}  // namespace

const char* formatName(PixelFormat format) {
  return row(format).name;
}

std::optional<PixelFormat> formatFromName(std::string_view name) {
  for (const Format& entry : formats) {
    if (name == entry.name) {
      return entry.format;
    }
  }
  return std::nullopt;
}

BayerPattern bayerFromCode(int code) {
  for (const NamedBayerPattern& entry : patterns) {
    if (code == static_cast<int>(entry.bayer)) {
      return entry.bayer;
    }
  }
  return BayerPattern::None;
}

std::optional<BayerPattern> bayerFromName(std::string_view name) {
  const auto isName = [&](std::string_view known) {
    return known.size() == name.size() && containsIgnoringCase(known, name);
  };
  for (const NamedBayerPattern& entry : patterns) {
    if (isName(entry.name)) {
      return entry.bayer;
    }
  }
  return isName("none") ? std::optional(BayerPattern::None) : std::nullopt;
}

const char* bayerName(BayerPattern bayer) {
  for (const NamedBayerPattern& entry : patterns) {
    if (bayer == entry.bayer) {
      return entry.name;
    }
  }
  return "";
}

std::size_t frameBytes(const FrameLayout& layout) {
  return static_cast<std::size_t>(layout.width) * static_cast<std::size_t>(layout.height) *
         row(layout.format).bytesPerPixel;
}

}  // namespace orvane::host
