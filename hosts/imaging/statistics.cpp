// Counts a frame's samples: smallest, largest, mean, histogram, saturation.
#include "imaging/statistics.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace orvane::host {

namespace {

// Enough for a smooth curve.
constexpr double enoughPixels = 300'000;

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
  std::array<std::uint64_t, 3> sums{};
  std::uint64_t saturated = 0;
  for (ChannelHistogram& channel : histogram.channel) {
    channel.smallest = std::numeric_limits<int>::max();
  }
  const auto add = [&](std::size_t number, int sample) {
    ChannelHistogram& channel = histogram.channel.at(number);
    const auto clamped = static_cast<std::size_t>(std::min(sample, histogram.fullScale));
    ++channel.bins.at(clamped * ChannelHistogram::binCount /
                      (static_cast<std::size_t>(histogram.fullScale) + 1));
    channel.smallest = std::min(channel.smallest, sample);
    channel.largest = std::max(channel.largest, sample);
    sums.at(number) += static_cast<std::uint64_t>(sample);
    saturated += sample >= histogram.fullScale ? 1 : 0;
  };
  // Squares of 2 x 2 pixels: each holds every colour of a Bayer pattern.
  for (int y = 0; y < layout.height; y += y % 2 == 0 ? 1 : 2 * every - 1) {
    for (int x = 0; x < layout.width; x += x % 2 == 0 ? 1 : 2 * every - 1) {
      const std::size_t pixel = pixelIndex(layout.width, x, y);
      if (isRgb) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
          add(channel, frame[3 * pixel + channel]);
        }
      } else {
        // Red is in red's row and column, blue in neither, green in one of the two.
        const std::size_t channel =
            isBayer ? (x % 2 != red.column ? 1U : 0U) + (y % 2 != red.row ? 1U : 0U) : 0U;
        add(channel, sampleAt(frame, layout.format, pixel));
      }
    }
  }
  std::uint64_t all = 0;
  for (std::size_t number = 0; number < sums.size(); ++number) {
    ChannelHistogram& channel = histogram.channel.at(number);
    const auto count = std::accumulate(channel.bins.begin(), channel.bins.end(), std::uint64_t{0});
    all += count;
    if (count > 0) {
      channel.mean = static_cast<double>(sums.at(number)) / static_cast<double>(count);
    } else {
      channel.smallest = 0;
    }
  }
  histogram.saturated = all > 0 ? static_cast<double>(saturated) / static_cast<double>(all) : 0;
  return histogram;
}

}  // namespace orvane::host
