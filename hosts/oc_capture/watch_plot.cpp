// What a watch has seen as a plot over time.
#include "oc_capture/watch_plot.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "imaging/canvas.hpp"

namespace orvane::host {

namespace {

constexpr Colour paper{255, 255, 255};
constexpr Colour grid{216, 220, 226};
constexpr Colour ink{32, 36, 44};
constexpr Colour faintInk{104, 112, 124};
constexpr Colour red{190, 52, 52};
constexpr Colour blue{46, 110, 180};
constexpr Colour paleBlue{198, 218, 240};
constexpr Colour orange{214, 116, 36};

constexpr int width = 1280;
constexpr int left = 130;
constexpr int right = width - 40;
constexpr int firstTop = 120;
constexpr int panelHeight = 200;
constexpr int panelStep = 280;

using ValueOf = std::function<std::optional<double>(const WatchPoint&)>;

// One of the three plots.
class Panel {
 public:
  Panel(Canvas& canvas, int top, const Axis& time, const Axis& values)
      : canvas_(canvas), top_(top), time_(time), values_(values) {}

  void drawFrame(const std::string& title) const {
    canvas_.text(left, top_ - 32, title, ink);
    for (const double tick : values_.ticks()) {
      canvas_.fill(left, y(tick), right - left, 1, grid);
      canvas_.textToTheLeft(left - 12, y(tick) - 8, values_.label(tick), faintInk);
    }
    for (const double tick : time_.ticks()) {
      canvas_.fill(x(tick), top_, 1, panelHeight, grid);
      canvas_.textInTheMiddle(x(tick), top_ + panelHeight + 10, time_.label(tick), faintInk);
    }
  }

  void drawBand(const std::vector<WatchPoint>& points, Colour colour) const {
    int before = points.empty() ? 0 : x(points.front().seconds);
    for (const WatchPoint& point : points) {
      const int at = x(point.seconds);
      const int high = y(point.statistics.largest);
      const int low = y(point.statistics.smallest);
      canvas_.fill(before, high, std::max(at - before, 2), low - high + 1, colour);
      before = at;
    }
  }

  void drawLine(const std::vector<WatchPoint>& points, const ValueOf& valueOf,
                Colour colour) const {
    const WatchPoint* before = nullptr;
    for (const WatchPoint& point : points) {
      if (valueOf(point)) {
        const WatchPoint& from = before == nullptr ? point : *before;
        canvas_.line(x(from.seconds), y(*valueOf(from)), x(point.seconds), y(*valueOf(point)),
                     colour, 2);
        before = &point;
      }
    }
  }

  void write(const std::string& text) const {
    canvas_.textInTheMiddle((left + right) / 2, top_ + panelHeight / 2 - 8, text, faintInk);
  }

 private:
  int x(double seconds) const {
    return left + static_cast<int>(std::lround(time_.part(seconds) * (right - left)));
  }

  int y(double value) const {
    return top_ + panelHeight - static_cast<int>(std::lround(values_.part(value) * panelHeight));
  }

  Canvas& canvas_;
  int top_;
  Axis time_;
  Axis values_;
};

// Around all values that there are; nothing when there are none.
std::optional<Axis> axisOf(const std::vector<WatchPoint>& points, const ValueOf& lowest,
                           const ValueOf& highest) {
  std::optional<double> smallest;
  std::optional<double> largest;
  for (const WatchPoint& point : points) {
    if (lowest(point) && highest(point)) {
      smallest = std::min(smallest.value_or(*lowest(point)), *lowest(point));
      largest = std::max(largest.value_or(*highest(point)), *highest(point));
    }
  }
  constexpr int steps = 4;
  return smallest ? std::optional(axisFor(*smallest, *largest, steps)) : std::nullopt;
}

}  // namespace

ScreenImage watchPlot(const WatchHistory& history, const std::string& title) {
  const auto& points = history.points();
  const ValueOf temperature = [](const WatchPoint& point) { return point.temperature; };
  const ValueOf mean = [](const WatchPoint& point) { return point.statistics.mean; };
  const ValueOf largest = [](const WatchPoint& point) { return point.statistics.largest; };
  const ValueOf saturated = [](const WatchPoint& point) {
    return static_cast<double>(point.statistics.saturated);
  };
  const ValueOf zero = [](const WatchPoint&) { return 0.0; };

  constexpr int timeSteps = 8;
  const Axis time = axisFor(0, std::max(points.back().seconds, 1e-3), timeSteps);
  Canvas canvas(width, firstTop + 3 * panelStep, paper);
  canvas.text(left, 28, title, ink, 3);

  const auto temperatures = axisOf(points, temperature, temperature);
  const Panel first(canvas, firstTop, time, temperatures.value_or(Axis()));
  first.drawFrame("Temperature, degrees Celsius");
  if (temperatures) {
    first.drawLine(points, temperature, red);
  } else {
    first.write("The camera tells no temperature.");
  }

  const Panel second(canvas, firstTop + panelStep, time,
                     axisOf(points, zero, largest).value_or(Axis()));
  second.drawFrame("Samples: mean, and from the smallest to the largest");
  second.drawBand(points, paleBlue);
  second.drawLine(points, mean, blue);

  const auto counts = axisOf(points, zero, saturated).value_or(Axis());
  const Panel third(canvas, firstTop + 2 * panelStep, time, counts.low < 0 ? Axis() : counts);
  third.drawFrame("Saturated pixels");
  third.drawLine(points, saturated, orange);
  canvas.textToTheLeft(right, firstTop + 2 * panelStep + panelHeight + 38, "time, s", ink);
  return canvas.image();
}

}  // namespace orvane::host
