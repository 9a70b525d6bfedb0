#include "core/sensor.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <new>

#include "core/random.hpp"

namespace orvane::sim {
namespace {

// The planet's brightest part, as a part of full scale, at the usual exposure and in the middle of
// the gain range.
constexpr double planetPart = 0.5;
constexpr double electronsAtFullScale = 6000;
constexpr float readNoise = 3;  // electrons

constexpr double vignetting = 0.12;          // light lost in the corners
constexpr std::int32_t hotPixelSpan = 2048;  // columns with at most one hot pixel a row
constexpr std::uint64_t spansPerHotPixel = 20;

constexpr double usb3BytesPerUs = 350;
constexpr double usb2BytesPerUs = 40;

// More samples than any camera has. For larger frames the light is computed row by row, not kept.
constexpr std::size_t mostKeptSamples = 100'000'000;

// The size of the table of normally distributed numbers. Each entry is equally likely.
constexpr std::size_t normalCount = 4096;

std::array<float, normalCount> makeNormals() {
  std::array<float, normalCount> normals{};
  for (std::size_t i = 0; i < normalCount / 2; ++i) {
    // The quantile at the middle of each of the equal parts, found by bisection.
    const double part = (static_cast<double>(i) + 0.5) / static_cast<double>(normalCount);
    double low = -6;
    double high = 0;
    for (int step = 0; step < 40; ++step) {
      const double middle = (low + high) / 2;
      (0.5 * std::erfc(-middle / std::sqrt(2.0)) < part ? low : high) = middle;
    }
    normals.at(i) = static_cast<float>(low);
    normals.at(normalCount - 1 - i) = static_cast<float>(-low);
  }
  return normals;
}

// Fills `noise` with normally distributed numbers that depend on the key only.
void makeNoise(std::uint64_t key, std::int32_t count, float* noise) {
  static const std::array<float, normalCount> normals = makeNormals();
  constexpr std::int32_t perHash = 5;
  static_assert(blockLength % perHash == 0);
  const float* table = normals.data();
  for (std::int32_t i = 0; i < count; i += perHash) {
    std::uint64_t bits = mix(key + static_cast<std::uint64_t>(i));
    for (std::int32_t j = 0; j < perHash; ++j) {
      noise[i + j] = table[bits % normalCount];
      bits /= normalCount;
    }
  }
}

// The part of the light that the optics pass to a place of the frame.
float lens(double x, double y, double aspect) {
  const double corner = (aspect * aspect + 1) / 4;
  const double dx = x - aspect / 2;
  const double dy = y - 0.5;
  return static_cast<float>(1 - vignetting * (dx * dx + dy * dy) / corner);
}

// Hot pixels belong to the sensor: their positions do not depend on the region.
void addHotPixels(std::uint64_t rowKey, const Region& region, std::int32_t samples, float* light) {
  for (std::int32_t span = region.x / hotPixelSpan;
       span <= (region.x + region.width) / hotPixelSpan; ++span) {
    const std::uint64_t bits = mix(rowKey + static_cast<std::uint64_t>(span));
    const auto place = static_cast<std::int64_t>(bits % hotPixelSpan);
    const std::int64_t x = std::int64_t{span} * hotPixelSpan + place - region.x;
    if (bits / hotPixelSpan % spansPerHotPixel == 0 && x >= 0 && x < region.width) {
      const float hot = 0.1F + 0.6F * static_cast<float>(unitInterval(mix(bits)));
      for (std::int32_t sample = 0; sample < samples; ++sample) {
        light[x * samples + sample] += hot;
      }
    }
  }
}

// Converts a sample's light to a count.
struct Conversion {
  float electrons;   // for light 1
  float noiseScale;  // below 1 for binned samples, which are averages
  float counts;      // per electron
  float pedestal;    // counts, including 0.5 for rounding
  float largest;
};

Conversion conversionOf(const FrameSettings& settings) {
  const std::int32_t largest = (1 << settings.bitDepth) - 1;
  const double counts = settings.gain * largest / electronsAtFullScale;
  const double exposure = std::min(settings.exposureUs, longestExposureUs) / normalExposureUs;
  return {.electrons = static_cast<float>(planetPart * electronsAtFullScale * exposure),
          .noiseScale = 1.0F / static_cast<float>(std::max(settings.bin, 1)),
          .counts = static_cast<float>(counts),
          .pedestal = static_cast<float>(settings.pedestal * largest + 0.5),
          .largest = static_cast<float>(largest)};
}

// Exposes up to a block of samples and converts them to counts.
void expose(const Conversion& conversion, const float* light, const float* noise,
            std::int32_t count, std::int32_t* counts) {
  const Conversion c = conversion;
  for (std::int32_t i = 0; i < count; ++i) {
    const float mean = light[i] * c.electrons;
    const float spread = std::sqrt(mean + readNoise * readNoise) * c.noiseScale;
    const float value = (mean + spread * noise[i]) * c.counts + c.pedestal;
    const float positive = value > 0.0F ? value : 0.0F;
    counts[i] = static_cast<std::int32_t>(positive < c.largest ? positive : c.largest);
  }
}

static_assert(std::endian::native == std::endian::little, "samples are stored low byte first");

}  // namespace

std::int32_t bytesPerPixel(Layout layout) {
  const bool isColor = layout == Layout::Bgr24 || layout == Layout::Rgb24;
  return isColor ? 3 : layout == Layout::Raw16 ? 2 : 1;
}

std::int64_t frameBytes(const FrameSettings& settings) {
  return std::int64_t{settings.region.width} * settings.region.height *
         bytesPerPixel(settings.layout);
}

std::int64_t framePeriodUs(const FrameSettings& settings) {
  constexpr double shortest = 1000;
  const double bytesPerUs = settings.isUsb3 ? usb3BytesPerUs : usb2BytesPerUs;
  const double transfer = static_cast<double>(frameBytes(settings)) / bytesPerUs;
  return static_cast<std::int64_t>(
      std::min(std::max({shortest, transfer, settings.exposureUs}), longestExposureUs));
}

void storeSamples(const FrameSettings& settings, const std::int32_t* counts, std::int32_t count,
                  std::uint8_t* bytes) {
  if (bytesPerSample(settings.layout) == 1) {
    const std::int32_t shift = settings.bitDepth - 8;
    for (std::int32_t i = 0; i < count; ++i) {
      bytes[i] = static_cast<std::uint8_t>(counts[i] >> shift);
    }
    return;
  }
  const std::int32_t shift = settings.alignment == Alignment::Left ? 16 - settings.bitDepth : 0;
  std::array<std::uint16_t, blockLength> samples;
  for (std::int32_t i = 0; i < count; ++i) {
    samples[static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(counts[i] << shift);
  }
  std::memcpy(bytes, samples.data(), static_cast<std::size_t>(count) * sizeof(std::uint16_t));
}

void renderDark(const FrameSettings& settings, std::uint8_t* buffer, std::int64_t rowPitch) {
  if (frameBytes(settings) <= 0) {
    return;
  }
  const Conversion conversion = conversionOf(settings);
  const auto offset =
      static_cast<std::int32_t>(std::clamp(conversion.pedestal, 0.0F, conversion.largest));
  storeRow(settings, buffer, [offset](std::int32_t, std::int32_t count, std::int32_t* counts) {
    std::fill_n(counts, count, offset);
  });
  const std::int64_t rowBytes = frameBytes(settings) / settings.region.height;
  for (std::int32_t row = 1; row < settings.region.height; ++row) {
    std::memcpy(buffer + row * rowPitch, buffer, static_cast<std::size_t>(rowBytes));
  }
}

void Renderer::forget() {
  geometry_ = {};
  light_ = {};
  lights_ = {};
}

void Renderer::prepare(std::uint64_t seed, const FrameSettings& settings) {
  if (seed == seed_ && geometry_ == settings) {
    return;
  }
  forget();
  const double height = settings.sensorHeight;
  scene_.set(seed, settings.sensorWidth / height, settings.bin / height);
  const auto width = static_cast<std::size_t>(settings.region.width);
  const auto rowSamples = width * static_cast<std::size_t>(samplesPerPixel(settings.layout));
  const auto rows = static_cast<std::size_t>(settings.region.height);
  lights_.resize(width);
  isWholeFrame_ = rowSamples * rows <= mostKeptSamples;
  if (isWholeFrame_) {
    try {
      light_.resize(rowSamples * rows);
    } catch (const std::bad_alloc&) {
      isWholeFrame_ = false;
    }
  }
  if (!isWholeFrame_) {
    light_.resize(rowSamples);
  }
  seed_ = seed;
  geometry_ = settings;
  for (std::int32_t row = 0; isWholeFrame_ && row < settings.region.height; ++row) {
    lightRow(row, light_.data() + rowSamples * static_cast<std::size_t>(row));
  }
}

// Computes the light on all samples of one row of the frame. Rows are in the order of delivery.
void Renderer::lightRow(std::int32_t row, float* light) {
  const Region& region = geometry_.region;
  const std::int32_t sensorRow =
      region.y + (geometry_.isUpsideDown ? region.height - 1 - row : row);
  const double pixel = static_cast<double>(geometry_.bin) / geometry_.sensorHeight;
  const SceneRow place{(region.x + 0.5) * pixel, (sensorRow + 0.5) * pixel, region.width};
  scene_.light(place, lights_.data());

  const double aspect = static_cast<double>(geometry_.sensorWidth) / geometry_.sensorHeight;
  const std::int32_t samples = samplesPerPixel(geometry_.layout);
  for (std::int32_t x = 0; x < region.width; ++x) {
    const std::int32_t column = geometry_.isMirrored ? region.width - 1 - x : x;
    const Light& here = lights_[static_cast<std::size_t>(x)];
    const float passed = lens(place.x + x * pixel, place.y, aspect);
    if (samples == 3) {
      const bool isBlueFirst = geometry_.layout == Layout::Bgr24;
      for (std::size_t color = 0; color < 3; ++color) {
        light[3 * x + static_cast<std::ptrdiff_t>(color)] =
            here[isBlueFirst ? 2 - color : color] * passed;
      }
    } else if (isFiltered(geometry_)) {
      light[x] =
          here[filterPlane(geometry_.bayerPattern, region.x + column, region.y + row)] * passed;
    } else {
      light[x] = (redPart * here[0] + greenPart * here[1] + bluePart * here[2]) * passed;
    }
  }
  addHotPixels(mix(geometry_.camera + mix(static_cast<std::uint64_t>(sensorRow))), region, samples,
               light);
  if (geometry_.isMirrored) {
    // Exchanges whole pixels: the order of the colours in a pixel stays.
    std::reverse(light, light + std::ptrdiff_t{region.width} * samples);
    for (std::int32_t x = 0; samples == 3 && x < region.width; ++x) {
      std::swap(light[3 * x], light[3 * x + 2]);
    }
  }
}

void Renderer::render(std::uint64_t seed, const FrameSettings& settings, std::int64_t frameNumber,
                      std::uint8_t* buffer, std::int64_t rowPitch) {
  if (frameBytes(settings) <= 0) {
    return;
  }
  prepare(seed, settings);
  const Conversion conversion = conversionOf(settings);
  const std::uint64_t frameKey =
      mix(mix(seed) + mix(settings.camera) + static_cast<std::uint64_t>(frameNumber));
  const std::int32_t rowSamples = settings.region.width * samplesPerPixel(settings.layout);
  std::array<float, blockLength> noise;
  for (std::int32_t row = 0; row < settings.region.height; ++row) {
    const float* light = light_.data();
    if (isWholeFrame_) {
      light += std::ptrdiff_t{row} * rowSamples;
    } else {
      lightRow(row, light_.data());
    }
    const std::uint64_t rowKey = mix(frameKey + static_cast<std::uint64_t>(row));
    storeRow(settings, buffer + row * rowPitch,
             [&](std::int32_t start, std::int32_t count, std::int32_t* counts) {
               makeNoise(rowKey + static_cast<std::uint64_t>(start), count, noise.data());
               expose(conversion, light + start, noise.data(), count, counts);
             });
  }
}

}  // namespace orvane::sim
