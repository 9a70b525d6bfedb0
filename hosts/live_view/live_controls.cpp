// Exposure, gain and offset: their steps for keys, and their places on sliders.
#include "live_view/live_controls.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include "session/camera_catalogue.hpp"

namespace orvane::host {

namespace {

// Shorter ones are useless at night.
constexpr std::int64_t shortestSliderExposureUs = 10;

// Cameras do not report their range of offsets; they refuse an offset that is too large. The keys'
// range is wider, for makers with fine units.
constexpr NumberRange offsetSliderRange{0, 300};
constexpr NumberRange offsetKeyRange{0, 10000};

struct Step {
  ViewCommand command;
  SliderKind control;
  int direction;
  bool isLarge = false;
};

constexpr Step commandSteps[] = {
    {ViewCommand::LongerExposure, SliderKind::Exposure, 1},
    {ViewCommand::ShorterExposure, SliderKind::Exposure, -1},
    {ViewCommand::MuchLongerExposure, SliderKind::Exposure, 1, true},
    {ViewCommand::MuchShorterExposure, SliderKind::Exposure, -1, true},
    {ViewCommand::MoreGain, SliderKind::Gain, 1},
    {ViewCommand::LessGain, SliderKind::Gain, -1},
    {ViewCommand::MuchMoreGain, SliderKind::Gain, 1, true},
    {ViewCommand::MuchLessGain, SliderKind::Gain, -1, true},
    {ViewCommand::MoreOffset, SliderKind::Offset, 1},
    {ViewCommand::LessOffset, SliderKind::Offset, -1},
};

const std::vector<std::int64_t>& stepTable() {
  static const std::vector<std::int64_t> table = [] {
    std::vector<std::int64_t> steps;
    for (std::int64_t unit = 1; unit <= longestExposureUs; unit *= 10) {
      // Ten even factors a decade, rounded.
      for (const double factor : {1.0, 1.25, 1.6, 2.0, 2.5, 3.2, 4.0, 5.0, 6.4, 8.0}) {
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

std::int64_t clampedExposure(std::int64_t exposureUs, std::int64_t longestUs) {
  return std::clamp<std::int64_t>(exposureUs, 1, std::max<std::int64_t>(longestUs, 1));
}

// On the slider's logarithmic scale.
double lengthOnSlider(std::int64_t exposureUs) {
  return std::log(static_cast<double>(exposureUs) / shortestSliderExposureUs);
}

}  // namespace

std::int64_t steppedExposure(std::int64_t exposureUs, int steps, std::int64_t longestUs) {
  const std::vector<std::int64_t>& table = stepTable();
  const auto last = static_cast<std::ptrdiff_t>(table.size()) - 1;
  // From the nearest step that is not longer, or on the way to shorter ones not shorter.
  const auto from = steps >= 0 ? std::upper_bound(table.begin(), table.end(), exposureUs) - 1
                               : std::lower_bound(table.begin(), table.end(), exposureUs);
  const std::ptrdiff_t index = std::clamp<std::ptrdiff_t>(from - table.begin() + steps, 0, last);
  return clampedExposure(table[static_cast<std::size_t>(index)], longestUs);
}

double exposurePlace(std::int64_t exposureUs, std::int64_t longestUs) {
  const double range = lengthOnSlider(longestUs);
  const double length = lengthOnSlider(std::max<std::int64_t>(exposureUs, 1));
  return range > 0 ? std::clamp(length / range, 0.0, 1.0) : 0;
}

std::int64_t exposureAtPlace(double place, std::int64_t longestUs) {
  if (place >= 1) {
    return longestUs;
  }
  const double wanted = std::max(place, 0.0) * lengthOnSlider(longestUs);
  const auto nearest = std::ranges::min_element(
      stepTable(), {}, [&](std::int64_t step) { return std::abs(lengthOnSlider(step) - wanted); });
  return clampedExposure(*nearest, longestUs);
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

std::int64_t longestExposureOf(const oc::CameraInfo& camera) {
  return hasLongestExposure(camera) ? std::min(camera.maxExposureUs, longestExposureUs)
                                    : longestExposureUs;
}

NumberRange gainRangeOf(const oc::CameraInfo& camera) {
  return hasGainRange(camera) ? NumberRange{camera.minGain, camera.maxGain} : NumberRange{0, 500};
}

std::optional<Controls> controlsAfter(ViewCommand command, const Controls& now,
                                      const oc::CameraInfo& camera) {
  const Step* const step = std::ranges::find(commandSteps, command, &Step::command);
  if (step == std::end(commandSteps)) {
    return std::nullopt;
  }
  Controls after = now;
  const NumberRange gains = gainRangeOf(camera);
  switch (step->control) {
    case SliderKind::Exposure:
      after.exposureUs =
          steppedExposure(now.exposureUs, step->isLarge ? 10 * step->direction : step->direction,
                          longestExposureOf(camera));
      break;
    case SliderKind::Gain:
      after.gain =
          gains.clamped(std::int64_t{now.gain} + step->direction * gains.step(step->isLarge));
      break;
    case SliderKind::Offset:
      after.offset = offsetKeyRange.clamped(std::int64_t{now.offset} + step->direction);
      break;
  }
  return after;
}

Controls controlsAfter(SliderKind slider, double place, const Controls& now,
                       const oc::CameraInfo& camera) {
  Controls after = now;
  switch (slider) {
    case SliderKind::Exposure:
      after.exposureUs = exposureAtPlace(place, longestExposureOf(camera));
      break;
    case SliderKind::Gain:
      after.gain = gainRangeOf(camera).atPlace(place);
      break;
    case SliderKind::Offset:
      after.offset = offsetSliderRange.atPlace(place);
      break;
  }
  return after;
}

double placeOf(SliderKind slider, const Controls& now, const oc::CameraInfo& camera) {
  switch (slider) {
    case SliderKind::Exposure:
      return exposurePlace(now.exposureUs, longestExposureOf(camera));
    case SliderKind::Gain:
      return gainRangeOf(camera).place(now.gain);
    case SliderKind::Offset:
      break;
  }
  return offsetSliderRange.place(now.offset);
}

}  // namespace orvane::host
