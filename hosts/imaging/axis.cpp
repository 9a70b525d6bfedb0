// Round numbers for the axes of charts.
#include "imaging/axis.hpp"

#include <algorithm>
#include <cmath>

#include "system/text.hpp"

namespace orvane::host {

namespace {

// 1, 2 or 5 times a power of ten: the first that is no smaller.
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
