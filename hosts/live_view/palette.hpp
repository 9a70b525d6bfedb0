// The window's colours.
#pragma once

#include <cstdint>

namespace orvane::host {

/// A colour as 0x00RRGGBB. Night mode has no green and no blue.
struct PaletteColor {
  std::uint32_t normal;
  std::uint32_t night;
};

namespace palette {
inline constexpr PaletteColor picture{0x0A0B0D, 0x000000};  ///< behind the picture
inline constexpr PaletteColor panel{0x15171A, 0x0D0000};
inline constexpr PaletteColor raised{0x22252A, 0x200000};  ///< tracks, buttons, plots
inline constexpr PaletteColor line{0x2F343B, 0x380000};    ///< borders
inline constexpr PaletteColor text{0xD6D9DE, 0xB00000};
inline constexpr PaletteColor quietText{0x868D97, 0x880000};
inline constexpr PaletteColor accent{0x5B9BD5, 0xC80000};  ///< sliders, the selection
inline constexpr PaletteColor recording{0xD64545, 0xF00000};
inline constexpr PaletteColor warning{0xD9A441, 0xD80000};
inline constexpr PaletteColor error{0xE8655A, 0xFF0000};
inline constexpr PaletteColor redCurve{0xD05A5A, 0xB00000};
inline constexpr PaletteColor greenCurve{0x5FB36A, 0x840000};
inline constexpr PaletteColor blueCurve{0x5C8FDB, 0x5C0000};
inline constexpr PaletteColor greyCurve{0xB4B9C1, 0xA00000};
}  // namespace palette

}  // namespace orvane::host
