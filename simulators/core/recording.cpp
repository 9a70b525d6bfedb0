#include "core/recording.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <new>
#include <system_error>
#include <utility>

#include "core/system.hpp"
#include "formats/ser_layout.hpp"

namespace orvane::sim {
namespace {

// More than any camera has.
constexpr std::int32_t longestSide = 1 << 16;
constexpr std::int64_t mostSamples = 400'000'000;

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
  const double exposure = std::min(settings.exposureUs, longestExposureUs) / normalExposureUs;
  return {settings.gain * exposure / (1 << (16 - settings.bitDepth)),
          settings.pedestal * largest + 0.5, static_cast<double>(largest)};
}

// The first pixel of the recording's row or column that the sensor sees. It is even, so that the
// Bayer pattern stays the same.
std::int32_t firstSeen(std::int32_t recorded, std::int32_t sensor) {
  return recorded > sensor ? (recorded - std::max(sensor, 0)) / 2 & ~1 : 0;
}

}  // namespace

// The part of the recording that one frame shows.
class Recording::View {
 public:
  View(const Recording& recording, const FrameSettings& settings)
      : recording_(recording),
        settings_(settings),
        left_(firstSeen(recording.format_.width, settings.sensorWidth)),
        top_(firstSeen(recording.format_.height, settings.sensorHeight)),
        bin_(std::max(settings.bin, 1)),
        step_(isFiltered(settings) ? 2 : 1),
        area_(static_cast<double>(bin_) * bin_) {}

  // The light on a sample of the frame. Row and sample are counted in the order of delivery.
  double light(std::int32_t row, std::int32_t sample) const {
    const std::int32_t samples = samplesPerPixel(settings_.layout);
    const Region& region = settings_.region;
    const std::int32_t column = sample / samples;
    const std::int32_t x = region.x + (settings_.isMirrored ? region.width - 1 - column : column);
    const std::int32_t y = region.y + (settings_.isTurned ? region.height - 1 - row : row);
    if (samples == 3) {
      const auto color = static_cast<std::size_t>(sample % samples);
      return average(x, y, settings_.layout == Layout::Bgr24 ? 2 - color : color);
    }
    const bool isFiltered = step_ == 2;
    return average(x, y,
                   isFiltered
                       ? filterPlane(settings_.bayerPattern, region.x + column, region.y + row)
                       : anyColor);
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
    if (x < 0 || y < 0 || x >= recording_.format_.width || y >= recording_.format_.height) {
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

std::string Recording::readFormat(std::span<const std::uint8_t> header, std::int64_t fileSize) {
  static constexpr Color colors[] = {{ser::color::mono},
                                     {ser::color::rggb, BayerPattern::Rggb},
                                     {ser::color::grbg, BayerPattern::Grbg},
                                     {ser::color::gbrg, BayerPattern::Gbrg},
                                     {ser::color::bggr, BayerPattern::Bggr},
                                     {ser::color::rgb, BayerPattern::None, 3},
                                     {ser::color::bgr, BayerPattern::None, 3, true}};
  namespace offset = ser::offset;
  const auto number = [&](std::size_t at) { return ser::integerAt<std::int32_t>(header, at); };
  if (!std::equal(ser::fileId.begin(), ser::fileId.end(), header.begin())) {
    return "it is no SER recording";
  }
  const auto* const color =
      std::find_if(std::begin(colors), std::end(colors),
                   [&](const Color& each) { return each.id == number(offset::colorId); });
  if (color == std::end(colors)) {
    return "its colours are of a kind that is not known here";
  }
  format_.color = *color;
  format_.isBigEndian = number(offset::littleEndian) != ser::byteOrder::little;
  format_.width = number(offset::width);
  format_.height = number(offset::height);
  format_.depth = number(offset::depth);
  const auto isSide = [](std::int32_t side) { return side >= 1 && side <= longestSide; };
  if (!isSide(format_.width) || !isSide(format_.height) || format_.samples() > mostSamples) {
    return "its frames have a size that no camera has";
  }
  if (format_.depth < 1 || format_.depth > 16) {
    return "its samples have a depth that is not from 1 to 16 bits";
  }
  // The header of an interrupted recording may state too many frames, or none.
  const std::int64_t promised = number(offset::frameCount);
  const std::int64_t present =
      (fileSize - static_cast<std::int64_t>(ser::headerSize)) / format_.frameBytes();
  format_.frameCount = promised > 0 ? std::min(promised, present) : present;
  return format_.frameCount > 0 ? "" : "it holds no whole frame";
}

std::string Recording::open(const std::string& path) {
  Recording opened;
  const std::filesystem::path name = pathFromUtf8(path);
  opened.file_.open(name, std::ios::binary);
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(name, error);
  if (!opened.isOpen() || error) {
    return "it cannot be opened";
  }
  std::array<std::uint8_t, ser::headerSize> header{};
  if (!opened.read(0, header)) {
    return "it is no SER recording";
  }
  std::string problem = opened.readFormat(header, static_cast<std::int64_t>(size));
  if (!problem.empty()) {
    return problem;
  }
  try {
    opened.bytes_.resize(static_cast<std::size_t>(opened.format_.frameBytes()));
    opened.samples_.resize(static_cast<std::size_t>(opened.format_.samples()));
  } catch (const std::bad_alloc&) {
    return "there is no memory for its frames";
  }
  *this = std::move(opened);
  return "";
}

bool Recording::read(std::int64_t position, std::span<std::uint8_t> bytes) {
  file_.clear();  // of the end that an earlier call has met
  file_.seekg(position);
  file_.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  return file_.good();
}

void Recording::show(std::int64_t frameNumber) {
  const std::int64_t frame = frameNumber % format_.frameCount;
  if (frame == present_) {
    return;
  }
  present_ = frame;
  const std::int64_t start =
      static_cast<std::int64_t>(ser::headerSize) + frame * format_.frameBytes();
  if (!read(start, bytes_)) {
    std::fill(bytes_.begin(), bytes_.end(), std::uint8_t{0});
  }
  const auto shift = static_cast<std::uint32_t>(16 - format_.depth);
  for (std::size_t index = 0; index < samples_.size(); ++index) {
    samples_[index] = static_cast<std::uint16_t>(
        ser::sampleAt(bytes_, index, format_.depth, format_.isBigEndian) << shift);
  }
  for (std::size_t pixel = 0; format_.color.isBlueFirst && pixel < samples_.size(); pixel += 3) {
    std::swap(samples_[pixel], samples_[pixel + 2]);
  }
}

float Recording::sample(std::int32_t x, std::int32_t y, std::size_t plane) const {
  const auto pixel = static_cast<std::size_t>(std::int64_t{y} * format_.width + x);
  return samples_[pixel * static_cast<std::size_t>(format_.color.planes) + plane];
}

float Recording::light(std::size_t plane, std::int32_t x, std::int32_t y) const {
  if (format_.color.planes == 3) {
    return sample(x, y, plane);
  }
  if (format_.color.bayerPattern == BayerPattern::None ||
      filterPlane(format_.color.bayerPattern, x, y) == plane) {
    return sample(x, y, 0);
  }
  const bool isInside = x > 0 && y > 0 && x + 1 < format_.width && y + 1 < format_.height;
  return isInside ? ofAllNeighbours(plane, x, y) : ofNeighboursAtTheEdge(plane, x, y);
}

// The neighbours with a filter are left and right, above and below, or at the corners.
float Recording::ofAllNeighbours(std::size_t plane, std::int32_t x, std::int32_t y) const {
  const bool isBeside = filterPlane(format_.color.bayerPattern, x + 1, y) == plane;
  const bool isAbove = filterPlane(format_.color.bayerPattern, x, y + 1) == plane;
  if (!isBeside && !isAbove) {
    return (sample(x - 1, y - 1, 0) + sample(x + 1, y - 1, 0) + sample(x - 1, y + 1, 0) +
            sample(x + 1, y + 1, 0)) /
           4;
  }
  const float beside = sample(x - 1, y, 0) + sample(x + 1, y, 0);
  const float above = sample(x, y - 1, 0) + sample(x, y + 1, 0);
  return isBeside && isAbove ? (beside + above) / 4 : (isBeside ? beside : above) / 2;
}

float Recording::ofNeighboursAtTheEdge(std::size_t plane, std::int32_t x, std::int32_t y) const {
  float sum = 0;
  float count = 0;
  for (std::int32_t row = std::max(y - 1, 0); row <= std::min(y + 1, format_.height - 1); ++row) {
    for (std::int32_t column = std::max(x - 1, 0); column <= std::min(x + 1, format_.width - 1);
         ++column) {
      if (filterPlane(format_.color.bayerPattern, column, row) == plane) {
        sum += sample(column, row, 0);
        count += 1;
      }
    }
  }
  return count > 0 ? sum / count : 0;  // no such neighbour in a recording one pixel wide
}

float Recording::brightness(std::int32_t x, std::int32_t y) const {
  if (format_.color.planes == 1 && format_.color.bayerPattern == BayerPattern::None) {
    return sample(x, y, 0);
  }
  return redPart * light(0, x, y) + greenPart * light(1, x, y) + bluePart * light(2, x, y);
}

void Recording::render(const FrameSettings& settings, std::int64_t frameNumber,
                       std::uint8_t* buffer, std::int64_t rowPitch) {
  show(frameNumber);
  const View view(*this, settings);
  const Scale scale = scaleOf(settings);
  for (std::int32_t row = 0; row < settings.region.height; ++row) {
    // Captured by value: the compiler would read references again after each write to the counts.
    storeRow(settings, buffer + row * rowPitch,
             [view, scale, row](std::int32_t start, std::int32_t count, std::int32_t* counts) {
               for (std::int32_t index = 0; index < count; ++index) {
                 counts[index] = scale.countOf(view.light(row, start + index));
               }
             });
  }
}

}  // namespace orvane::sim
