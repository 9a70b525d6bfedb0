// How sharp a frame is: the size of its brightest star, and the sharpness of a planet or the Moon.
#include "live_view/focus.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <vector>

#include "live_view/sharpness.hpp"

namespace orvane::host {

namespace {

constexpr int starReach = 24;      // pixels: a wider object is no star
constexpr double firstRadius = 5;  // pixels: wide enough for a sharp star
constexpr int cellSide = 12;       // of the reduced image: one candidate in each cell
constexpr std::size_t mostCandidates = 40;

struct Point {
  int x = 0;
  int y = 0;
};

struct Candidate {
  Point place;
  int brightness = 0;
};

// The frame's brightness, pixel by pixel. With a Bayer pattern it is the mean of 2 x 2 pixels,
// because any such square has every colour.
class Brightness {
 public:
  Brightness(std::span<const std::uint8_t> frame, const FrameLayout& layout)
      : frame_(frame), layout_(layout) {}

  bool isBayer() const { return layout_.bayer != BayerPattern::None; }

  double at(int x, int y) const {
    if (!isBayer()) {
      return sample(x, y);
    }
    return (sample(x, y) + sample(x + 1, y) + sample(x, y + 1) + sample(x + 1, y + 1)) / 4;
  }

  // One pixel; for a place outside the frame, the nearest pixel in it.
  double sample(int x, int y) const {
    const Point inside = clamped({x, y});
    const std::size_t pixel = pixelIndex(layout_.width, inside.x, inside.y);
    return layout_.format == PixelFormat::Rgb24
               ? (frame_[3 * pixel] + frame_[3 * pixel + 1] + frame_[3 * pixel + 2]) / 3.0
               : sampleAt(frame_, layout_.format, pixel);
  }

  Point clamped(Point point) const {
    return {std::clamp(point.x, 0, layout_.width - 1), std::clamp(point.y, 0, layout_.height - 1)};
  }

 private:
  std::span<const std::uint8_t> frame_;
  const FrameLayout& layout_;
};

int brightnessAt(const Image& reduced, int x, int y) {
  const std::size_t pixel = pixelIndex(reduced.width, x, y);
  return reduced.channels == 1 ? 3 * reduced.samples[pixel]
                               : reduced.samples[3 * pixel] + reduced.samples[3 * pixel + 1] +
                                     reduced.samples[3 * pixel + 2];
}

// The brightest pixel of each cell of the reduced image; places are still in the reduced image.
std::vector<Candidate> brightestOfCells(const Image& reduced) {
  const int columns = (reduced.width + cellSide - 1) / cellSide;
  const int rows = (reduced.height + cellSide - 1) / cellSide;
  std::vector<Candidate> cells(pixelCount(columns, rows));
  for (int y = 0; y < reduced.height; ++y) {
    Candidate* const row = cells.data() + pixelCount(columns, y / cellSide);
    for (int x = 0; x < reduced.width; ++x) {
      const int brightness = brightnessAt(reduced, x, y);
      Candidate& cell = row[x / cellSide];
      if (brightness > cell.brightness) {
        cell = {{x, y}, brightness};
      }
    }
  }
  return cells;
}

// False on a planet or the Moon, which is about as bright beyond the reach of any star's light.
bool mayBeStar(const Image& reduced, const Candidate& candidate, int factor, int sky) {
  const int reach = starReach / factor + 1;
  for (const int right : {-reach, 0, reach}) {
    for (const int down : {-reach, 0, reach}) {
      const int x = std::clamp(candidate.place.x + right, 0, reduced.width - 1);
      const int y = std::clamp(candidate.place.y + down, 0, reduced.height - 1);
      const bool isCandidate = right == 0 && down == 0;
      if (!isCandidate && brightnessAt(reduced, x, y) - sky > (candidate.brightness - sky) / 2) {
        return false;
      }
    }
  }
  return true;
}

Point inFrame(const Candidate& candidate, int factor) {
  return {candidate.place.x * factor + factor / 2, candidate.place.y * factor + factor / 2};
}

// The brightest pixel in the surroundings.
Point brightestNear(const Brightness& brightness, Point around, int reach) {
  Point best = brightness.clamped(around);
  for (int y = around.y - reach; y <= around.y + reach; ++y) {
    for (int x = around.x - reach; x <= around.x + reach; ++x) {
      const Point point = brightness.clamped({x, y});
      if (brightness.at(point.x, point.y) > brightness.at(best.x, best.y)) {
        best = point;
      }
    }
  }
  return best;
}

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The sky around an object, from the border of a square.
struct Sky {
  double level = 0;
  double noise = 0;
};

Sky skyAround(const Brightness& brightness, Point centre, int reach) {
  std::vector<double> border;
  for (int step = -reach; step < reach; ++step) {
    for (const Point& offset :
         {Point{step, -reach}, Point{reach, step}, Point{-step, reach}, Point{-reach, -step}}) {
      const Point point = brightness.clamped({centre.x + offset.x, centre.y + offset.y});
      border.push_back(brightness.at(point.x, point.y));
    }
  }
  Sky sky;
  sky.level = median(border);
  for (double& value : border) {
    value = std::abs(value - sky.level);
  }
  // 1.4826 makes the median deviation of noise its standard deviation.
  sky.noise = std::max(1.4826 * median(border), 0.5);
  return sky;
}

// A star's light falls on several pixels, whatever the optics.
bool isHotPixel(const Brightness& brightness, Point centre, double sky) {
  double largest = 0;
  double all = 0;
  for (int y = centre.y - 2; y <= centre.y + 3; ++y) {
    for (int x = centre.x - 2; x <= centre.x + 3; ++x) {
      const double light = std::max(0.0, brightness.sample(x, y) - sky);
      largest = std::max(largest, light);
      all += light;
    }
  }
  return largest > 0.75 * all;
}

// Centre and diameter of the light within a circle, with the sky's level subtracted.
std::optional<Star> lightWithin(const Brightness& brightness, const Star& start, double radius,
                                double sky) {
  double all = 0;
  double sumX = 0;
  double sumY = 0;
  const auto forEachPixel = [&](double centreX, double centreY, auto action) {
    for (int y = static_cast<int>(centreY - radius); y <= static_cast<int>(centreY + radius); ++y) {
      for (int x = static_cast<int>(centreX - radius); x <= static_cast<int>(centreX + radius);
           ++x) {
        const double distance = std::hypot(x - centreX, y - centreY);
        if (distance <= radius) {
          action(x, y, distance, brightness.at(x, y) - sky);
        }
      }
    }
  };
  forEachPixel(start.x, start.y, [&](int x, int y, double, double light) {
    all += light;
    sumX += light * x;
    sumY += light * y;
  });
  if (all <= 0) {
    return std::nullopt;
  }
  Star result{sumX / all, sumY / all, 0};
  if (std::hypot(result.x - start.x, result.y - start.y) > radius) {
    return std::nullopt;
  }
  double flux = 0;
  double moment = 0;
  forEachPixel(result.x, result.y, [&](int, int, double distance, double light) {
    flux += light;
    moment += light * distance;
  });
  if (flux <= 0 || moment <= 0) {
    return std::nullopt;
  }
  result.halfFluxDiameter = 2 * moment / flux;
  return result;
}

std::optional<Star> starAt(const Brightness& brightness, Point place, int reach) {
  const Point peak = brightestNear(brightness, place, reach);
  const Sky sky = skyAround(brightness, peak, starReach);
  if (brightness.at(peak.x, peak.y) < sky.level + 8 * sky.noise ||
      isHotPixel(brightness, peak, sky.level)) {
    return std::nullopt;
  }
  Star light{static_cast<double>(peak.x), static_cast<double>(peak.y), 0};
  double radius = firstRadius;
  for (int round = 0; round < 6; ++round) {
    const auto next = lightWithin(brightness, light, radius, sky.level);
    if (!next) {
      return std::nullopt;
    }
    light = *next;
    // Just wide enough for the star's light: farther out are noise and other stars.
    radius = std::clamp(2 * light.halfFluxDiameter, firstRadius, static_cast<double>(starReach));
  }
  if (light.halfFluxDiameter > starReach * 0.9) {
    return std::nullopt;
  }
  // The middle of 2 x 2 pixels is their common corner.
  const double middle = brightness.isBayer() ? 1.0 : 0.5;
  return Star{light.x + middle, light.y + middle, light.halfFluxDiameter};
}

}  // namespace

Focus measureFocus(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                   const Image& reduced, int factor, const std::optional<Star>& before,
                   const std::optional<Region>& region) {
  Focus focus;
  const Brightness brightness(frame, layout);
  std::vector<Candidate> candidates = brightestOfCells(reduced);
  if (candidates.empty()) {
    return focus;
  }
  std::ranges::sort(candidates, std::greater(), &Candidate::brightness);
  const int sky = candidates[(candidates.size() - 1) / 2].brightness;  // the median
  focus.sharpness = measureSharpness(frame, layout, reduced, factor, region);
  if (before) {
    focus.star = starAt(brightness, {static_cast<int>(before->x), static_cast<int>(before->y)},
                        starSearchReach);
  }
  std::size_t tried = 0;
  for (const Candidate& candidate : candidates) {
    if (focus.star || tried == mostCandidates) {
      break;
    }
    if (mayBeStar(reduced, candidate, factor, sky)) {
      ++tried;
      focus.star = starAt(brightness, inFrame(candidate, factor), factor);
    }
  }
  return focus;
}

}  // namespace orvane::host
