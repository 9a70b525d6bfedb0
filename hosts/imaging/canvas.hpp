// A picture to draw charts on: areas, lines, small text, other pictures, axes, and their colours.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "imaging/image.hpp"

namespace orvane::host {

struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
};

/// The colours of charts.
namespace chart {
inline constexpr Colour paper{255, 255, 255};
inline constexpr Colour grid{216, 220, 226};
inline constexpr Colour ink{32, 36, 44};
inline constexpr Colour faintInk{104, 112, 124};
inline constexpr Colour blue{46, 110, 180};
inline constexpr Colour orange{214, 116, 36};
inline constexpr Colour red{190, 52, 52};
}  // namespace chart

/// Coordinates are pixels from the top left corner. Whatever is outside is not drawn.
class Canvas {
 public:
  Canvas(int width, int height, Colour background);

  void fill(int x, int y, int width, int height, Colour colour);

  /// A line `thickness` pixels wide.
  void line(double x0, double y0, double x1, double y1, Colour colour, int thickness = 1);

  /// One line of text with its top left corner here. Letters that are not ASCII appear as "?".
  void text(int x, int y, const std::string& text, Colour colour, int scale = 2);

  /// The same, with its top right corner or the middle of its top here.
  void textToTheLeft(int x, int y, const std::string& text, Colour colour, int scale = 2);
  void textInTheMiddle(int x, int y, const std::string& text, Colour colour, int scale = 2);

  /// A picture, grey or in colour, with its top left corner here.
  void picture(int x, int y, const ScreenImage& picture);

  static int textWidth(const std::string& text, int scale = 2);

  const ScreenImage& image() const { return image_; }

 private:
  void set(int x, int y, Colour colour);

  ScreenImage image_;
};

/// An axis from one round number to another.
struct Axis {
  double low = 0;
  double high = 1;
  double step = 1;  ///< from tick to tick

  /// From `low` to `high`, both included.
  std::vector<double> ticks() const;

  /// A tick's number as text, with the decimals that the step needs.
  std::string label(double tick) const;

  /// The place of a value: 0 at the low end, 1 at the high end, clamped.
  double part(double value) const;
};

/// The axis for values in this range, with about `steps` steps. If both values are equal, the axis
/// extends beyond them.
Axis axisFor(double smallest, double largest, int steps);

}  // namespace orvane::host
