// Counts a frame's samples: smallest, largest, mean, histogram, saturation.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "imaging/frame_layout.hpp"

namespace orvane::host {

/// Finds the full scale of a stream of frames: the largest value that a sample can have. A sample
/// of this value or more is saturated.
///
/// The full scale of 8-bit samples is 255. 16-bit samples of a converter with fewer bits are either
/// left-aligned (12 bits: 0 to 65520) or right-aligned (0 to 4095), and the SDKs do not tell which.
/// So the samples are examined: they are right-aligned if all of them fit into the converter's bits
/// and at least one has a bit that left-aligned samples leave at zero. Samples that the SDK
/// averaged or scaled after the conversion have such bits too, but do not fit; their full scale is
/// that of left-aligned samples.
class SampleRange {
 public:
  /// `bitDepth` is the converter's, 8 to 16; any other counts as 16.
  SampleRange(PixelFormat format, int bitDepth) : format_(format), bitDepth_(bitDepth) {}

  void add(std::span<const std::uint8_t> frame);

  /// As far as the frames so far tell.
  int fullScale() const;

 private:
  PixelFormat format_;
  int bitDepth_;
  unsigned bitsSeen_ = 0;  // all samples of 16 bits, combined with OR
};

struct FrameStatistics {
  double mean = 0;
  int smallest = 0;
  int largest = 0;
  std::int64_t saturated = 0;  ///< pixels with a saturated sample
};

/// Counts every sample of a frame of frameBytes(layout) bytes. The full scale is that of this frame
/// alone.
FrameStatistics frameStatistics(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                                int bitDepth);

/// How the samples of one channel are distributed.
struct ChannelHistogram {
  static constexpr std::size_t binCount = 256;

  std::array<std::uint32_t, binCount> bins{};  ///< equal parts of 0 to the full scale
  int smallest = 0;
  int largest = 0;
  int median = 0;  ///< of an even number of samples, the larger of the two in the middle
  double mean = 0;
};

struct Histogram {
  int channels = 1;  ///< 1 grey, or 3: red, green, blue
  int fullScale = 255;
  std::array<ChannelHistogram, 3> channel;
  double saturated = 0;  ///< the saturated part of all samples, 0 to 1
};

/// The histogram of a frame of frameBytes(layout) bytes. Large frames are sampled: only every n-th
/// pair of rows and columns is counted.
Histogram histogramOf(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                      int fullScale);

}  // namespace orvane::host
