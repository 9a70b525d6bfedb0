// The window's contents: a bitmap in memory that GDI draws into.
#include "live_view/gdi_canvas_windows.hpp"

#include <algorithm>
#include <utility>

namespace orvane::host {

namespace {

struct FontKind {
  int height;  // for 96 dots per inch
  int weight;
};

// In the order of TextSize.
constexpr std::array<FontKind, 4> fontKinds = {
    {{13, FW_NORMAL}, {15, FW_NORMAL}, {20, FW_SEMIBOLD}, {30, FW_NORMAL}}};

constexpr UINT paragraphFormat = DT_LEFT | DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX;

std::wstring wideOf(const std::string& utf8) {
  const int length =
      MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(std::max(length, 0)), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), length);
  return wide;
}

}  // namespace

void GdiCanvas::resize(int width, int height, int dpi) {
  if (width == width_ && height == height_ && dpi == dpi_) {
    return;
  }
  memory_.reset();
  bits_ = nullptr;
  if (dpi != dpi_) {
    dpi_ = dpi;
    for (std::size_t size = 0; size < fonts_.size(); ++size) {
      const FontKind& kind = fontKinds.at(size);
      fonts_.at(size).reset(CreateFontW(-at(kind.height), 0, 0, 0, kind.weight, FALSE, FALSE, FALSE,
                                        DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                        ANTIALIASED_QUALITY, VARIABLE_PITCH | FF_SWISS,
                                        L"Segoe UI"));
    }
  }
  width_ = width;
  height_ = height;
  if (width <= 0 || height <= 0) {
    return;
  }
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // the first row is the top one
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  bitmap_.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!bitmap_) {
    return;
  }
  bits_ = static_cast<std::uint32_t*>(bits);
  memory_.reset(CreateCompatibleDC(nullptr));
  SelectObject(memory_.get(), bitmap_.get());
  SetBkMode(memory_.get(), TRANSPARENT);
}

void GdiCanvas::show(HDC screen, const RECT& part) const {
  BitBlt(screen, part.left, part.top, part.right - part.left, part.bottom - part.top, memory_.get(),
         part.left, part.top, SRCCOPY);
}

ScreenTarget GdiCanvas::pixelsOf(const PixelRect& part) {
  GdiFlush();  // GDI may queue its drawing
  return {bits_ + static_cast<std::ptrdiff_t>(part.top) * width_ + part.left, width_, part.width,
          part.height};
}

COLORREF GdiCanvas::colorRef(const PaletteColor& color) const {
  const std::uint32_t value = valueOf(color);
  return RGB(value >> 16 & 0xFF, value >> 8 & 0xFF, value & 0xFF);
}

HBRUSH GdiCanvas::brush(const PaletteColor& color) const {
  SetDCBrushColor(memory_.get(), colorRef(color));
  return static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
}

void GdiCanvas::fill(const PixelRect& rect, const PaletteColor& color) {
  const RECT area = rectOf(rect);
  FillRect(memory_.get(), &area, brush(color));
}

void GdiCanvas::outline(const PixelRect& rect, const PaletteColor& color) {
  const RECT area = rectOf(rect);
  FrameRect(memory_.get(), &area, brush(color));
}

void GdiCanvas::outlineWithin(const PixelRect& area, const PixelRect& rect,
                              const PaletteColor& color) {
  HDC context = memory_.get();
  SaveDC(context);
  IntersectClipRect(context, area.left, area.top, area.right(), area.bottom());
  outline(rect, color);
  RestoreDC(context, -1);
}

void GdiCanvas::dim(const PixelRect& rect) {
  const ScreenTarget target = pixelsOf(rect);
  for (int y = 0; y < target.height; ++y) {
    for (std::uint32_t& pixel : target.row(y)) {
      pixel = pixel >> 3 & 0x1F1F1F;
    }
  }
}

void GdiCanvas::dot(const PixelRect& rect, const PaletteColor& color) {
  useLine(color);
  SelectObject(memory_.get(), brush(color));
  Ellipse(memory_.get(), rect.left, rect.top, rect.right(), rect.bottom());
}

void GdiCanvas::circle(int x, int y, int radius, const PaletteColor& color) {
  useLine(color);
  SelectObject(memory_.get(), GetStockObject(NULL_BRUSH));
  Ellipse(memory_.get(), x - radius, y - radius, x + radius + 1, y + radius + 1);
}

void GdiCanvas::polyline(const std::vector<POINT>& points, const PaletteColor& color) {
  useLine(color);
  Polyline(memory_.get(), points.data(), static_cast<int>(points.size()));
}

// Selects a pen; its width follows the screen's resolution.
void GdiCanvas::useLine(const PaletteColor& color) {
  GdiObject<HPEN> pen(CreatePen(PS_SOLID, std::max(1, dpi_ / 96), colorRef(color)));
  SelectObject(memory_.get(), pen.get());
  pen_ = std::move(pen);
}

void GdiCanvas::useFont(TextSize size) const {
  SelectObject(memory_.get(), fonts_.at(static_cast<std::size_t>(size)).get());
}

void GdiCanvas::text(const PixelRect& rect, const std::string& utf8, TextSize size,
                     const PaletteColor& color, TextAlign align) {
  const std::wstring wide = wideOf(utf8);
  RECT area = rectOf(rect);
  useFont(size);
  SetTextColor(memory_.get(), colorRef(color));
  DrawTextW(memory_.get(), wide.data(), static_cast<int>(wide.size()), &area,
            static_cast<UINT>(align) | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
}

void GdiCanvas::paragraph(const PixelRect& rect, const std::string& utf8,
                          const PaletteColor& color) {
  const std::wstring wide = wideOf(utf8);
  RECT area = rectOf(rect);
  useFont(TextSize::Normal);
  SetTextColor(memory_.get(), colorRef(color));
  DrawTextW(memory_.get(), wide.data(), static_cast<int>(wide.size()), &area, paragraphFormat);
}

int GdiCanvas::paragraphLines(const std::string& utf8, int width) {
  const std::wstring wide = wideOf(utf8);
  RECT all = {0, 0, width, 0};
  RECT line = all;
  useFont(TextSize::Normal);
  DrawTextW(memory_.get(), wide.data(), static_cast<int>(wide.size()), &all,
            paragraphFormat | DT_CALCRECT);
  DrawTextW(memory_.get(), L"x", 1, &line, paragraphFormat | DT_CALCRECT);
  return line.bottom > 0 ? static_cast<int>(all.bottom / line.bottom) : 1;
}

int GdiCanvas::textWidth(const std::string& utf8, TextSize size) {
  const std::wstring wide = wideOf(utf8);
  SIZE extent = {};
  useFont(size);
  GetTextExtentPoint32W(memory_.get(), wide.data(), static_cast<int>(wide.size()), &extent);
  return static_cast<int>(extent.cx);
}

}  // namespace orvane::host
