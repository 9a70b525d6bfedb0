// What the samples of a frame are like.
#include "imaging/frame_statistics.hpp"

#include <algorithm>
#include <limits>

namespace orvane::host {

namespace {

class Samples {
 public:
  Samples(std::span<const std::uint8_t> frame, bool areWide) : frame_(frame), areWide_(areWide) {}

  std::size_t count() const { return areWide_ ? frame_.size() / 2 : frame_.size(); }

  int operator[](std::size_t index) const {
    return areWide_ ? frame_[2 * index] | frame_[2 * index + 1] << 8 : frame_[index];
  }

 private:
  std::span<const std::uint8_t> frame_;
  bool areWide_;
};

int saturatedSample(int largest, bool areWide, int bitDepth) {
  if (!areWide) {
    return std::numeric_limits<std::uint8_t>::max();
  }
  const int bits = std::clamp(bitDepth, 8, 16);
  const int converterLargest = (1 << bits) - 1;
  return largest > converterLargest ? converterLargest << (16 - bits) : converterLargest;
}

}  // namespace

FrameStatistics frameStatistics(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                                int bitDepth) {
  const bool areWide = layout.format == PixelFormat::Raw16;
  const std::size_t channels = layout.format == PixelFormat::Rgb24 ? 3 : 1;
  const Samples samples(frame, areWide);
  FrameStatistics statistics;
  if (samples.count() == 0) {
    return statistics;
  }
  std::int64_t sum = 0;
  statistics.smallest = statistics.largest = samples[0];
  for (std::size_t index = 0; index < samples.count(); ++index) {
    sum += samples[index];
    statistics.smallest = std::min(statistics.smallest, samples[index]);
    statistics.largest = std::max(statistics.largest, samples[index]);
  }
  statistics.mean = static_cast<double>(sum) / static_cast<double>(samples.count());
  const int limit = saturatedSample(statistics.largest, areWide, bitDepth);
  for (std::size_t pixel = 0; statistics.largest >= limit && pixel < samples.count();
       pixel += channels) {
    bool isSaturated = false;
    for (std::size_t channel = 0; channel < channels; ++channel) {
      isSaturated = isSaturated || samples[pixel + channel] >= limit;
    }
    statistics.saturated += isSaturated ? 1 : 0;
  }
  return statistics;
}

}  // namespace orvane::host
