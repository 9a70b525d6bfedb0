// The window's colours: a dark palette, and a red one for night.
#pragma once

#include <cstdint>

namespace orvane::host {

/// Colours as 0x00RRGGBB.
struct Palette {
  std::uint32_t picture;  ///< behind the picture
  std::uint32_t panel;
  std::uint32_t raised;  ///< tracks, buttons, plots
  std::uint32_t line;    ///< borders
  std::uint32_t text;
  std::uint32_t quietText;
  std::uint32_t accent;  ///< sliders, the selection
  std::uint32_t recording;
  std::uint32_t warning;
  std::uint32_t error;
  std::uint32_t redCurve;
  std::uint32_t greenCurve;
  std::uint32_t blueCurve;
  std::uint32_t greyCurve;
};

inline constexpr Palette darkPalette{
    .picture = 0x0A0B0D,
    .panel = 0x15171A,
    .raised = 0x22252A,
    .line = 0x2F343B,
    .text = 0xD6D9DE,
    .quietText = 0x868D97,
    .accent = 0x5B9BD5,
    .recording = 0xD64545,
    .warning = 0xD9A441,
    .error = 0xE8655A,
    .redCurve = 0xD05A5A,
    .greenCurve = 0x5FB36A,
    .blueCurve = 0x5C8FDB,
    .greyCurve = 0xB4B9C1,
};

/// No green and no blue at all.
inline constexpr Palette nightPalette{
    .picture = 0x000000,
    .panel = 0x0D0000,
    .raised = 0x200000,
    .line = 0x380000,
    .text = 0xB00000,
    .quietText = 0x880000,
    .accent = 0xC80000,
    .recording = 0xF00000,
    .warning = 0xD80000,
    .error = 0xFF0000,
    .redCurve = 0xB00000,
    .greenCurve = 0x840000,
    .blueCurve = 0x5C0000,
    .greyCurve = 0xA00000,
};

}  // namespace orvane::host
