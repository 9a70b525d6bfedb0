// Hides the steps of samples with few bits in a picture that is brightened.
#include "live_view/smooth_levels.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orvane::host {

namespace {

// Samples are halved, so that differences fit 16 bits: compilers vectorise the loops, and halving
// the width of the numbers halves the time.
using Half = std::int16_t;
constexpr Half step = (byteStep + 1) / 2;

// Far samples make wide slopes out of wide bands; near ones make them even.
constexpr std::array<int, 3> distances = {1, 3, 9};
constexpr int neighbours = 2 * static_cast<int>(distances.size());

// Adds the differences to the neighbours, where they are a step or less.
void addDifferences(std::span<const Half> centres, std::span<const Half> others,
                    std::span<Half> sums) {
  const Half* const centre = centres.data();
  const Half* const other = others.data();
  Half* const sum = sums.data();
  for (std::size_t at = 0; at < sums.size(); ++at) {
    const auto difference = static_cast<Half>(other[at] - centre[at]);
    const bool isNear = difference <= step && difference >= -step;
    sum[at] = static_cast<Half>(sum[at] + (isNear ? difference : 0));
  }
}

void addMean(std::span<const Half> centres, std::span<const Half> sums, std::span<Half> results) {
  for (std::size_t at = 0; at < results.size(); ++at) {
    results[at] = static_cast<Half>(centres[at] + sums[at] / neighbours);
  }
}

}  // namespace

void smoothLevels(Image& image) {
  const auto length =
      static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.channels);
  if (image.samples.empty()) {
    return;
  }
  std::vector<Half> across(image.samples.size());
  const auto row = [&](int y) {
    return std::span(across).subspan(static_cast<std::size_t>(y) * length, length);
  };
  std::vector<Half> line(length);
  std::vector<Half> sums(length);
  for (int y = 0; y < image.height; ++y) {
    const auto samples =
        std::span(image.samples).subspan(static_cast<std::size_t>(y) * length, length);
    std::ranges::transform(samples, line.begin(),
                           [](std::uint16_t sample) { return static_cast<Half>(sample >> 1U); });
    std::ranges::fill(sums, Half{0});
    for (const int distance : distances) {
      const auto way =
          static_cast<std::size_t>(distance) * static_cast<std::size_t>(image.channels);
      if (way < length) {
        const std::span<const Half> begin = std::span(line).first(length - way);
        const std::span<const Half> end = std::span(line).subspan(way);
        addDifferences(begin, end, std::span(sums).first(length - way));
        addDifferences(end, begin, std::span(sums).subspan(way));
      }
    }
    addMean(line, sums, row(y));
  }
  for (int y = 0; y < image.height; ++y) {
    std::ranges::fill(sums, Half{0});
    for (const int distance : distances) {
      for (const int other : {y - distance, y + distance}) {
        if (other >= 0 && other < image.height) {
          addDifferences(row(y), row(other), sums);
        }
      }
    }
    addMean(row(y), sums, line);
    std::uint16_t* const samples = image.samples.data() + static_cast<std::size_t>(y) * length;
    for (std::size_t at = 0; at < length; ++at) {
      const int before = samples[at];
      const int after = std::clamp(2 * line[at], before - byteStep / 2, before + byteStep / 2);
      samples[at] = static_cast<std::uint16_t>(std::clamp(after, 0, 65535));
    }
  }
}

}  // namespace orvane::host
