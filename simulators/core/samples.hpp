// Samples: the colour of each sample, and the conversion of counts to bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/sensor.hpp"

namespace orvane::sim {

// With the usual exposure and the middle of the gain range the picture is well exposed. Longer
// exposures than the longest count as the longest.
inline constexpr double usualExposureUs = 20'000;
inline constexpr double longestExposureUs = 1e15;

// Samples are processed in blocks. The length is a multiple of the count of numbers that one hash
// gives.
inline constexpr std::int32_t blockLength = 1020;

// The parts of the colours in the light on a sensor without filters.
inline constexpr float redPart = 0.299F;
inline constexpr float greenPart = 0.587F;
inline constexpr float bluePart = 0.114F;

inline bool isColorLayout(Layout layout) {
  return layout == Layout::Bgr24 || layout == Layout::Rgb24;
}

inline std::int32_t samplesPerPixel(Layout layout) {
  return isColorLayout(layout) ? 3 : 1;
}

inline std::int32_t bytesPerSample(Layout layout) {
  return bytesPerPixel(layout) == 2 ? 2 : 1;
}

// Whether the frame has a Bayer pattern.
inline bool isMosaic(const FrameSettings& settings) {
  return settings.mosaic != Mosaic::None &&
         (settings.layout == Layout::Raw8 || settings.layout == Layout::Raw16);
}

// The plane (0 red, 1 green, 2 blue) that a pixel's filter passes.
inline std::size_t filterPlane(Mosaic mosaic, std::int32_t x, std::int32_t y) {
  constexpr std::size_t planes[][2][2] = {
      {{1, 1}, {1, 1}}, {{0, 1}, {1, 2}}, {{2, 1}, {1, 0}}, {{1, 0}, {2, 1}}, {{1, 2}, {0, 1}}};
  return planes[static_cast<std::size_t>(mosaic)][y & 1][x & 1];
}

// The shift to the left that makes samples from the converter's counts; negative: to the right.
std::int32_t sampleShift(const FrameSettings& settings);

// Writes up to a block of counts as samples.
void storeSamples(const std::int32_t* counts, std::int32_t count, Layout layout, std::int32_t shift,
                  std::uint8_t* bytes);

}  // namespace orvane::sim
