// Exposure, gain and offset: their steps for keys, and their places on sliders.
#include "live_view/live_controls.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

#include "session/camera_catalogue.hpp"

namespace orvane::host {

namespace {

constexpr int muchLonger = 10;  // steps: a factor of ten

// Wider than the slider's, for makers with fine units.
constexpr NumberRange offsetKeyRange{0, 10000};

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

std::optional<ControlsRequest> controlsAfter(ViewCommand command, const ControlsRequest& now,
                                             const oc::CameraInfo& camera) {
  ControlsRequest after = now;
  const auto expose = [&](int steps) {
    after.exposureUs = steppedExposure(now.exposureUs, steps, longestExposureOf(camera));
    return after;
  };
  const NumberRange gains = gainRangeOf(camera);
  const auto amplify = [&](std::int64_t change) {
    after.gain = gains.clamped(now.gain + change);
    return after;
  };
  const auto lift = [&](std::int64_t change) {
    after.offset = offsetKeyRange.clamped(now.offset + change);
    return after;
  };
  switch (command) {
    case ViewCommand::LongerExposure:
      return expose(1);
    case ViewCommand::ShorterExposure:
      return expose(-1);
    case ViewCommand::MuchLongerExposure:
      return expose(muchLonger);
    case ViewCommand::MuchShorterExposure:
      return expose(-muchLonger);
    case ViewCommand::MoreGain:
      return amplify(gains.step(false));
    case ViewCommand::LessGain:
      return amplify(-gains.step(false));
    case ViewCommand::MuchMoreGain:
      return amplify(gains.step(true));
    case ViewCommand::MuchLessGain:
      return amplify(-gains.step(true));
    case ViewCommand::MoreOffset:
      return lift(1);
    case ViewCommand::LessOffset:
      return lift(-1);
    default:
      return std::nullopt;
  }
}

ControlsRequest controlsAfter(SliderKind slider, double place, const ControlsRequest& now,
                              const oc::CameraInfo& camera) {
  ControlsRequest after = now;
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

double placeOf(SliderKind slider, const ControlsRequest& now, const oc::CameraInfo& camera) {
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
