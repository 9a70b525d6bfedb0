// Hides the steps of samples with few bits in a picture that is brightened.
#include "live_view/smooth_levels.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

namespace orvane::host {

namespace {

// Samples are halved, so that differences fit 16 bits: compilers vectorise the loop, and halving
// the width of the numbers halves the time.
using Half = std::int16_t;
constexpr Half step = (byteStep + 1) / 2;

// Half of the neighbours; the others lie opposite. Far ones make wide slopes out of wide bands. No
// two lie in one row, column or diagonal, so that noise is not drawn out into lines.
struct Offset {
  int right;
  int down;
};
constexpr std::array<Offset, 8> offsets = {
    {{1, 0}, {0, 1}, {3, 1}, {-1, 3}, {5, -3}, {2, 5}, {9, 4}, {-4, 9}}};
constexpr int neighbours = 2 * static_cast<int>(offsets.size());

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

}  // namespace

void smoothLevels(Image& image) {
  const auto channels = static_cast<std::size_t>(image.channels);
  const auto length = static_cast<std::size_t>(image.width) * channels;
  std::vector<Half> halves(image.samples.size());
  std::ranges::transform(image.samples, halves.begin(),
                         [](std::uint16_t sample) { return static_cast<Half>(sample >> 1U); });
  const auto row = [&](int y) {
    return std::span<const Half>(halves).subspan(static_cast<std::size_t>(y) * length, length);
  };
  std::vector<Half> sums(length);
  for (int y = 0; y < image.height; ++y) {
    std::ranges::fill(sums, Half{0});
    const auto add = [&](int right, int down) {
      const auto way = static_cast<std::size_t>(std::abs(right)) * channels;
      if (y + down < 0 || y + down >= image.height || way >= length) {
        return;
      }
      const std::size_t count = length - way;
      const std::size_t from = right < 0 ? way : 0;
      const std::size_t to = right < 0 ? 0 : way;
      addDifferences(row(y).subspan(from, count), row(y + down).subspan(to, count),
                     std::span(sums).subspan(from, count));
    };
    for (const auto& [right, down] : offsets) {
      add(right, down);
      add(-right, -down);
    }
    std::uint16_t* const samples = image.samples.data() + static_cast<std::size_t>(y) * length;
    for (std::size_t at = 0; at < length; ++at) {
      const int moved = std::clamp(2 * sums[at] / neighbours, -(byteStep / 2), byteStep / 2);
      samples[at] = static_cast<std::uint16_t>(std::clamp(samples[at] + moved, 0, 65535));
    }
  }
}

}  // namespace orvane::host
