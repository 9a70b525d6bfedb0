#include "core/cooler.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::sim {
namespace {

constexpr double air = 18;           // degrees Celsius
constexpr double selfHeating = 8.5;  // degrees that a running sensor is above the air
constexpr double deepest = 40;       // degrees that the cooler can reach below the air
constexpr double warmingSeconds = 240;
constexpr double coolingSeconds = 45;
constexpr double tremble = 0.06;
constexpr double trembleSeconds = 23;

}  // namespace

void Cooler::start(std::int64_t now) {
  isOn_ = false;
  since_ = now;
  from_ = air;
}

void Cooler::set(std::int64_t now, bool isOn, double target) {
  from_ = settled(now);
  since_ = now;
  isOn_ = isOn;
  target_ = target;
}

double Cooler::goal() const {
  return isOn_ ? std::max(target_, air - deepest) : air + selfHeating;
}

double Cooler::settled(std::int64_t now) const {
  const double seconds = static_cast<double>(now - since_) / 1e6;
  const double time = isOn_ ? coolingSeconds : warmingSeconds;
  return goal() + (from_ - goal()) * std::exp(-seconds / time);
}

double Cooler::temperature(std::int64_t now) const {
  const double seconds = static_cast<double>(now) / 1e6;
  return settled(now) + tremble * std::sin(2 * std::numbers::pi * seconds / trembleSeconds);
}

double Cooler::power(std::int64_t now) const {
  if (!isOn_) {
    return 0;
  }
  const double holding = (air + selfHeating - goal()) / (deepest + selfHeating);
  const double pulling = std::max(0.0, settled(now) - goal()) / deepest;
  return 100 * std::clamp(holding * 0.9 + pulling, 0.0, 1.0);
}

}  // namespace orvane::sim
