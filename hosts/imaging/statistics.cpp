// How a frame's samples are distributed, and which range they have.
#include "imaging/statistics.hpp"

#include <algorithm>
#include <cmath>

namespace orvane::host {

namespace {

// Enough for a smooth curve.
constexpr double enoughPixels = 300'000;

// Enough to see every bit that is in use.
constexpr std::size_t enoughSamples = 200'000;

int sampleAt(std::span<const std::uint8_t> frame, PixelFormat format, std::size_t index) {
  return format == PixelFormat::Raw16 ? frame[2 * index] | frame[2 * index + 1] << 8 : frame[index];
}

// The channel of each pixel of a mosaic's 2 x 2, row by row.
std::array<std::size_t, 4> mosaicChannels(Mosaic mosaic) {
  switch (mosaic) {
    case Mosaic::Rggb:
      return {0, 1, 1, 2};
    case Mosaic::Grbg:
      return {1, 0, 2, 1};
    case Mosaic::Gbrg:
      return {1, 2, 0, 1};
    case Mosaic::Bggr:
      return {2, 1, 1, 0};
    case Mosaic::None:
      break;
  }
  return {0, 0, 0, 0};
}

// Counts samples one by one.
class Counter {
 public:
  Counter(int channels, int fullScale) {
    histogram_.channels = channels;
    histogram_.fullScale = std::max(fullScale, 1);
    for (ChannelHistogram& channel : histogram_.channel) {
      channel.smallest = histogram_.fullScale;
    }
  }

  void add(std::size_t channel, int sample) {
    ChannelHistogram& counts = histogram_.channel.at(channel);
    const int held = std::min(sample, histogram_.fullScale);
    const auto bin = static_cast<std::size_t>(held) * ChannelHistogram::binCount /
                     (static_cast<std::size_t>(histogram_.fullScale) + 1);
    ++counts.bins.at(bin);
    counts.smallest = std::min(counts.smallest, sample);
    counts.largest = std::max(counts.largest, sample);
    sums_.at(channel) += static_cast<std::uint64_t>(sample);
    ++numbers_.at(channel);
    saturated_ += sample >= histogram_.fullScale ? 1 : 0;
  }

  Histogram result() {
    std::uint64_t all = 0;
    for (std::size_t channel = 0; channel < numbers_.size(); ++channel) {
      all += numbers_.at(channel);
      if (numbers_.at(channel) > 0) {
        histogram_.channel.at(channel).mean =
            static_cast<double>(sums_.at(channel)) / static_cast<double>(numbers_.at(channel));
      } else {
        histogram_.channel.at(channel).smallest = 0;
      }
    }
    histogram_.saturated = all > 0 ? static_cast<double>(saturated_) / static_cast<double>(all) : 0;
    return histogram_;
  }

 private:
  Histogram histogram_;
  std::array<std::uint64_t, 3> sums_{};
  std::array<std::uint64_t, 3> numbers_{};
  std::uint64_t saturated_ = 0;
};

}  // namespace

void SampleRange::add(std::span<const std::uint8_t> frame) {
  if (format_ != PixelFormat::Raw16) {
    return;
  }
  const std::size_t count = frame.size() / 2;
  const std::size_t step = std::max<std::size_t>(1, count / enoughSamples);
  for (std::size_t index = 0; index < count; index += step) {
    bitsSeen_ |= static_cast<unsigned>(sampleAt(frame, format_, index));
  }
}

int SampleRange::fullScale() const {
  if (format_ != PixelFormat::Raw16) {
    return 255;
  }
  constexpr unsigned whole = 0xFFFF;
  if (bitDepth_ < 8 || bitDepth_ >= 16 || bitsSeen_ == 0) {
    return static_cast<int>(whole);
  }
  const unsigned lowBits = (1U << (16 - bitDepth_)) - 1;
  const unsigned converterRange = (1U << bitDepth_) - 1;
  if ((bitsSeen_ & lowBits) == 0) {
    return static_cast<int>(whole & ~lowBits);  // in the upper bits
  }
  return static_cast<int>(bitsSeen_ <= converterRange ? converterRange : whole);
}

Histogram histogramOf(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                      int fullScale) {
  const bool isRgb = layout.format == PixelFormat::Rgb24;
  const bool isMosaic = layout.mosaic != Mosaic::None;
  const std::array<std::size_t, 4> mosaic = mosaicChannels(layout.mosaic);
  const double pixels = static_cast<double>(layout.width) * layout.height;
  const int every = std::max(1, static_cast<int>(std::sqrt(pixels / enoughPixels)));

  Counter counter(isRgb || isMosaic ? 3 : 1, fullScale);
  const auto addPixel = [&](int x, int y) {
    const std::size_t pixel = static_cast<std::size_t>(y) * static_cast<std::size_t>(layout.width) +
                              static_cast<std::size_t>(x);
    if (isRgb) {
      for (std::size_t channel = 0; channel < 3; ++channel) {
        counter.add(channel, frame[3 * pixel + channel]);
      }
    } else {
      counter.add(mosaic.at(static_cast<std::size_t>(2 * (y % 2) + x % 2)),
                  sampleAt(frame, layout.format, pixel));
    }
  };
  // Pixels in squares of two: each square of a mosaic has every colour.
  for (int y = 0; y < layout.height; y += y % 2 == 0 ? 1 : 2 * every - 1) {
    for (int x = 0; x < layout.width; x += x % 2 == 0 ? 1 : 2 * every - 1) {
      addPixel(x, y);
    }
  }
  return counter.result();
}

}  // namespace orvane::host
