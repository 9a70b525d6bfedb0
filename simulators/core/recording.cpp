#include "core/recording.hpp"

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

#include "core/samples.hpp"

namespace orvane::sim {
namespace {

// More than any camera has.
constexpr std::int32_t longestSide = 1 << 16;
constexpr std::int64_t mostSamples = 400'000'000;

template <std::size_t Size>
std::int32_t numberAt(const std::array<std::uint8_t, Size>& header, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t byte = 4; byte > 0; --byte) {
    value = value << 8U | header[at + byte - 1];
  }
  return static_cast<std::int32_t>(value);
}

struct Color {
  std::int32_t id;
  Mosaic mosaic;
  std::int32_t planes;
  bool isBlueFirst;
};

constexpr Color colors[] = {{0, Mosaic::None, 1, false},  {8, Mosaic::Rggb, 1, false},
                            {9, Mosaic::Grbg, 1, false},  {10, Mosaic::Gbrg, 1, false},
                            {11, Mosaic::Bggr, 1, false}, {100, Mosaic::None, 3, false},
                            {101, Mosaic::None, 3, true}};

}  // namespace

// The fields: colour at 18, order of bytes 22, width 26, height 30, depth 34, number of frames 38.
std::string Recording::readFormat(const Header& header, std::int64_t fileSize, Format& format) {
  constexpr std::string_view mark = "LUCAM-RECORDER";
  if (!std::equal(mark.begin(), mark.end(), header.begin())) {
    return "it is no SER recording";
  }
  const auto* const color =
      std::find_if(std::begin(colors), std::end(colors),
                   [&](const Color& each) { return each.id == numberAt(header, 18); });
  if (color == std::end(colors)) {
    return "its colours are of a kind that is not known here";
  }
  format.mosaic = color->mosaic;
  format.planes = color->planes;
  format.isBlueFirst = color->isBlueFirst;
  // Programs write 0 there for the low byte first, whatever the field's name says.
  format.isHighByteFirst = numberAt(header, 22) != 0;
  format.width = numberAt(header, 26);
  format.height = numberAt(header, 30);
  format.depth = numberAt(header, 34);
  const auto isSide = [](std::int32_t side) { return side >= 1 && side <= longestSide; };
  if (!isSide(format.width) || !isSide(format.height) || format.samples() > mostSamples) {
    return "its frames have a size that no camera has";
  }
  if (format.depth < 1 || format.depth > 16) {
    return "its samples have a depth that is not from 1 to 16 bits";
  }
  // A recording that was broken off may promise more frames than there are, or none.
  const std::int64_t promised = numberAt(header, 38);
  const std::int64_t present =
      (fileSize - static_cast<std::int64_t>(headerSize)) / format.frameBytes();
  format.frameCount = promised > 0 ? std::min(promised, present) : present;
  return format.frameCount > 0 ? "" : "it holds no whole frame";
}

std::string Recording::open(const std::string& path) {
  File file = openFile(path, "rb");
  const std::int64_t size = file ? sizeOf(file.get()) : -1;
  Header header{};
  if (size < 0) {
    return "it cannot be opened";
  }
  if (std::fread(header.data(), 1, header.size(), file.get()) != header.size()) {
    return "it is no SER recording";
  }
  Format format;
  std::string problem = readFormat(header, size, format);
  if (!problem.empty()) {
    return problem;
  }
  try {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(format.frameBytes()));
    samples_ = std::vector<std::uint16_t>(static_cast<std::size_t>(format.samples()));
    bytes_ = std::move(bytes);
  } catch (const std::bad_alloc&) {
    return "there is no memory for its frames";
  }
  file_ = std::move(file);
  format_ = format;
  present_ = -1;
  return "";
}

void Recording::close() {
  file_.reset();
  format_ = {};
  present_ = -1;
  bytes_ = {};
  samples_ = {};
}

void Recording::show(std::int64_t frameNumber) {
  const std::int64_t frame = frameNumber % format_.frameCount;
  if (frame != present_) {
    read(frame);
    present_ = frame;
  }
}

void Recording::read(std::int64_t frame) {
  const std::int64_t start = static_cast<std::int64_t>(headerSize) + frame * format_.frameBytes();
  if (!seek(file_.get(), start) ||
      std::fread(bytes_.data(), 1, bytes_.size(), file_.get()) != bytes_.size()) {
    std::fill(bytes_.begin(), bytes_.end(), std::uint8_t{0});
  }
  const std::uint32_t largest = (1U << static_cast<std::uint32_t>(format_.depth)) - 1;
  const auto shift = static_cast<std::uint32_t>(16 - format_.depth);
  const std::size_t low = format_.isHighByteFirst ? 1 : 0;
  for (std::size_t index = 0; index < samples_.size(); ++index) {
    const std::uint32_t value = format_.depth > 8
                                    ? bytes_[2 * index + low] | bytes_[2 * index + 1 - low] * 256U
                                    : bytes_[index];
    samples_[index] = static_cast<std::uint16_t>(std::min(value, largest) << shift);
  }
  for (std::size_t pixel = 0; format_.isBlueFirst && pixel < samples_.size(); pixel += 3) {
    std::swap(samples_[pixel], samples_[pixel + 2]);
  }
}

float Recording::sample(std::int32_t x, std::int32_t y, std::size_t plane) const {
  const auto pixel = static_cast<std::size_t>(std::int64_t{y} * format_.width + x);
  return samples_[pixel * static_cast<std::size_t>(format_.planes) + plane];
}

float Recording::light(std::size_t plane, std::int32_t x, std::int32_t y) const {
  if (format_.planes == 3) {
    return sample(x, y, plane);
  }
  const bool isOwn = format_.mosaic == Mosaic::None || filterPlane(format_.mosaic, x, y) == plane;
  return isOwn ? sample(x, y, 0) : ofNeighbours(plane, x, y);
}

// The average of the pixels around that have the filter.
float Recording::ofNeighbours(std::size_t plane, std::int32_t x, std::int32_t y) const {
  const bool isInside = x > 0 && y > 0 && x + 1 < format_.width && y + 1 < format_.height;
  return isInside ? ofAllNeighbours(plane, x, y) : ofNeighboursAtTheEdge(plane, x, y);
}

// They lie left and right, above and below, or in the corners.
float Recording::ofAllNeighbours(std::size_t plane, std::int32_t x, std::int32_t y) const {
  const bool isBeside = filterPlane(format_.mosaic, x + 1, y) == plane;
  const bool isAbove = filterPlane(format_.mosaic, x, y + 1) == plane;
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
      if (filterPlane(format_.mosaic, column, row) == plane) {
        sum += sample(column, row, 0);
        count += 1;
      }
    }
  }
  return count > 0 ? sum / count : 0;  // a recording one pixel wide has no such neighbour
}

float Recording::brightness(std::int32_t x, std::int32_t y) const {
  if (format_.planes == 1 && format_.mosaic == Mosaic::None) {
    return sample(x, y, 0);
  }
  return redPart * light(0, x, y) + greenPart * light(1, x, y) + bluePart * light(2, x, y);
}

}  // namespace orvane::sim
