#include "core/camera_model.hpp"

#include <cmath>

namespace orvane::sim {

double gainInDecibelSteps(const SimCamera& model, double gain) {
  const double range = model.gainMax - model.gainMin;
  if (!(range > 0)) {
    return 1;
  }
  const double stepsPerDecade = range < 200 ? range / 1.5 : 200;
  return std::pow(10, clamped((gain - usualGain(model)) / stepsPerDecade, -6, 6));
}

double gainInPercent(const SimCamera& model, double gain) {
  const double middle = usualGain(model);
  return middle > 0 ? clamped(gain / middle, 0, 1e6) : 1;
}

double usualGain(const SimCamera& model) {
  return std::floor((model.gainMin + model.gainMax) / 2);
}

double usualExposureUs(const SimCamera& model) {
  return clamped(normalExposureUs, model.exposureMinUs, model.exposureMaxUs);
}

double usualOffset(const SimCamera& model) {
  return clamped(10, model.offsetMin, model.offsetMax);
}

double clamped(double value, double minimum, double maximum) {
  return minimum <= maximum ? std::clamp(value, minimum, maximum) : value;
}

}  // namespace orvane::sim
