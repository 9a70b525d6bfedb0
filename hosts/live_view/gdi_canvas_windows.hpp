// The window's contents: a bitmap in memory that GDI draws into.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "live_view/palette.hpp"
#include "live_view/screen_pixels.hpp"
#include "live_view/window_layout.hpp"

namespace orvane::host {

inline RECT rectOf(const PixelRect& rect) {
  return {rect.left, rect.top, rect.right(), rect.bottom()};
}

/// Owns a bitmap, a font or a pen, which must not be selected when it is deleted; or a device
/// context.
struct GdiDelete {
  void operator()(HGDIOBJ object) const { DeleteObject(object); }
  void operator()(HDC context) const { DeleteDC(context); }
};
template <class Handle>
using GdiObject = std::unique_ptr<std::remove_pointer_t<Handle>, GdiDelete>;

enum class TextSize { Small, Normal, Title, Figure };
enum class TextAlign : UINT { Left = DT_LEFT, Centre = DT_CENTER, Right = DT_RIGHT };

class GdiCanvas {
 public:
  /// Adapts the bitmap to the window's size and the fonts to the screen's resolution. Erases the
  /// bitmap.
  void resize(int width, int height, int dpi);

  int dpi() const { return dpi_; }

  /// A length given for 96 dots per inch, on this screen.
  int at(int length) const { return scaled(length, dpi_); }

  bool isEmpty() const { return bits_ == nullptr; }

  /// Selects the colours of night mode for what is drawn from now on.
  void setNight(bool isNight) { isNight_ = isNight; }
  bool isNight() const { return isNight_; }
  std::uint32_t valueOf(const PaletteColor& color) const {
    return isNight_ ? color.night : color.normal;
  }

  /// Copies a part to the screen.
  void show(HDC screen, const RECT& part) const;

  /// Direct access to the pixels of a part.
  ScreenTarget pixelsOf(const PixelRect& part);

  void fill(const PixelRect& rect, const PaletteColor& color);
  void outline(const PixelRect& rect, const PaletteColor& color);

  /// The part of an outline that lies within an area.
  void outlineWithin(const PixelRect& area, const PixelRect& rect, const PaletteColor& color);

  /// Darkens what has been drawn.
  void dim(const PixelRect& rect);

  void dot(const PixelRect& rect, const PaletteColor& color);
  void circle(int x, int y, int radius, const PaletteColor& color);
  void polyline(const std::vector<POINT>& points, const PaletteColor& color);

  /// One line of text, vertically centred. Text that is too long ends in an ellipsis.
  void text(const PixelRect& rect, const std::string& utf8, TextSize size,
            const PaletteColor& color, TextAlign align = TextAlign::Left);

  /// Text of normal size that is broken into lines, from the top.
  void paragraph(const PixelRect& rect, const std::string& utf8, const PaletteColor& color);

  /// How many lines such a text needs in this width.
  int paragraphLines(const std::string& utf8, int width);

  int textWidth(const std::string& utf8, TextSize size);

 private:
  COLORREF colorRef(const PaletteColor& color) const;
  HBRUSH brush(const PaletteColor& color) const;
  void useLine(const PaletteColor& color);
  void useFont(TextSize size) const;

  GdiObject<HBITMAP> bitmap_;
  std::uint32_t* bits_ = nullptr;
  std::array<GdiObject<HFONT>, 4> fonts_;
  GdiObject<HPEN> pen_;
  GdiObject<HDC> memory_;  // last: the others are selected into it
  bool isNight_ = false;
  int width_ = 0;
  int height_ = 0;
  int dpi_ = 0;
};

}  // namespace orvane::host
