// A picture to draw charts on. The only source file that contains the font library's code.
#include "imaging/canvas.hpp"

#include <stb_easy_font.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include "system/text.hpp"

namespace orvane::host {

namespace {

// The font has no other characters.
std::string asciiOnly(const std::string& text) {
  std::string ascii;
  for (const char letter : text) {
    const auto byte = static_cast<unsigned char>(letter);
    if ((byte & 0xC0U) != 0x80U) {  // one "?" for each character, however many bytes it has
      ascii += byte >= ' ' && byte <= '~' ? letter : '?';
    }
  }
  return ascii;
}

// The font's letters consist of rectangles.
struct Rectangle {
  float left, top, right, bottom;
};

std::vector<Rectangle> rectanglesOf(const std::string& text) {
  constexpr std::size_t bytesOfCorner = 16;
  constexpr std::size_t bytesOfRectangle = 4 * bytesOfCorner;
  constexpr std::size_t mostPerLetter = 32;
  std::string ascii = asciiOnly(text);
  std::vector<char> corners((ascii.size() + 1) * mostPerLetter * bytesOfRectangle);
  const int count = stb_easy_font_print(0, 0, ascii.data(), nullptr, corners.data(),
                                        static_cast<int>(corners.size()));
  std::vector<Rectangle> rectangles(static_cast<std::size_t>(count));
  for (std::size_t index = 0; index < rectangles.size(); ++index) {
    const char* const first = corners.data() + index * bytesOfRectangle;
    std::memcpy(&rectangles[index].left, first, 2 * sizeof(float));
    std::memcpy(&rectangles[index].right, first + 2 * bytesOfCorner, 2 * sizeof(float));
  }
  return rectangles;
}

// Rounds up to 1, 2 or 5 times a power of ten.
double roundedUp(double step) {
  const double power = std::pow(10, std::floor(std::log10(step)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= step * (1 - 1e-9)) {
      return factor * power;
    }
  }
  return 10 * power;
}

}  // namespace

Canvas::Canvas(int width, int height, Colour background) : image_{width, height, 3, {}} {
  image_.samples.resize(pixelCount(width, height) * 3);
  fill(0, 0, width, height, background);
}

void Canvas::set(int x, int y, Colour colour) {
  if (x < 0 || y < 0 || x >= image_.width || y >= image_.height) {
    return;
  }
  const std::size_t at = pixelIndex(image_.width, x, y) * 3;
  image_.samples[at] = colour.red;
  image_.samples[at + 1] = colour.green;
  image_.samples[at + 2] = colour.blue;
}

void Canvas::fill(int x, int y, int width, int height, Colour colour) {
  for (int row = y; row < y + height; ++row) {
    for (int column = x; column < x + width; ++column) {
      set(column, row, colour);
    }
  }
}

void Canvas::line(double x0, double y0, double x1, double y1, Colour colour, int thickness) {
  const double steps = std::max({std::abs(x1 - x0), std::abs(y1 - y0), 1.0});
  const int before = (thickness - 1) / 2;
  for (int step = 0; step <= static_cast<int>(std::ceil(steps)); ++step) {
    const double part = std::min(step / steps, 1.0);
    fill(static_cast<int>(std::lround(x0 + (x1 - x0) * part)) - before,
         static_cast<int>(std::lround(y0 + (y1 - y0) * part)) - before, thickness, thickness,
         colour);
  }
}

void Canvas::text(int x, int y, const std::string& text, Colour colour, int scale) {
  for (const Rectangle& part : rectanglesOf(text)) {
    fill(x + static_cast<int>(part.left) * scale, y + static_cast<int>(part.top) * scale,
         static_cast<int>(part.right - part.left) * scale,
         static_cast<int>(part.bottom - part.top) * scale, colour);
  }
}

void Canvas::textToTheLeft(int x, int y, const std::string& text, Colour colour, int scale) {
  this->text(x - textWidth(text, scale), y, text, colour, scale);
}

void Canvas::textInTheMiddle(int x, int y, const std::string& text, Colour colour, int scale) {
  this->text(x - textWidth(text, scale) / 2, y, text, colour, scale);
}

void Canvas::picture(int x, int y, const ScreenImage& picture) {
  const auto channels = static_cast<std::size_t>(picture.channels);
  const std::size_t green = channels == 3 ? 1 : 0;
  std::size_t at = 0;
  for (int row = 0; row < picture.height; ++row) {
    for (int column = 0; column < picture.width; ++column, at += channels) {
      set(x + column, y + row,
          {picture.samples[at], picture.samples[at + green], picture.samples[at + 2 * green]});
    }
  }
}

int Canvas::textWidth(const std::string& text, int scale) {
  std::string ascii = asciiOnly(text);
  return stb_easy_font_width(ascii.data()) * scale;
}

std::vector<double> Axis::ticks() const {
  std::vector<double> values;
  const auto count = std::lround((high - low) / step);
  for (long index = 0; index <= count; ++index) {
    values.push_back(low + static_cast<double>(index) * step);
  }
  return values;
}

std::string Axis::label(double tick) const {
  const double digits = -std::floor(std::log10(step) + 1e-9);
  const double value = std::abs(tick) < step / 2 ? 0 : tick;  // no "-0"
  return decimal(value, static_cast<int>(std::clamp(digits, 0.0, 12.0)));
}

double Axis::part(double value) const {
  return std::clamp((value - low) / (high - low), 0.0, 1.0);
}

Axis axisFor(double smallest, double largest, int steps) {
  if (!(largest > smallest)) {
    const double room = std::max(std::abs(smallest) * 0.05, 0.5);
    return axisFor(smallest - room, smallest + room, steps);
  }
  Axis axis;
  axis.step = roundedUp((largest - smallest) / steps);
  axis.low = std::floor(smallest / axis.step + 1e-9) * axis.step;
  axis.high = std::ceil(largest / axis.step - 1e-9) * axis.step;
  return axis;
}

}  // namespace orvane::host
