// The window's contents: a bitmap in memory that GDI draws into.
#include "live_view/gdi_canvas_windows.hpp"

#include <algorithm>
#include <utility>

#include "live_view/window_layout.hpp"

namespace orvane::host {

namespace {

struct FontKind {
  int height;  // for 96 dots per inch
  int weight;
};

// In the order of TextSize.
constexpr std::array<FontKind, 4> fontKinds = {
    {{13, FW_NORMAL}, {15, FW_NORMAL}, {20, FW_SEMIBOLD}, {30, FW_NORMAL}}};

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
  release();
  if (dpi != dpi_) {
    dpi_ = dpi;
    makeFonts();
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
  memory_ = CreateCompatibleDC(nullptr);
  firstBitmap_ = SelectObject(memory_, bitmap_.get());
  SetBkMode(memory_, TRANSPARENT);
}

void GdiCanvas::release() {
  if (memory_ != nullptr) {
    SelectObject(memory_, firstBitmap_);
    SelectObject(memory_, GetStockObject(BLACK_PEN));
    DeleteDC(memory_);
    memory_ = nullptr;
  }
  bitmap_.reset();
  pen_.reset();
  bits_ = nullptr;
}

void GdiCanvas::makeFonts() {
  for (std::size_t size = 0; size < fonts_.size(); ++size) {
    const FontKind& kind = fontKinds.at(size);
    fonts_.at(size).reset(CreateFontW(-scaled(kind.height, dpi_), 0, 0, 0, kind.weight, FALSE,
                                      FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                      CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY,
                                      VARIABLE_PITCH | FF_SWISS, L"Segoe UI"));
  }
}

void GdiCanvas::show(HDC screen, const RECT& part) const {
  BitBlt(screen, part.left, part.top, part.right - part.left, part.bottom - part.top, memory_,
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
  SetDCBrushColor(memory_, colorRef(color));
  return static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
}

void GdiCanvas::fill(const PixelRect& rect, const PaletteColor& color) {
  const RECT area = rectOf(rect);
  FillRect(memory_, &area, brush(color));
}

void GdiCanvas::outline(const PixelRect& rect, const PaletteColor& color) {
  const RECT area = rectOf(rect);
  FrameRect(memory_, &area, brush(color));
}

void GdiCanvas::dim(const PixelRect& rect) {
  const ScreenTarget target = pixelsOf(rect);
  for (int y = 0; y < target.height; ++y) {
    std::uint32_t* const row = target.pixels + y * target.pitch;
    std::transform(row, row + target.width, row,
                   [](std::uint32_t pixel) { return pixel >> 3 & 0x1F1F1F; });
  }
}

void GdiCanvas::dot(const PixelRect& rect, const PaletteColor& color) {
  useLine(color);
  SelectObject(memory_, brush(color));
  Ellipse(memory_, rect.left, rect.top, rect.left + rect.width, rect.top + rect.height);
}

void GdiCanvas::circle(int x, int y, int radius, const PaletteColor& color) {
  useLine(color);
  SelectObject(memory_, GetStockObject(NULL_BRUSH));
  Ellipse(memory_, x - radius, y - radius, x + radius + 1, y + radius + 1);
}

void GdiCanvas::polyline(const std::vector<POINT>& points, const PaletteColor& color) {
  useLine(color);
  Polyline(memory_, points.data(), static_cast<int>(points.size()));
}

// Selects a pen; its width follows the screen's resolution.
void GdiCanvas::useLine(const PaletteColor& color) {
  if (const COLORREF value = colorRef(color); !pen_ || value != penColor_) {
    GdiObject<HPEN> pen(CreatePen(PS_SOLID, std::max(1, dpi_ / 96), value));
    SelectObject(memory_, pen.get());
    pen_ = std::move(pen);
    penColor_ = value;
  }
}

void GdiCanvas::useFont(TextSize size) const {
  SelectObject(memory_, fonts_.at(static_cast<std::size_t>(size)).get());
}

void GdiCanvas::text(const PixelRect& rect, const std::string& utf8, TextSize size,
                     const PaletteColor& color, TextAlign align) {
  const std::wstring wide = wideOf(utf8);
  RECT area = rectOf(rect);
  useFont(size);
  SetTextColor(memory_, colorRef(color));
  const UINT side = align == TextAlign::Left     ? DT_LEFT
                    : align == TextAlign::Centre ? DT_CENTER
                                                 : DT_RIGHT;
  DrawTextW(memory_, wide.data(), static_cast<int>(wide.size()), &area,
            side | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
}

int GdiCanvas::textWidth(const std::string& utf8, TextSize size) {
  const std::wstring wide = wideOf(utf8);
  SIZE extent = {};
  useFont(size);
  GetTextExtentPoint32W(memory_, wide.data(), static_cast<int>(wide.size()), &extent);
  return static_cast<int>(extent.cx);
}

}  // namespace orvane::host
