// What the samples of a frame are like.
#pragma once

#include <cstdint>
#include <span>

#include "imaging/frame_layout.hpp"

namespace orvane::host {

struct FrameStatistics {
  double mean = 0;
  int smallest = 0;
  int largest = 0;
  std::int64_t saturated = 0;  ///< pixels of which a sample is as large as can be
};

/// Of a frame of frameBytes(layout) bytes, in the numbers that it holds: 0 to 255, or to 65535.
///
/// Some makers shift 16-bit samples up to fill the 16 bits, others leave them at the low end; the
/// largest sample that a converter of `bitDepth` bits can give is looked for in the place that the
/// frame's own largest sample suggests.
FrameStatistics frameStatistics(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                                int bitDepth);

}  // namespace orvane::host
