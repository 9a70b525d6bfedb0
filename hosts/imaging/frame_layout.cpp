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

struct NamedMosaic {
  Mosaic mosaic;
  const char* name;
};

constexpr std::array<NamedMosaic, 4> mosaics{{{Mosaic::Rggb, "RGGB"},
                                              {Mosaic::Grbg, "GRBG"},
                                              {Mosaic::Gbrg, "GBRG"},
                                              {Mosaic::Bggr, "BGGR"}}};

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

std::optional<PixelFormat> formatFromCode(int code) {
  for (const Format& entry : formats) {
    if (code == static_cast<int>(entry.format)) {
      return entry.format;
    }
  }
  return std::nullopt;
}

Mosaic mosaicFromCode(int code) {
  for (const NamedMosaic& entry : mosaics) {
    if (code == static_cast<int>(entry.mosaic)) {
      return entry.mosaic;
    }
  }
  return Mosaic::None;
}

std::optional<Mosaic> mosaicFromName(std::string_view name) {
  const auto isName = [&](std::string_view known) {
    return known.size() == name.size() && containsIgnoringCase(known, name);
  };
  for (const NamedMosaic& entry : mosaics) {
    if (isName(entry.name)) {
      return entry.mosaic;
    }
  }
  return isName("none") ? std::optional(Mosaic::None) : std::nullopt;
}

const char* mosaicName(Mosaic mosaic) {
  for (const NamedMosaic& entry : mosaics) {
    if (mosaic == entry.mosaic) {
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
