// Steps of exposure and gain, for keys, and places on a slider.
#include "live_view/control_steps.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace orvane::host {

namespace {

// Ten even factors a decade, rounded.
constexpr std::array<double, 10> decade = {1, 1.25, 1.6, 2, 2.5, 3.2, 4, 5, 6.4, 8};

const std::vector<std::int64_t>& stepTable() {
  static const std::vector<std::int64_t> table = [] {
    std::vector<std::int64_t> steps;
    for (std::int64_t unit = 1; unit <= longestExposureUs; unit *= 10) {
      for (const double factor : decade) {
        const std::int64_t step = std::llround(static_cast<double>(unit) * factor);
        // A few microseconds leave no room for ten steps.
        if (step <= longestExposureUs && (steps.empty() || step > steps.back())) {
          steps.push_back(step);
        }
      }
    }
    return steps;
  }();
  return table;
}

}  // namespace

std::int64_t steppedExposure(std::int64_t exposureUs, int steps, std::int64_t longestUs) {
  const std::vector<std::int64_t>& table = stepTable();
  const auto last = static_cast<std::ptrdiff_t>(table.size()) - 1;
  std::ptrdiff_t index = 0;
  if (steps >= 0) {
    // The last step that is not longer, and on from there.
    index = std::upper_bound(table.begin(), table.end(), exposureUs) - table.begin() - 1 + steps;
  } else {
    index = std::lower_bound(table.begin(), table.end(), exposureUs) - table.begin() + steps;
  }
  const std::int64_t step =
      table[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(index, 0, last))];
  return std::clamp<std::int64_t>(step, 1, std::max<std::int64_t>(longestUs, 1));
}

double exposurePlace(std::int64_t exposureUs, std::int64_t longestUs) {
  const double range = std::log(static_cast<double>(longestUs) / shortestSliderExposureUs);
  const double way = std::log(static_cast<double>(std::max<std::int64_t>(exposureUs, 1)) /
                              shortestSliderExposureUs);
  return range > 0 ? std::clamp(way / range, 0.0, 1.0) : 0;
}

std::int64_t exposureAtPlace(double place, std::int64_t longestUs) {
  if (place >= 1) {
    return longestUs;
  }
  const double range = std::log(static_cast<double>(longestUs) / shortestSliderExposureUs);
  const double exact = shortestSliderExposureUs * std::exp(std::max(place, 0.0) * range);
  const std::vector<std::int64_t>& table = stepTable();
  const auto distance = [&](std::int64_t step) {
    return std::abs(std::log(static_cast<double>(step) / exact));
  };
  const auto nearest =
      std::min_element(table.begin(), table.end(),
                       [&](std::int64_t a, std::int64_t b) { return distance(a) < distance(b); });
  return std::clamp<std::int64_t>(*nearest, 1, std::max<std::int64_t>(longestUs, 1));
}

int NumberRange::step(bool isLarge) const {
  const std::int64_t range = std::int64_t{largest} - smallest;
  return static_cast<int>(std::max<std::int64_t>(1, range / (isLarge ? 10 : 100)));
}

int NumberRange::clamped(std::int64_t number) const {
  return static_cast<int>(std::clamp<std::int64_t>(number, smallest, std::max(smallest, largest)));
}

double NumberRange::place(int number) const {
  const double range = static_cast<double>(largest) - smallest;
  return range > 0 ? std::clamp((static_cast<double>(number) - smallest) / range, 0.0, 1.0) : 0;
}

int NumberRange::atPlace(double place) const {
  const double range = static_cast<double>(largest) - smallest;
  return clamped(smallest + std::llround(std::clamp(place, 0.0, 1.0) * range));
}

}  // namespace orvane::host
