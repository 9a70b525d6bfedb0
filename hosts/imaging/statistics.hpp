// How a frame's samples are distributed, and which range they have.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "imaging/frame_layout.hpp"

namespace orvane::host {

/// Finds out what the largest sample of a stream of frames can be. Makers put the samples of a
/// converter of 12 bits into the upper or into the lower ones of two bytes, and do not say which.
class SampleRange {
 public:
  /// `bitDepth` is the converter's.
  SampleRange(PixelFormat format, int bitDepth) : format_(format), bitDepth_(bitDepth) {}

  /// Looks at a frame.
  void add(std::span<const std::uint8_t> frame);

  /// The largest value that a sample can have, as far as can be told from the frames so far.
  int fullScale() const;

 private:
  PixelFormat format_;
  int bitDepth_;
  unsigned bitsSeen_ = 0;  // that were set in any sample
};

/// How the samples of one channel are distributed.
struct ChannelHistogram {
  static constexpr std::size_t binCount = 256;

  std::array<std::uint32_t, binCount> bins{};  ///< equal parts of 0 to the full scale
  int smallest = 0;
  int largest = 0;
  double mean = 0;
};

struct Histogram {
  int channels = 1;  ///< 1 grey, or 3: red, green, blue
  int fullScale = 255;
  std::array<ChannelHistogram, 3> channel;
  double saturated = 0;  ///< the part of all samples that have the largest value or more, 0 to 1
};

/// The histogram of a frame. Large frames are looked at in part: every n-th row and column.
/// `frame` holds frameBytes(layout) bytes.
Histogram histogramOf(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                      int fullScale);

}  // namespace orvane::host
