// Round numbers for the axes of charts.
#pragma once

#include <string>
#include <vector>

namespace orvane::host {

/// An axis from one round number to another.
struct Axis {
  double low = 0;
  double high = 1;
  double step = 1;  ///< from tick to tick

  /// From `low` to `high`, both included.
  std::vector<double> ticks() const;

  /// A tick's number as text, with the decimals that the step needs.
  std::string label(double tick) const;

  /// Where a value lies: 0 at the low end, 1 at the high end, and no further.
  double part(double value) const;
};

/// The axis that holds these values, with about so many steps. Equal values get some room around
/// them.
Axis axisFor(double smallest, double largest, int steps);

}  // namespace orvane::host
