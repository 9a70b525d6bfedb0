#include "core/scene.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <numbers>

#include "core/random.hpp"

namespace orvane::sim {
namespace {

// Stars are Moffat profiles: peak * (1 + (d / starWidth)^2)^-3.
constexpr double starWidth = 0.0038;
constexpr double faintestLight = 0.0003;  // fainter parts of a profile are not drawn
constexpr double skyCell = 0.012;
constexpr int starCount = 3200;   // on the widest frame's sky
constexpr double skyWidth = 2.8;  // frame heights

constexpr double planetRadius = 0.1;
constexpr double planetY = 0.45;
constexpr double planetFlattening = 0.93;
constexpr double planetRoll = -0.32;  // radians
constexpr double ringOpening = 0.34;  // sine of the angle between the line of sight and the ring
constexpr double ringInner = 1.26;    // planet radii
constexpr double ringOuter = 2.24;
constexpr double planetReach = ringOuter + 0.1;

constexpr Light planetCream{1.0F, 0.86F, 0.62F};
constexpr Light planetBrown{0.74F, 0.47F, 0.27F};
constexpr Light ringColor{0.80F, 0.70F, 0.55F};

Light mixed(const Light& a, const Light& b, double part) {
  const auto t = static_cast<float>(part);
  return {a[0] + (b[0] - a[0]) * t, a[1] + (b[1] - a[1]) * t, a[2] + (b[2] - a[2]) * t};
}

Light scaled(const Light& light, double factor) {
  const auto f = static_cast<float>(factor);
  return {light[0] * f, light[1] * f, light[2] * f};
}

void add(Light& light, const Light& more) {
  std::transform(light.begin(), light.end(), more.begin(), light.begin(), std::plus());
}

double square(double value) {
  return value * value;
}

double smoothStep(double low, double high, double value) {
  const double t = std::clamp((value - low) / (high - low), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

// Smooth noise between 0 and 1, with about one hill per unit of length.
double hills(double x, double y, std::uint64_t seed) {
  const double left = std::floor(x);
  const double top = std::floor(y);
  const auto height = [&](double dx, double dy) {
    const auto column = static_cast<std::uint64_t>(static_cast<std::int64_t>(left + dx));
    const auto row = static_cast<std::uint64_t>(static_cast<std::int64_t>(top + dy));
    return unitInterval(mix(mix(column + seed) + row));
  };
  const double tx = smoothStep(0, 1, x - left);
  const double ty = smoothStep(0, 1, y - top);
  return std::lerp(std::lerp(height(0, 0), height(1, 0), tx),
                   std::lerp(height(0, 1), height(1, 1), tx), ty);
}

double clouds(double x, double y, std::uint64_t seed) {
  return (hills(x, y, seed) + 0.5 * hills(2.1 * x, 2.1 * y, seed + 1) +
          0.25 * hills(4.3 * x, 4.3 * y, seed + 2)) /
         1.75;
}

// The density of the star cloud at a point. The cloud is a broad slanting band across the frame.
// `x` is relative to the frame's middle.
double starCloud(double x, double y) {
  const double across = 0.55 * x + 0.83 * (y - 0.62) + 0.08 * std::sin(3 * x);
  const double band = std::exp(-square(across / 0.24));
  const double lane = std::exp(-square((across - 0.02) / 0.05));
  const double texture = clouds(7 * x, 7 * y, 11);
  return band * (0.35 + 1.1 * texture) * (1 - 0.65 * lane * clouds(9 * x, 9 * y, 23));
}

// The colour of a star, from a red dwarf (0) to a blue giant (1).
Light starColor(double heat) {
  constexpr Light red{1.0F, 0.55F, 0.30F};
  constexpr Light yellow{1.0F, 0.90F, 0.72F};
  constexpr Light blue{0.68F, 0.82F, 1.0F};
  return heat < 0.5 ? mixed(red, yellow, heat * 2) : mixed(yellow, blue, heat * 2 - 1);
}

// The light of a point on the planet's disc: `u` along the equator, `v` towards the south pole, in
// radii.
Light planetSurface(double u, double v) {
  const double depth = std::sqrt(std::max(0.0, 1 - u * u - v * v));
  const double latitude = std::asin(
      std::clamp(v * std::sqrt(1 - ringOpening * ringOpening) - depth * ringOpening, -1.0, 1.0));
  const double longitude = std::atan2(u, depth);
  const double swirl = 0.07 * (clouds(9 * longitude, 16 * latitude, 41) - 0.5);
  const double place = latitude + swirl;
  const double bands = 0.5 + 0.30 * std::sin(13 * place) + 0.20 * std::sin(29 * place + 1.2) +
                       0.16 * (clouds(5 * longitude, 40 * place, 57) - 0.5);
  const double storm =
      std::exp(-square((longitude - 0.45) / 0.16) - square((latitude - 0.42) / 0.075));
  Light light = mixed(planetCream, planetBrown, std::clamp(bands, 0.0, 1.0));
  light = mixed(light, {0.86F, 0.34F, 0.18F}, 0.8 * storm);
  const double pole = smoothStep(0.75, 1.45, std::abs(latitude));
  light = mixed(light, {0.52F, 0.50F, 0.46F}, 0.6 * pole);
  return scaled(light, 0.12 + 0.88 * std::pow(depth, 0.55));
}

// The part of the light behind the ring that it blocks, at a distance in planet radii.
double ringDensity(double radius) {
  if (radius < ringInner || radius > ringOuter) {
    return 0;
  }
  const double inner = 0.28 * smoothStep(ringInner, 1.50, radius);
  const double middle = 0.62 * smoothStep(1.48, 1.56, radius);
  const double division = 1 - 0.92 * std::exp(-square((radius - 1.98) / 0.028));
  const double grooves = 1 + 0.10 * std::sin(70 * radius) + 0.07 * std::sin(131 * radius);
  const double edge = 1 - smoothStep(ringOuter - 0.03, ringOuter, radius);
  return std::clamp((inner + middle) * division * grooves * edge, 0.0, 1.0);
}

}  // namespace

void Scene::set(std::uint64_t seed, double aspect, double pixel) {
  aspect_ = aspect;
  pixel_ = pixel;
  starWidth_ = std::hypot(starWidth, 0.6 * pixel);
  stars_.clear();
  setSky();

  addStar(0.085, 0.055, {1.50F, 0.52F, 0.20F});
  addStar(0.128, 0.092, {0.30F, 0.70F, 1.50F});

  const double cosRoll = std::cos(planetRoll);
  const double sinRoll = std::sin(planetRoll);
  for (const double distance : {-4.1, -2.9, 2.75, 3.7, 5.6}) {
    addStar(aspect / 2 + planetRadius * distance * cosRoll,
            planetY + planetRadius * distance * sinRoll, {0.42F, 0.39F, 0.33F});
  }

  std::uint64_t counter = mix(seed);
  const auto next = [&counter] { return unitInterval(mix(++counter)); };
  for (int star = 0; star < starCount; ++star) {
    const double fromMiddle = (next() - 0.5) * skyWidth;
    const double y = next();
    const double rarity = next();
    const double heat = next();
    const bool isInCloud = next() < 0.22 + 0.8 * starCloud(fromMiddle, y);
    // Fainter stars are more frequent, as in the sky.
    const double brightness = std::min(0.0050 * std::pow(1 - rarity, -0.85), 0.6);
    const double x = aspect / 2 + fromMiddle;
    if (isInCloud && x > -0.05 && x < aspect + 0.05) {
      addStar(x, y, scaled(starColor(heat), brightness));
    }
  }
}

// A pixel that is large relative to a star blurs it. The star's total light stays the same.
void Scene::addStar(double x, double y, const Light& peak) {
  const double dilution = (starWidth * starWidth) / (starWidth_ * starWidth_);
  const Light diluted = scaled(peak, dilution);
  const double brightest = *std::max_element(diluted.begin(), diluted.end());
  const double reach =
      starWidth_ * std::sqrt(std::max(0.0, std::cbrt(brightest / faintestLight) - 1));
  stars_.push_back({x, y, diluted, reach});
}

Light Scene::sky(double x, double y) const {
  const double fromMiddle = x - aspect_ / 2;
  const double horizon = std::exp(2.4 * (y - 1));
  const double glow = 0.5 + 0.5 * std::sin(9 * y + 1.5 * fromMiddle + 2 * hills(fromMiddle, y, 5));
  const double cloud = starCloud(fromMiddle, y);
  Light light{0.0075F, 0.0085F, 0.0115F};
  add(light, scaled({0.0125F, 0.0090F, 0.0055F}, horizon));
  add(light, scaled({0.0006F, 0.0019F, 0.0008F}, glow));
  add(light, scaled({0.0200F, 0.0180F, 0.0170F}, cloud));
  return light;
}

void Scene::light(const SceneRow& row, Light* lights) const {
  setSky(row, lights);
  addStars(row, lights);
  addPlanet(row, lights);
}

void Scene::setSky() {
  constexpr double mostColumns = 1000;
  skyCell_ = std::max(skyCell, aspect_ / mostColumns);
  // One more corner than cells, and one more so that the last row and column have a next corner.
  skyColumns_ = static_cast<std::size_t>(aspect_ / skyCell_) + 2;
  const auto rows = static_cast<std::size_t>(1 / skyCell_) + 2;
  sky_.clear();
  for (std::size_t row = 0; row < rows; ++row) {
    for (std::size_t column = 0; column < skyColumns_; ++column) {
      sky_.push_back(
          sky(static_cast<double>(column) * skyCell_, static_cast<double>(row) * skyCell_));
    }
  }
}

void Scene::setSky(const SceneRow& row, Light* lights) const {
  const double firstRow = std::floor(row.y / skyCell_);
  const Light* const upper = sky_.data() + static_cast<std::size_t>(firstRow) * skyColumns_;
  const auto cornerAt = [&](std::size_t column) {
    return mixed(upper[column], upper[skyColumns_ + column], row.y / skyCell_ - firstRow);
  };
  auto column = static_cast<std::size_t>(row.x / skyCell_);
  Light left = cornerAt(column);
  for (std::int32_t i = 0; i < row.count; ++column) {
    const Light right = cornerAt(column + 1);
    const double start = row.x / skyCell_ - static_cast<double>(column);
    const double step = pixel_ / skyCell_;
    const auto end = std::min(static_cast<std::int32_t>(std::ceil((1 - start) / step)), row.count);
    for (; i < end; ++i) {
      lights[i] = mixed(left, right, start + i * step);
    }
    left = right;
  }
}

void Scene::addStars(const SceneRow& row, Light* lights) const {
  for (const Star& star : stars_) {
    const double dy = row.y - star.y;
    if (std::abs(dy) > star.reach) {
      continue;
    }
    const double firstPixel = std::ceil((star.x - star.reach - row.x) / pixel_);
    const double lastPixel = std::floor((star.x + star.reach - row.x) / pixel_);
    const auto first = static_cast<std::int32_t>(std::clamp(firstPixel, 0.0, 1.0 * row.count));
    const auto last = static_cast<std::int32_t>(std::clamp(lastPixel, -1.0, row.count - 1.0));
    for (std::int32_t i = first; i <= last; ++i) {
      const double dx = row.x + i * pixel_ - star.x;
      const double q = 1 + (dx * dx + dy * dy) / (starWidth_ * starWidth_);
      add(lights[i], scaled(star.peak, 1 / (q * q * q)));
    }
  }
}

void Scene::addPlanet(const SceneRow& row, Light* lights) const {
  const double dy = (row.y - planetY) / planetRadius;
  if (std::abs(dy) > planetReach) {
    return;
  }
  const double cosRoll = std::cos(planetRoll);
  const double sinRoll = std::sin(planetRoll);
  const double pixel = pixel_ / planetRadius;
  const double middle = (aspect_ / 2 - row.x) / pixel_;
  const double reach = planetReach / pixel;
  const auto first = static_cast<std::int32_t>(std::clamp(middle - reach, 0.0, 1.0 * row.count));
  const auto last = static_cast<std::int32_t>(std::clamp(middle + reach, -1.0, row.count - 1.0));
  for (std::int32_t i = first; i <= last; ++i) {
    const double dx = (i - middle) * pixel;
    const double u = dx * cosRoll + dy * sinRoll;
    const double v = dy * cosRoll - dx * sinRoll;
    const auto cover = [&](const Light& light, double part) {
      lights[i] = mixed(lights[i], light, part);
    };

    const double discV = v / planetFlattening;
    const double fromCentre = std::sqrt(square(u) + square(discV));
    const double disc = std::clamp((1 - fromCentre) / pixel + 0.5, 0.0, 1.0);
    const double ring = ringDensity(std::sqrt(square(u) + square(v / ringOpening)));
    const bool isInFront = v > 0;

    // The far half of the ring is behind the planet and, on one side, in its shadow.
    if (!isInFront && ring > 0) {
      const bool isInShadow = u > 0.25 && square(u - 0.35) + square(discV) < 1;
      cover(scaled(ringColor, isInShadow ? 0.04 : 0.95), ring);
    }
    if (disc > 0) {
      const double shrink = fromCentre < 0.999 ? 1 : 0.999 / fromCentre;
      const double shadow =
          0.55 * ringDensity(std::sqrt(square(u) + square((v + 0.10) / ringOpening)));
      const bool isShaded = v + 0.10 > 0;
      cover(scaled(planetSurface(u * shrink, discV * shrink), isShaded ? 1 - shadow : 1.0), disc);
    }
    if (isInFront && ring > 0) {
      cover(scaled(ringColor, 0.95), ring);
    }
  }
}

}  // namespace orvane::sim
