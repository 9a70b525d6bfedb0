// The temperature of a sensor, with and without a cooler.
#pragma once

#include <cstdint>

namespace orvane::sim {

// The temperature follows from the clock and from when the cooler was told what: it drifts towards
// where it belongs, fast at first, and trembles a little.
class Cooler {
 public:
  // The camera has been opened; the sensor is as warm as the air and begins to warm up.
  void start(std::int64_t now);

  // Cools towards `target` degrees Celsius, as far as the cooler can, or stops cooling.
  void set(std::int64_t now, bool isOn, double target);

  // Degrees Celsius.
  double temperature(std::int64_t now) const;

  // The part of its full power that the cooler takes, percent.
  double power(std::int64_t now) const;

 private:
  double settled(std::int64_t now) const;
  double goal() const;

  bool isOn_ = false;
  double target_ = 0;
  std::int64_t since_ = 0;
  double from_ = 0;
};

}  // namespace orvane::sim
