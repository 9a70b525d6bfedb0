// The history of "oc_capture watch": points in bounded memory, and their plot over time.
#include "oc_capture/watch_history.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <span>

#include "imaging/canvas.hpp"

namespace orvane::host {

namespace {

WatchPoint merged(std::span<const WatchPoint> points) {
  WatchPoint all = points.back();
  double sum = 0;
  for (const WatchPoint& point : points) {
    sum += point.statistics.mean;
    all.statistics.smallest = std::min(all.statistics.smallest, point.statistics.smallest);
    all.statistics.largest = std::max(all.statistics.largest, point.statistics.largest);
    all.statistics.saturated = std::max(all.statistics.saturated, point.statistics.saturated);
  }
  all.statistics.mean = sum / static_cast<double>(points.size());
  return all;
}

constexpr Colour paleBlue{198, 218, 240};

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
    canvas_.text(left, top_ - 32, title, chart::ink);
    for (const double tick : values_.ticks()) {
      canvas_.fill(left, y(tick), right - left, 1, chart::grid);
      canvas_.textToTheLeft(left - 12, y(tick) - 8, values_.label(tick), chart::faintInk);
    }
    for (const double tick : time_.ticks()) {
      canvas_.fill(x(tick), top_, 1, panelHeight, chart::grid);
      canvas_.textInTheMiddle(x(tick), top_ + panelHeight + 10, time_.label(tick), chart::faintInk);
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
    canvas_.textInTheMiddle((left + right) / 2, top_ + panelHeight / 2 - 8, text, chart::faintInk);
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

// An axis for the values of the points. None if they have no values.
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

void drawTemperatures(Canvas& canvas, int top, const Axis& time,
                      const std::vector<WatchPoint>& points) {
  const ValueOf temperature = [](const WatchPoint& point) { return point.temperature; };
  const auto axis = axisOf(points, temperature, temperature);
  const Panel panel(canvas, top, time, axis.value_or(Axis()));
  panel.drawFrame("Temperature, degrees Celsius");
  if (axis) {
    panel.drawLine(points, temperature, chart::red);
  } else {
    panel.write("The camera tells no temperature.");
  }
}

double zero(const WatchPoint&) {
  return 0;
}

void drawSamples(Canvas& canvas, int top, const Axis& time, const std::vector<WatchPoint>& points) {
  const ValueOf mean = [](const WatchPoint& point) { return point.statistics.mean; };
  const ValueOf largest = [](const WatchPoint& point) { return point.statistics.largest; };
  const Panel panel(canvas, top, time, axisOf(points, zero, largest).value_or(Axis()));
  panel.drawFrame("Samples: mean, and from the smallest to the largest");
  panel.drawBand(points, paleBlue);
  panel.drawLine(points, mean, chart::blue);
}

void drawSaturation(Canvas& canvas, int top, const Axis& time,
                    const std::vector<WatchPoint>& points) {
  const ValueOf saturated = [](const WatchPoint& point) {
    return static_cast<double>(point.statistics.saturated);
  };
  const Axis counts = axisOf(points, zero, saturated).value_or(Axis());
  const Panel panel(canvas, top, time, counts.low < 0 ? Axis() : counts);
  panel.drawFrame("Saturated pixels");
  panel.drawLine(points, saturated, chart::orange);
}

}  // namespace

void WatchHistory::add(const WatchPoint& point) {
  pending_.push_back(point);
  if (pending_.size() < framesPerPoint_) {
    return;
  }
  points_.push_back(merged(pending_));
  pending_.clear();
  if (points_.size() == mostPoints) {
    halve();
  }
}

void WatchHistory::halve() {
  for (std::size_t index = 0; index < mostPoints / 2; ++index) {
    points_[index] = merged(std::span(points_).subspan(2 * index, 2));
  }
  points_.resize(mostPoints / 2);
  framesPerPoint_ *= 2;
}

ScreenImage watchPlot(const WatchHistory& history, const std::string& title) {
  const auto& points = history.points();
  constexpr int timeSteps = 8;
  const Axis time = axisFor(0, std::max(points.back().seconds, 1e-3), timeSteps);
  Canvas canvas(width, firstTop + 3 * panelStep, chart::paper);
  canvas.text(left, 28, title, chart::ink, 3);
  drawTemperatures(canvas, firstTop, time, points);
  drawSamples(canvas, firstTop + panelStep, time, points);
  drawSaturation(canvas, firstTop + 2 * panelStep, time, points);
  canvas.textToTheLeft(right, firstTop + 2 * panelStep + panelHeight + 38, "time, s", chart::ink);
  return canvas.image();
}

}  // namespace orvane::host
