// Exposure, gain and offset: what keys and sliders change.
#include "live_view/live_controls.hpp"

#include <algorithm>

#include "session/camera_catalogue.hpp"

namespace orvane::host {

namespace {

constexpr int muchLonger = 10;  // steps: a factor of ten

// Wider than the slider's, for makers with fine units.
constexpr NumberRange offsetKeyRange{0, 10000};

}  // namespace

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
