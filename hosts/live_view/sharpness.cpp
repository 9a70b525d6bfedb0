// How sharp a planet, the Moon or another extended object is.
#include "live_view/sharpness.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <vector>

namespace orvane::host {

namespace {

constexpr int longestSide = 512;     // enough for a planet; keeps measuring quick
constexpr double brightPart = 0.15;  // of the brightest light: what belongs to the object
constexpr double darkPart = 0.05;    // what certainly does not

// So many samples may be brighter than what counts as the brightest: hot pixels. Each is in four
// sums of 2 x 2 pixels.
constexpr std::size_t hotSums = 24;
constexpr std::size_t hotPixels = 3;

template <class Value>
Value valueAtRank(std::vector<Value>& values, std::size_t rank, auto order) {
  const auto at = values.begin() + static_cast<std::ptrdiff_t>(std::min(rank, values.size() - 1));
  std::nth_element(values.begin(), at, values.end(), order);
  return *at;
}

// The middle of the bright part, in pixels of the frame.
std::pair<int, int> brightMiddle(const Image& reduced, int factor) {
  const auto channels = static_cast<std::size_t>(reduced.channels);
  std::vector<int> brightness(reduced.samples.size() / channels);
  for (std::size_t pixel = 0; pixel < brightness.size(); ++pixel) {
    for (std::size_t channel = 0; channel < channels; ++channel) {
      brightness[pixel] += reduced.samples[pixel * channels + channel];
    }
  }
  std::vector<int> sorted = brightness;
  const double sky = valueAtRank(sorted, sorted.size() / 20, std::less());
  const double peak = valueAtRank(sorted, hotPixels, std::greater());
  const double least = sky + (peak - sky) / 2;
  double count = 0;
  double sumX = 0;
  double sumY = 0;
  for (int y = 0; y < reduced.height; ++y) {
    for (int x = 0; x < reduced.width; ++x) {
      if (brightness[pixelIndex(reduced.width, x, y)] >= least) {
        count += 1;
        sumX += x;
        sumY += y;
      }
    }
  }
  const auto inFrame = [&](double sum) {
    return static_cast<int>((sum / std::max(count, 1.0) + 0.5) * factor);
  };
  return {inFrame(sumX), inFrame(sumY)};
}

// The part to be measured: its middle lies at this place if the border allows it.
Region partAround(int x, int y, const Region& border) {
  const int width = std::min(border.width, longestSide);
  const int height = std::min(border.height, longestSide);
  return {std::clamp(x - width / 2, border.left, border.left + border.width - width),
          std::clamp(y - height / 2, border.top, border.top + border.height - height), width,
          height};
}

// Sums of 2 x 2 pixels: each has every colour of a Bayer pattern and less noise than a pixel.
struct Sums {
  int width = 0;
  int height = 0;
  std::vector<float> values;

  float at(int x, int y) const { return values[pixelIndex(width, x, y)]; }
};

Sums sumsOf(std::span<const std::uint8_t> frame, const FrameLayout& layout, const Region& part) {
  const auto sample = [&](int x, int y) {
    const std::size_t pixel = pixelIndex(layout.width, part.left + x, part.top + y);
    return layout.format == PixelFormat::Rgb24
               ? frame[3 * pixel] + frame[3 * pixel + 1] + frame[3 * pixel + 2]
               : sampleAt(frame, layout.format, pixel);
  };
  Sums sums{part.width - 1, part.height - 1, {}};
  sums.values.reserve(pixelCount(sums.width, sums.height));
  for (int y = 0; y < sums.height; ++y) {
    int left = sample(0, y) + sample(0, y + 1);
    for (int x = 0; x < sums.width; ++x) {
      const int right = sample(x + 1, y) + sample(x + 1, y + 1);
      sums.values.push_back(static_cast<float>(left + right));
      left = right;
    }
  }
  return sums;
}

double sharpnessOf(const Sums& sums) {
  std::vector<float> sorted = sums.values;
  const double sky = valueAtRank(sorted, sorted.size() / 20, std::less());
  const double peak = valueAtRank(sorted, hotSums, std::greater());
  const double bright = sky + brightPart * (peak - sky);
  const double dark = sky + darkPart * (peak - sky);
  double count = 0;
  double steps = 0;
  double light = 0;
  std::vector<double> noise;
  for (int y = 0; y + 2 < sums.height; ++y) {
    for (int x = 0; x + 2 < sums.width; ++x) {
      const double here = sums.at(x, y);
      // Two pixels apart: the sums have no pixel in common.
      const double right = sums.at(x + 2, y);
      const double below = sums.at(x, y + 2);
      const double energy = (right - here) * (right - here) + (below - here) * (below - here);
      const double brightest = std::max({here, right, below});
      if (brightest > bright) {
        count += 1;
        steps += energy;
        light += (here - sky) * (here - sky);
      } else if (brightest <= dark) {
        noise.push_back(energy);
      }
    }
  }
  constexpr std::size_t enough = 200;
  if (noise.size() >= enough) {
    // The energy of noise is distributed exponentially: its mean is the median over ln 2.
    const double usual = valueAtRank(noise, noise.size() / 2, std::less()) / std::log(2.0);
    if ((peak - sky) * (peak - sky) < 16 * usual) {
      return 0;  // nothing but noise
    }
    steps -= count * usual;
  }
  return light > 0 && steps > 0 ? 100 * std::sqrt(steps / light) : 0;
}

}  // namespace

double measureSharpness(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                        const Image& reduced, int factor, const std::optional<Region>& region) {
  if (reduced.samples.empty()) {
    return 0;
  }
  const Region border = region.value_or(Region{0, 0, layout.width, layout.height});
  const auto [x, y] =
      region ? std::pair(border.left + border.width / 2, border.top + border.height / 2)
             : brightMiddle(reduced, factor);
  const Region part = partAround(x, y, border);
  constexpr int least = 8;
  if (part.width < least || part.height < least || !part.isInside(layout.width, layout.height)) {
    return 0;
  }
  return sharpnessOf(sumsOf(frame, layout, part));
}

}  // namespace orvane::host
