// The window's contents: a bitmap in memory that GDI draws into.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "live_view/reduced_frame.hpp"
#include "live_view/screen_pixels.hpp"

namespace orvane::host {

inline RECT rectOf(const PixelRect& rect) {
  return {rect.left, rect.top, rect.left + rect.width, rect.top + rect.height};
}

enum class TextSize { Small, Normal, Title, Figure };
enum class TextAlign { Left, Centre, Right };

/// Colours are 0x00RRGGBB.
class GdiCanvas {
 public:
  GdiCanvas() = default;
  ~GdiCanvas();
  GdiCanvas(const GdiCanvas&) = delete;
  GdiCanvas& operator=(const GdiCanvas&) = delete;

  /// Adapts the bitmap to the window's size and the fonts to the screen's resolution. Erases the
  /// bitmap.
  void resize(int width, int height, int dpi);

  int dpi() const { return dpi_; }
  bool isEmpty() const { return bits_ == nullptr; }

  /// Copies a part to the screen.
  void show(HDC screen, const RECT& part) const;

  /// Direct access to the pixels of a part.
  ScreenTarget pixelsOf(const PixelRect& part);

  void fill(const PixelRect& rect, std::uint32_t color);
  void outline(const PixelRect& rect, std::uint32_t color);

  /// Darkens what has been drawn.
  void dim(const PixelRect& rect);

  void dot(const PixelRect& rect, std::uint32_t color);
  void circle(int x, int y, int radius, std::uint32_t color);
  void polyline(const std::vector<POINT>& points, std::uint32_t color);

  /// One line of text, vertically centred. Text that is too long ends in an ellipsis.
  void text(const PixelRect& rect, const std::string& utf8, TextSize size, std::uint32_t color,
            TextAlign align = TextAlign::Left);

  /// How wide the text is, in pixels.
  int textWidth(const std::string& utf8, TextSize size);

 private:
  void release();
  void makeFonts();
  void useLine(std::uint32_t color);
  HFONT font(TextSize size) const { return fonts_.at(static_cast<std::size_t>(size)); }

  HDC memory_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ firstBitmap_ = nullptr;
  std::uint32_t* bits_ = nullptr;
  std::array<HFONT, 4> fonts_{};
  HPEN pen_ = nullptr;  // of the last colour used
  std::uint32_t penColor_ = 0;
  int width_ = 0;
  int height_ = 0;
  int dpi_ = 0;
};

}  // namespace orvane::host
