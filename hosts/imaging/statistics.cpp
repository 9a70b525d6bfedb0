// Counts a frame's samples: smallest, largest, mean, histogram, saturation.
#include "imaging/statistics.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

namespace orvane::host {

namespace {

// Enough for a smooth curve.
constexpr double enoughPixels = 300'000;

// How often each value occurs in a channel.
class ValueCounts {
 public:
  explicit ValueCounts(std::span<const std::uint32_t> counts)
      : counts_(counts), count_(countFrom(0)) {}

  std::uint64_t count() const { return count_; }

  // The samples with this value or a larger one.
  std::uint64_t countFrom(int value) const {
    const auto from = std::min(static_cast<std::size_t>(value), counts_.size());
    return std::accumulate(counts_.begin() + static_cast<std::ptrdiff_t>(from), counts_.end(),
                           std::uint64_t{0});
  }

  ChannelHistogram histogram(int fullScale) const {
    ChannelHistogram channel;
    std::uint64_t seen = 0;
    std::uint64_t sum = 0;
    for (std::size_t value = 0; value < counts_.size(); ++value) {
      const std::uint32_t count = counts_[value];
      if (count == 0) {
        continue;
      }
      const auto sample = static_cast<int>(value);
      const std::size_t clamped = std::min(value, static_cast<std::size_t>(fullScale));
      channel.bins.at(clamped * ChannelHistogram::binCount /
                      (static_cast<std::size_t>(fullScale) + 1)) += count;
      channel.smallest = seen == 0 ? sample : channel.smallest;
      channel.largest = sample;
      channel.median = seen <= count_ / 2 ? sample : channel.median;
      seen += count;
      sum += value * count;
    }
    channel.mean = count_ > 0 ? static_cast<double>(sum) / static_cast<double>(count_) : 0;
    return channel;
  }

 private:
  std::span<const std::uint32_t> counts_;
  std::uint64_t count_;
};

}  // namespace

void SampleRange::add(std::span<const std::uint8_t> frame) {
  const std::size_t samples = sampleCount(frame, format_);
  for (std::size_t index = 0; index < samples; ++index) {
    bitsSeen_ |= static_cast<unsigned>(sampleAt(frame, format_, index));
  }
}

int SampleRange::fullScale() const {
  if (format_ != PixelFormat::Raw16) {
    return 255;
  }
  const int bits = bitDepth_ < 8 || bitDepth_ > 16 ? 16 : bitDepth_;
  const unsigned largest = (1U << bits) - 1;
  const unsigned unusedBits = (1U << (16 - bits)) - 1;  // of left-aligned samples
  const bool isRightAligned = bitsSeen_ <= largest && (bitsSeen_ & unusedBits) != 0;
  return static_cast<int>(isRightAligned ? largest : largest << (16 - bits));
}

FrameStatistics frameStatistics(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                                int bitDepth) {
  SampleRange range(layout.format, bitDepth);
  range.add(frame);
  const int fullScale = range.fullScale();
  const std::size_t channels = layout.format == PixelFormat::Rgb24 ? 3 : 1;
  const std::size_t samples = sampleCount(frame, layout.format);
  FrameStatistics statistics;
  if (samples == 0) {
    return statistics;
  }
  std::int64_t sum = 0;
  statistics.smallest = std::numeric_limits<int>::max();
  for (std::size_t pixel = 0; pixel < samples; pixel += channels) {
    int brightest = 0;
    for (std::size_t channel = 0; channel < channels; ++channel) {
      const int sample = sampleAt(frame, layout.format, pixel + channel);
      sum += sample;
      statistics.smallest = std::min(statistics.smallest, sample);
      brightest = std::max(brightest, sample);
    }
    statistics.largest = std::max(statistics.largest, brightest);
    statistics.saturated += brightest >= fullScale ? 1 : 0;
  }
  statistics.mean = static_cast<double>(sum) / static_cast<double>(samples);
  return statistics;
}

Histogram histogramOf(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                      int fullScale) {
  const bool isRgb = layout.format == PixelFormat::Rgb24;
  const bool isBayer = layout.bayer != BayerPattern::None;
  const RedPixel red = redPixelOf(layout.bayer);
  const double pixels = static_cast<double>(layout.width) * layout.height;
  const int every = std::max(1, static_cast<int>(std::sqrt(pixels / enoughPixels)));

  Histogram histogram;
  histogram.channels = isRgb || isBayer ? 3 : 1;
  histogram.fullScale = std::max(fullScale, 1);
  const std::size_t values = layout.format == PixelFormat::Raw16 ? 65536 : 256;
  std::array<std::vector<std::uint32_t>, 3> counts;
  for (std::size_t channel = 0; channel < static_cast<std::size_t>(histogram.channels); ++channel) {
    counts.at(channel).resize(values);
  }
  // Squares of 2 x 2 pixels: each holds every colour of a Bayer pattern.
  for (int y = 0; y < layout.height; y += y % 2 == 0 ? 1 : 2 * every - 1) {
    for (int x = 0; x < layout.width; x += x % 2 == 0 ? 1 : 2 * every - 1) {
      const std::size_t pixel = pixelIndex(layout.width, x, y);
      if (isRgb) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
          ++counts[channel][frame[3 * pixel + channel]];
        }
      } else {
        // Red is in red's row and column, blue in neither, green in one of the two.
        const std::size_t channel =
            isBayer ? (x % 2 != red.column ? 1U : 0U) + (y % 2 != red.row ? 1U : 0U) : 0U;
        ++counts[channel][static_cast<std::size_t>(sampleAt(frame, layout.format, pixel))];
      }
    }
  }
  std::uint64_t all = 0;
  std::uint64_t saturated = 0;
  for (std::size_t channel = 0; channel < static_cast<std::size_t>(histogram.channels); ++channel) {
    const ValueCounts seen(counts[channel]);
    histogram.channel[channel] = seen.histogram(histogram.fullScale);
    all += seen.count();
    saturated += seen.countFrom(histogram.fullScale);
  }
  histogram.saturated = all > 0 ? static_cast<double>(saturated) / static_cast<double>(all) : 0;
  return histogram;
}

}  // namespace orvane::host
