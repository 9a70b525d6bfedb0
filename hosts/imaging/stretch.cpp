// Makes faint images visible: finds a black point and a brightness curve and applies them.
#include "imaging/stretch.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace orvane::host {

namespace {

constexpr std::size_t levels = 65536;

// Counts of the 65536 sample values.
using Histogram = std::vector<std::uint64_t>;

// The sample at this rank, counted from 0, if the samples were sorted.
int valueAtRank(const Histogram& histogram, std::uint64_t rank) {
  std::uint64_t below = 0;
  for (std::size_t value = 0; value < levels; ++value) {
    below += histogram[value];
    if (below > rank) {
      return static_cast<int>(value);
    }
  }
  return static_cast<int>(levels - 1);
}

// Statistics of a channel's samples.
struct Channel {
  double median;
  double deviation;  // the median of the samples' distances from the median
  double brightest;  // the largest, leaving out one in ten thousand
};

Channel channelOf(const Image& image, int number) {
  Histogram histogram(levels);
  const auto channels = static_cast<std::size_t>(image.channels);
  for (auto at = static_cast<std::size_t>(number); at < image.samples.size(); at += channels) {
    ++histogram[image.samples[at]];
  }
  const std::uint64_t count = image.samples.size() / channels;
  const int median = valueAtRank(histogram, count / 2);
  Histogram deviations(levels);
  for (std::size_t value = 0; value < levels; ++value) {
    deviations[static_cast<std::size_t>(std::abs(static_cast<int>(value) - median))] +=
        histogram[value];
  }
  return {static_cast<double>(median), static_cast<double>(valueAtRank(deviations, count / 2)),
          static_cast<double>(valueAtRank(histogram, count - 1 - count / 10000))};
}

Stretch stretchOf(const Channel& channel, double white) {
  if (white <= channel.median) {
    return {};  // no sample is brighter than the background: do not stretch
  }
  // The factor 1.4826 turns the median deviation of noise into its standard deviation. Samples of
  // few bits may have a deviation of 0; the second term keeps the background above black.
  const double noise = std::max(1.4826 * channel.deviation, (white - channel.median) / 256);
  Stretch stretch;
  stretch.black = std::max(0.0, channel.median - 2.8 * noise);
  stretch.white = white;
  // The curve that maps a value to 1/4 has midtonesTransfer(1/4, value) as its midtones.
  const double background =
      std::max(channel.median - stretch.black, noise) / (stretch.white - stretch.black);
  stretch.midtones = std::min(midtonesTransfer(0.25, background), 0.5);
  return stretch;
}

}  // namespace

double midtonesTransfer(double midtones, double value) {
  if (value <= 0 || value >= 1) {
    return std::clamp(value, 0.0, 1.0);
  }
  return (midtones - 1) * value / ((2 * midtones - 1) * value - midtones);
}

std::vector<Stretch> autoStretch(const Image& image) {
  std::vector<Channel> channels;
  double white = 0;
  for (int number = 0; number < image.channels; ++number) {
    channels.push_back(channelOf(image, number));
    white = std::max(white, channels.back().brightest);
  }
  std::vector<Stretch> stretches;
  stretches.reserve(channels.size());
  for (const Channel& channel : channels) {
    stretches.push_back(stretchOf(channel, white));
  }
  return stretches;
}

double stretchedBrightness(const Stretch& stretch, double sample) {
  return midtonesTransfer(stretch.midtones,
                          (sample - stretch.black) / (stretch.white - stretch.black));
}

double sampleOfBrightness(const Stretch& stretch, double brightness) {
  // The curve with the opposite midtones is the inverse.
  return stretch.black +
         midtonesTransfer(1 - stretch.midtones, brightness) * (stretch.white - stretch.black);
}

std::vector<std::uint8_t> screenCurve(const Stretch& stretch) {
  std::vector<std::uint8_t> curve(levels);
  for (std::size_t value = 0; value < levels; ++value) {
    curve[value] = static_cast<std::uint8_t>(
        std::lround(255 * stretchedBrightness(stretch, static_cast<double>(value))));
  }
  return curve;
}

ScreenImage stretched(const Image& image) {
  ScreenImage screen{image.width, image.height, image.channels, {}};
  screen.samples.resize(image.samples.size());
  const auto channels = static_cast<std::size_t>(image.channels);
  const std::vector<Stretch> stretches = autoStretch(image);
  for (std::size_t channel = 0; channel < channels; ++channel) {
    const std::vector<std::uint8_t> curve = screenCurve(stretches[channel]);
    for (std::size_t at = channel; at < image.samples.size(); at += channels) {
      screen.samples[at] = curve[image.samples[at]];
    }
  }
  return screen;
}

ScreenImage previewOf(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                      int longestSide) {
  return previewOf(imageFromFrame(frame, layout), layout.bayer, longestSide);
}

ScreenImage previewOf(Image image, BayerPattern bayer, int longestSide) {
  if (bayer != BayerPattern::None) {
    image = debayer(image, bayer);
  }
  return stretched(shrink(std::move(image), longestSide));
}

}  // namespace orvane::host
