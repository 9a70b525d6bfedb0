// Measurements of cameras as a chart.
#pragma once

#include <cstdint>
#include <vector>

#include "imaging/image.hpp"
#include "oc_capture/measurement.hpp"

namespace orvane::host {

/// A row for each measurement: frames and megabytes a second as bars, waits on a logarithmic axis.
ScreenImage benchChart(const std::vector<Measurement>& results, std::int64_t exposureUs);

}  // namespace orvane::host
