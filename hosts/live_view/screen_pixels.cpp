// Turns images into screen pixels: stretched, in colour or red, scaled.
#include "live_view/screen_pixels.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace orvane::host {

namespace {

// The weights of a colour's brightness, times 256.
constexpr std::uint32_t redPart = 77;
constexpr std::uint32_t greenPart = 150;
constexpr std::uint32_t bluePart = 29;

std::uint32_t natural(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
  return red << 16 | green << 8 | blue;
}

std::uint32_t allRed(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
  return (red * redPart + green * greenPart + blue * bluePart) >> 8 << 16;
}

constexpr std::size_t sampleValues = 65536;

// The order in which the pixels of a square become brighter: evenly spread at every brightness
// (Bayer's matrix). In 256ths of a value.
constexpr std::size_t ditherSide = 8;
using DitherThresholds = std::array<std::array<std::uint8_t, ditherSide>, ditherSide>;
constexpr DitherThresholds ditherThresholds = [] {
  DitherThresholds thresholds{};
  for (std::size_t y = 0; y < ditherSide; ++y) {
    for (std::size_t x = 0; x < ditherSide; ++x) {
      std::size_t order = 0;
      for (std::size_t bit = 1; bit < ditherSide; bit *= 2) {
        const bool right = (x & bit) != 0;
        const bool below = (y & bit) != 0;
        order = 4 * order + (right != below ? 2U : 0U) + (below ? 1U : 0U);
      }
      thresholds[y][x] = static_cast<std::uint8_t>(4 * order + 2);
    }
  }
  return thresholds;
}();

// Interpolates between two pixels: `part` of 256 is the weight of the second. Mixes two channels at
// once.
std::uint32_t mixed(std::uint32_t from, std::uint32_t to, std::uint32_t part) {
  constexpr std::uint32_t outer = 0x00FF00FF;
  constexpr std::uint32_t middle = 0x0000FF00;
  const std::uint32_t rest = 256 - part;
  return (((from & outer) * rest + (to & outer) * part) >> 8 & outer) |
         (((from & middle) * rest + (to & middle) * part) >> 8 & middle);
}

// The place of a target's row or column between two of the source's.
struct Place {
  std::size_t before;
  std::size_t after;
  std::uint32_t part;  // weight of `after`, of 256
};

std::vector<Place> places(int source, int target) {
  std::vector<Place> result;
  result.reserve(static_cast<std::size_t>(target));
  for (int at = 0; at < target; ++at) {
    // In 256ths, clamped to the middles of the outermost pixels.
    const std::int64_t middle =
        (2 * std::int64_t{at} + 1) * source * 128 / std::max(target, 1) - 128;
    const std::int64_t clamped =
        std::clamp<std::int64_t>(middle, 0, (std::int64_t{source} - 1) * 256);
    const auto before = static_cast<std::size_t>(clamped / 256);
    result.push_back({before, std::min(before + 1, static_cast<std::size_t>(source) - 1),
                      static_cast<std::uint32_t>(clamped % 256)});
  }
  return result;
}

}  // namespace

ScreenCurves::ScreenCurves(const std::vector<Stretch>& stretches, const PictureLevels& levels) {
  curves_.reserve(stretches.size());
  for (const Stretch& stretch : stretches) {
    std::vector<std::uint16_t>& curve = curves_.emplace_back(sampleValues);
    for (std::size_t sample = 0; sample < sampleValues; ++sample) {
      const double brightness = stretchedBrightness(stretch, static_cast<double>(sample));
      curve[sample] =
          static_cast<std::uint16_t>(std::lround(255 * 256 * levels.applied(brightness)));
    }
  }
}

void ScreenCurves::apply(const Image& image, ScreenTint tint, ScreenPixels& screen) const {
  screen.width = image.width;
  screen.height = image.height;
  screen.pixels.resize(image.samples.size() / static_cast<std::size_t>(image.channels));
  const bool isColor = image.channels == 3;
  const bool hasThree = curves_.size() == 3 && isColor;
  const std::uint16_t* const first = curves_.front().data();
  const std::uint16_t* const second = hasThree ? curves_[1].data() : first;
  const std::uint16_t* const third = hasThree ? curves_[2].data() : first;
  const auto fill = [&](auto pack) {
    const std::uint16_t* sample = image.samples.data();
    std::uint32_t* pixel = screen.pixels.data();
    for (int y = 0; y < screen.height; ++y) {
      const auto& thresholds = ditherThresholds[static_cast<std::size_t>(y) % ditherSide];
      for (std::size_t x = 0; x < static_cast<std::size_t>(screen.width); ++x) {
        const std::uint32_t threshold = thresholds[x % ditherSide];
        const std::uint16_t* const others = isColor ? sample + 1 : sample;
        *pixel++ = pack((first[sample[0]] + threshold) >> 8, (second[others[0]] + threshold) >> 8,
                        (third[isColor ? others[1] : others[0]] + threshold) >> 8);
        sample += image.channels;
      }
    }
  };
  if (tint == ScreenTint::Red) {
    fill(allRed);
  } else {
    fill(natural);
  }
}

void drawScaled(const ScreenPixels& screen, const ScreenTarget& target) {
  if (screen.pixels.empty() || target.width <= 0 || target.height <= 0) {
    return;
  }
  const auto width = static_cast<std::size_t>(screen.width);
  const auto row = [&](std::size_t at) { return screen.pixels.data() + at * width; };
  const std::vector<Place> columns = places(screen.width, target.width);
  const std::vector<Place> rows = places(screen.height, target.height);
  std::vector<std::uint32_t> between(width);
  std::uint32_t* out = target.pixels;
  for (const Place& place : rows) {
    const std::uint32_t* source = row(place.before);
    if (place.part != 0) {
      const std::uint32_t* const below = row(place.after);
      for (std::size_t x = 0; x < width; ++x) {
        between[x] = mixed(source[x], below[x], place.part);
      }
      source = between.data();
    }
    if (screen.width == target.width) {
      std::copy_n(source, width, out);
    } else {
      for (std::size_t x = 0; x < columns.size(); ++x) {
        const Place& column = columns[x];
        out[x] = mixed(source[column.before], source[column.after], column.part);
      }
    }
    out += target.pitch;
  }
}

}  // namespace orvane::host
