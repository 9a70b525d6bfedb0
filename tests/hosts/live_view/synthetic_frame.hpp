// Frames with known stars, for tests.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

#include "imaging/frame_layout.hpp"

namespace orvane::testing {

/// A frame of 16 bits whose samples are given by a function of x and y, held within their range.
inline std::vector<std::uint8_t> frame16(const host::FrameLayout& layout,
                                         const std::function<double(int, int)>& sampleAt) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(host::frameBytes(layout));
  for (int y = 0; y < layout.height; ++y) {
    for (int x = 0; x < layout.width; ++x) {
      const auto sample = static_cast<unsigned>(std::clamp(sampleAt(x, y), 0.0, 65535.0));
      bytes.push_back(static_cast<std::uint8_t>(sample & 0xFFU));
      bytes.push_back(static_cast<std::uint8_t>(sample >> 8U));
    }
  }
  return bytes;
}

/// The light of a star at a pixel: a bell of this width (standard deviation) around its centre,
/// where 0.5 is the middle of the first pixel.
inline double starLight(int x, int y, double centreX, double centreY, double width, double peak) {
  const double right = x + 0.5 - centreX;
  const double down = y + 0.5 - centreY;
  return peak * std::exp(-(right * right + down * down) / (2 * width * width));
}

/// Something that looks like noise and is the same in every run: -1 to 1.
inline double grain(int x, int y) {
  std::uint32_t bits = static_cast<std::uint32_t>(x) * 73856093U ^
                       static_cast<std::uint32_t>(y) * 19349663U ^ 0x9E3779B9U;
  bits ^= bits >> 16U;
  bits *= 0x7FEB352DU;
  bits ^= bits >> 15U;
  bits *= 0x846CA68BU;
  bits ^= bits >> 16U;
  return static_cast<double>(bits) / 2147483647.5 - 1;
}

}  // namespace orvane::testing
