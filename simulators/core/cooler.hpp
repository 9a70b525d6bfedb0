// The temperature of a sensor, with and without a cooler.
#pragma once

#include <cstdint>

namespace orvane::sim {

// The temperature depends on the clock and on the time and value of the last setting only. It
// approaches its goal exponentially and fluctuates a little.
class Cooler {
 public:
  // Call it when the camera is opened: the sensor starts at the air's temperature and warms up.
  void start(std::int64_t now);

  // Cools to `target` degrees Celsius, as far as the cooler can, or stops cooling.
  void set(std::int64_t now, bool isOn, double target);

  double temperature(std::int64_t now) const;  // degrees Celsius
  double power(std::int64_t now) const;        // the cooler's, in percent of its full power

 private:
  double settled(std::int64_t now) const;
  double goal() const;

  bool isOn_ = false;
  double target_ = 0;
  std::int64_t since_ = 0;
  double from_ = 0;
};

}  // namespace orvane::sim
