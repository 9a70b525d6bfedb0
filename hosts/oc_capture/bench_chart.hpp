// The measurements of "oc_capture bench", and their chart.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "imaging/frame_layout.hpp"
#include "imaging/image.hpp"

namespace orvane::host {

/// How fast one camera delivers frames of one format.
struct Measurement {
  std::string camera;
  FrameLayout layout;
  std::int64_t frames = 0;
  double seconds = 0;
  std::int64_t notReadyAnswers = 0;
  std::uint64_t failedReads = 0;
  double framesPerSecond = 0;
  double megabytesPerSecond = 0;
  double waitP50 = 0;  ///< milliseconds from one frame to the next, like the three below
  double waitP90 = 0;
  double waitP99 = 0;
  double waitLongest = 0;
  std::string error;  ///< what failed, or empty; the numbers are from before the failure
};

/// A row for each measurement: frames and megabytes a second as bars, waits on a logarithmic axis.
ScreenImage benchChart(const std::vector<Measurement>& results, std::int64_t exposureUs);

}  // namespace orvane::host
