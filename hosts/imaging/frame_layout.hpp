// How the bytes of a frame are to be understood: size, pixel format and colour mosaic.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace orvane::host {

/// The library's format codes.
enum class PixelFormat { Raw8 = 0, Raw16 = 1, Rgb24 = 2, Mono8 = 3 };

/// The library's mosaic codes: the colours of the top left 2 x 2 pixels, row by row.
enum class Mosaic { None = 0, Rggb = 8, Grbg = 9, Gbrg = 10, Bggr = 11 };

struct FrameLayout {
  int width = 0;
  int height = 0;
  PixelFormat format = PixelFormat::Raw8;
  Mosaic mosaic = Mosaic::None;  ///< of the frame as it is: none for RGB and for mono
};

/// "raw8", "raw16", "rgb24" or "mono8".
const char* formatName(PixelFormat format);

/// The format of this name.
std::optional<PixelFormat> formatFromName(std::string_view name);

/// The format with this code of the library's.
std::optional<PixelFormat> formatFromCode(int code);

/// The mosaic with this code of the library's; none for a code that is not known.
Mosaic mosaicFromCode(int code);

/// The mosaic of this name, in letters of any case: "RGGB" and so on, or "none".
std::optional<Mosaic> mosaicFromName(std::string_view name);

/// "RGGB" and so on; "" for none.
const char* mosaicName(Mosaic mosaic);

/// The size of one frame in bytes, rows without padding.
std::size_t frameBytes(const FrameLayout& layout);

}  // namespace orvane::host
