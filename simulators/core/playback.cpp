#include "core/playback.hpp"

#include <algorithm>
#include <array>

#include "core/samples.hpp"

namespace orvane::sim {
namespace {

// Converts the recording's light to a count.
struct Scale {
  double factor;
  double pedestal;  // including 0.5 for rounding
  double largest;

  std::int32_t countOf(double light) const {
    const double value = light * factor + pedestal;
    const double positive = value > 0 ? value : 0;
    return static_cast<std::int32_t>(std::min(positive, largest));
  }
};

Scale scaleOf(const FrameSettings& settings) {
  const std::int32_t largest = (1 << settings.bitDepth) - 1;
  const double exposure = std::min(settings.exposureUs, longestExposureUs) / usualExposureUs;
  return {settings.gain * exposure / (1 << (16 - settings.bitDepth)),
          settings.pedestal * largest + 0.5, static_cast<double>(largest)};
}

// The first pixel of the recording's row or column that the sensor sees. It is even, so that the
// Bayer pattern stays the same.
std::int32_t firstSeen(std::int32_t recorded, std::int32_t sensor) {
  return recorded > sensor ? (recorded - std::max(sensor, 0)) / 2 & ~1 : 0;
}

// The part of the recording that one frame shows.
class View {
 public:
  View(const Recording& recording, const FrameSettings& settings)
      : recording_(recording),
        settings_(settings),
        left_(firstSeen(recording.width(), settings.sensorWidth)),
        top_(firstSeen(recording.height(), settings.sensorHeight)),
        bin_(std::max(settings.bin, 1)),
        step_(isMosaic(settings) ? 2 : 1),
        area_(static_cast<double>(bin_) * bin_) {}

  // The light on a sample of the frame. Row and sample are counted in the order of delivery.
  double light(std::int32_t row, std::int32_t sample) const {
    const std::int32_t samples = samplesPerPixel(settings_.layout);
    const Region& region = settings_.region;
    const std::int32_t x = region.x + sample / samples;
    const std::int32_t y = region.y + (settings_.isTurned ? region.height - 1 - row : row);
    if (samples == 3) {
      const auto color = static_cast<std::size_t>(sample % samples);
      return average(x, y, settings_.layout == Layout::Bgr24 ? 2 - color : color);
    }
    const bool isFiltered = step_ == 2;
    return average(x, y, isFiltered ? filterPlane(settings_.mosaic, x, region.y + row) : anyColor);
  }

 private:
  static constexpr std::size_t anyColor = 3;

  // The first pixel of a binned one. With a Bayer pattern, every second pixel belongs to it: those
  // with the same filter.
  std::int64_t firstBehind(std::int64_t binned) const {
    return step_ == 2 ? (binned & ~std::int64_t{1}) * bin_ + (binned & 1) : binned * bin_;
  }

  double average(std::int32_t x, std::int32_t y, std::size_t plane) const {
    const std::int64_t left = left_ + firstBehind(x);
    const std::int64_t top = top_ + firstBehind(y);
    double sum = 0;
    for (std::int64_t row = 0; row < bin_; ++row) {
      for (std::int64_t column = 0; column < bin_; ++column) {
        sum += at(left + column * step_, top + row * step_, plane);
      }
    }
    return sum / area_;
  }

  double at(std::int64_t x, std::int64_t y, std::size_t plane) const {
    if (x < 0 || y < 0 || x >= recording_.width() || y >= recording_.height()) {
      return 0;
    }
    const auto column = static_cast<std::int32_t>(x);
    const auto row = static_cast<std::int32_t>(y);
    return plane == anyColor ? recording_.brightness(column, row)
                             : recording_.light(plane, column, row);
  }

  const Recording& recording_;
  const FrameSettings& settings_;
  std::int32_t left_;
  std::int32_t top_;
  std::int32_t bin_;
  std::int32_t step_;
  double area_;
};

}  // namespace

void renderRecording(Recording& recording, const FrameSettings& settings, std::int64_t frameNumber,
                     std::uint8_t* buffer, std::int64_t rowPitch) {
  recording.show(frameNumber);
  const View view(recording, settings);
  const Scale scale = scaleOf(settings);
  const std::int32_t shift = sampleShift(settings);
  const std::int32_t rowSamples = settings.region.width * samplesPerPixel(settings.layout);
  std::array<std::int32_t, blockLength> counts;
  for (std::int32_t row = 0; row < settings.region.height; ++row) {
    std::uint8_t* const bytes = buffer + row * rowPitch;
    for (std::int32_t start = 0; start < rowSamples; start += blockLength) {
      const std::int32_t count = std::min(rowSamples - start, blockLength);
      for (std::int32_t index = 0; index < count; ++index) {
        counts[static_cast<std::size_t>(index)] = scale.countOf(view.light(row, start + index));
      }
      storeSamples(counts.data(), count, settings.layout, shift,
                   bytes + std::ptrdiff_t{start} * bytesPerSample(settings.layout));
    }
  }
}

}  // namespace orvane::sim
