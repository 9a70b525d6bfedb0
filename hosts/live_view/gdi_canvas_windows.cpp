// The window's contents: a bitmap in memory that GDI draws into.
#include "live_view/gdi_canvas_windows.hpp"

#include <algorithm>
#include <string_view>

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

COLORREF colorRef(std::uint32_t color) {
  return RGB(color >> 16 & 0xFF, color >> 8 & 0xFF, color & 0xFF);
}

std::wstring wideOf(const std::string& utf8) {
  const int length =
      MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(std::max(length, 0)), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), length);
  return wide;
}

}  // namespace

GdiCanvas::~GdiCanvas() {
  release();
  for (const HFONT made : fonts_) {
    if (made != nullptr) {
      DeleteObject(made);
    }
  }
}

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
  bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bitmap_ == nullptr) {
    return;
  }
  bits_ = static_cast<std::uint32_t*>(bits);
  memory_ = CreateCompatibleDC(nullptr);
  firstBitmap_ = SelectObject(memory_, bitmap_);
  SetBkMode(memory_, TRANSPARENT);
}

void GdiCanvas::release() {
  if (memory_ != nullptr) {
    SelectObject(memory_, firstBitmap_);
    SelectObject(memory_, GetStockObject(BLACK_PEN));
    DeleteDC(memory_);
    memory_ = nullptr;
  }
  if (bitmap_ != nullptr) {
    DeleteObject(bitmap_);
    bitmap_ = nullptr;
  }
  if (pen_ != nullptr) {
    DeleteObject(pen_);
    pen_ = nullptr;
  }
  bits_ = nullptr;
}

void GdiCanvas::makeFonts() {
  for (std::size_t size = 0; size < fonts_.size(); ++size) {
    if (fonts_.at(size) != nullptr) {
      DeleteObject(fonts_.at(size));
    }
    const FontKind& kind = fontKinds.at(size);
    fonts_.at(size) = CreateFontW(-scaled(kind.height, dpi_), 0, 0, 0, kind.weight, FALSE, FALSE,
                                  FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                  ANTIALIASED_QUALITY, VARIABLE_PITCH | FF_SWISS, L"Segoe UI");
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

void GdiCanvas::fill(const PixelRect& rect, std::uint32_t color) {
  const RECT area = rectOf(rect);
  SetDCBrushColor(memory_, colorRef(color));
  FillRect(memory_, &area, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

void GdiCanvas::outline(const PixelRect& rect, std::uint32_t color) {
  const RECT area = rectOf(rect);
  SetDCBrushColor(memory_, colorRef(color));
  FrameRect(memory_, &area, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

void GdiCanvas::dim(const PixelRect& rect) {
  const ScreenTarget target = pixelsOf(rect);
  for (int y = 0; y < target.height; ++y) {
    std::uint32_t* const row = target.pixels + y * target.pitch;
    std::transform(row, row + target.width, row,
                   [](std::uint32_t pixel) { return pixel >> 3 & 0x1F1F1F; });
  }
}

void GdiCanvas::dot(const PixelRect& rect, std::uint32_t color) {
  useLine(color);
  SelectObject(memory_, GetStockObject(DC_BRUSH));
  SetDCBrushColor(memory_, colorRef(color));
  Ellipse(memory_, rect.left, rect.top, rect.left + rect.width, rect.top + rect.height);
}

void GdiCanvas::circle(int x, int y, int radius, std::uint32_t color) {
  useLine(color);
  SelectObject(memory_, GetStockObject(NULL_BRUSH));
  Ellipse(memory_, x - radius, y - radius, x + radius + 1, y + radius + 1);
}

void GdiCanvas::polyline(const std::vector<POINT>& points, std::uint32_t color) {
  useLine(color);
  Polyline(memory_, points.data(), static_cast<int>(points.size()));
}

// Selects a pen; its width follows the screen's resolution.
void GdiCanvas::useLine(std::uint32_t color) {
  if (pen_ == nullptr || color != penColor_) {
    HPEN pen = CreatePen(PS_SOLID, std::max(1, dpi_ / 96), colorRef(color));
    SelectObject(memory_, pen);
    if (pen_ != nullptr) {
      DeleteObject(pen_);
    }
    pen_ = pen;
    penColor_ = color;
  }
}

void GdiCanvas::text(const PixelRect& rect, const std::string& utf8, TextSize size,
                     std::uint32_t color, TextAlign align) {
  const std::wstring wide = wideOf(utf8);
  RECT area = rectOf(rect);
  SelectObject(memory_, font(size));
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
  SelectObject(memory_, font(size));
  GetTextExtentPoint32W(memory_, wide.data(), static_cast<int>(wide.size()), &extent);
  return static_cast<int>(extent.cx);
}

}  // namespace orvane::host
