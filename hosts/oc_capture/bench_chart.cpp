// The measurements of "oc_capture bench", and their chart.
#include "oc_capture/bench_chart.hpp"

#include <algorithm>
#include <cmath>
#include <string>

#include "imaging/canvas.hpp"
#include "system/argument_values.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr Colour band{243, 245, 248};
constexpr Colour green{58, 148, 108};
constexpr Colour paleOrange{244, 200, 160};

constexpr int margin = 32;
constexpr int rowHeight = 34;
constexpr int top = 150;  // y of the first row
constexpr int panelWidth = 360;
constexpr int panelGap = 96;
constexpr int formatWidth = 90;

struct Panel {
  int left = 0;
  Axis axis;
  bool isLogarithmic = false;  // the axis has powers of ten

  int x(double value) const {
    return left + static_cast<int>(std::lround(axis.part(value) * panelWidth));
  }
};

int rowTop(std::size_t row) {
  return top + static_cast<int>(row) * rowHeight;
}

void drawGrid(Canvas& canvas, const Panel& panel, const std::string& title, int bottom) {
  canvas.text(panel.left, top - 62, title, chart::ink);
  for (const double tick : panel.axis.ticks()) {
    const int x = panel.x(tick);
    canvas.fill(x, top - 8, 1, bottom - top + 16, chart::grid);
    const std::string label =
        panel.isLogarithmic ? decimal(std::pow(10, tick)) : panel.axis.label(tick);
    canvas.textInTheMiddle(x, top - 34, label, chart::faintInk);
  }
}

double logOf(double milliseconds) {
  return std::log10(std::max(milliseconds, 1e-3));
}

Axis powersFor(const std::vector<Measurement>& results) {
  double smallest = 1e9;
  double largest = 0;
  for (const Measurement& result : results) {
    if (result.frames > 0) {
      smallest = std::min(smallest, result.waitP50);
      largest = std::max(largest, result.waitLongest);
    }
  }
  Axis axis;
  axis.low = std::floor(logOf(std::min(smallest, std::max(largest, 1e-3))));
  axis.high = std::max(std::ceil(logOf(largest)), axis.low + 1);
  return axis;
}

void drawBar(Canvas& canvas, const Panel& panel, int y, double value, Colour colour) {
  const int end = std::max(panel.x(value), panel.left + 1);
  canvas.fill(panel.left, y + 7, end - panel.left, rowHeight - 14, colour);
  canvas.text(end + 6, y + 9, decimal(value, 1), chart::ink);
}

void drawWaits(Canvas& canvas, const Panel& panel, int y, const Measurement& result) {
  const int middle = y + rowHeight / 2;
  const int p50 = panel.x(logOf(result.waitP50));
  const int p90 = panel.x(logOf(result.waitP90));
  const int p99 = panel.x(logOf(result.waitP99));
  const int longest = panel.x(logOf(result.waitLongest));
  canvas.fill(p50, middle - 1, longest - p50, 2, paleOrange);
  canvas.fill(p50, middle - 3, p99 - p50, 6, paleOrange);
  canvas.fill(p90 - 1, middle - 7, 3, 14, chart::orange);
  canvas.fill(p99 - 1, middle - 7, 3, 14, chart::orange);
  canvas.fill(longest - 1, middle - 9, 3, 18, chart::red);
  canvas.fill(p50 - 5, middle - 5, 11, 11, chart::orange);
}

void drawLegend(Canvas& canvas, int left, int y) {
  canvas.fill(left, y + 3, 11, 11, chart::orange);
  canvas.text(left + 18, y, "p50", chart::faintInk);
  canvas.fill(left + 84, y + 1, 3, 14, chart::orange);
  canvas.text(left + 96, y, "p90, p99", chart::faintInk);
  canvas.fill(left + 224, y - 1, 3, 18, chart::red);
  canvas.text(left + 236, y, "longest", chart::faintInk);
}

// The three panels, from left to right.
struct Panels {
  explicit Panels(const std::vector<Measurement>& results) {
    double highestRate = 1e-3;
    double highestFlow = 1e-3;
    int nameWidth = 160;
    for (const Measurement& result : results) {
      nameWidth = std::max(nameWidth, Canvas::textWidth(result.camera));
      highestRate = std::max(highestRate, result.framesPerSecond);
      highestFlow = std::max(highestFlow, result.megabytesPerSecond);
    }
    const int first = margin + nameWidth + 16 + formatWidth;
    rates = {first, axisFor(0, highestRate, 5)};
    flows = {first + panelWidth + panelGap, axisFor(0, highestFlow, 5)};
    waits = {first + 2 * (panelWidth + panelGap), powersFor(results), true};
  }

  Panel rates;  // frames a second
  Panel flows;  // megabytes a second
  Panel waits;
};

void drawRow(Canvas& canvas, const Panels& panels, int y, const Measurement& result) {
  canvas.text(panels.rates.left - formatWidth, y + 9, formatName(result.layout.format), chart::ink);
  if (result.frames > 0) {
    drawBar(canvas, panels.rates, y, result.framesPerSecond, chart::blue);
    drawBar(canvas, panels.flows, y, result.megabytesPerSecond, green);
    drawWaits(canvas, panels.waits, y, result);
  } else {
    canvas.text(panels.rates.left + 6, y + 9, "failed", chart::red);
  }
}

}  // namespace

ScreenImage benchChart(const std::vector<Measurement>& results, std::int64_t exposureUs) {
  const Panels panels(results);
  const int width = panels.waits.left + panelWidth + margin + 24;
  const int bottom = rowTop(results.size());
  Canvas canvas(width, bottom + 56, chart::paper);
  canvas.text(margin, 24, "How fast cameras deliver", chart::ink, 3);
  canvas.textToTheLeft(width - margin, 30, "exposure " + durationText(exposureUs), chart::faintInk);
  for (std::size_t row = 0; row < results.size(); row += 2) {
    canvas.fill(margin - 8, rowTop(row), width - 2 * margin + 16, rowHeight, band);
  }
  drawGrid(canvas, panels.rates, "frames/s", bottom);
  drawGrid(canvas, panels.flows, "MB/s", bottom);
  drawGrid(canvas, panels.waits, "wait from frame to frame, ms", bottom);
  for (std::size_t row = 0; row < results.size(); ++row) {
    if (row == 0 || results[row - 1].camera != results[row].camera) {
      canvas.text(margin, rowTop(row) + 9, results[row].camera, chart::ink);
    }
    drawRow(canvas, panels, rowTop(row), results[row]);
  }
  drawLegend(canvas, panels.waits.left, bottom + 22);
  return canvas.image();
}

}  // namespace orvane::host
