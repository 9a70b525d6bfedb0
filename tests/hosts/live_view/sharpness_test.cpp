// The sharpness of planets and the Moon.
#include "live_view/sharpness.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "live_view/reduced_frame.hpp"
#include "synthetic_frame.hpp"

namespace orvane::host {

namespace {

using orvane::testing::frame16;
using orvane::testing::grain;

constexpr FrameLayout mono{400, 300, PixelFormat::Raw16, BayerPattern::None};

double sharpnessOf(const std::vector<std::uint8_t>& frame, const FrameLayout& layout, int factor,
                   const std::optional<Region>& region = std::nullopt) {
  Image reduced;
  reduceFrame(frame, layout, factor, reduced);
  return measureSharpness(frame, layout, reduced, factor, region);
}

struct Planet {
  double blur = 1;
  double peak = 30000;
  double sky = 500;
  double noise = 10;
  double x = 200;
  double y = 150;
};

std::vector<std::uint8_t> frameOf(const Planet& planet, const FrameLayout& layout = mono) {
  return frame16(layout, [&](int x, int y) {
    const double distance = std::hypot(x - planet.x, y - planet.y) - 40;
    const double belt = 1 - 0.2 / (1 + std::exp((std::abs(y - planet.y) - 8) / planet.blur));
    return planet.sky + planet.noise * grain(x, y) +
           planet.peak * belt / (1 + std::exp(distance / planet.blur));
  });
}

TEST(Sharpness, IsMoreWhereTheFocusIsBetter) {
  for (const BayerPattern bayer : {BayerPattern::None, BayerPattern::Rggb}) {
    const FrameLayout layout{400, 300, PixelFormat::Raw16, bayer};
    double before = 1000;
    for (const double blur : {0.5, 1.0, 1.5, 2.0, 3.0, 5.0}) {
      const double sharpness = sharpnessOf(frameOf({.blur = blur}, layout), layout, 2);
      EXPECT_LT(sharpness, 0.97 * before) << blur;
      EXPECT_GT(sharpness, 0) << blur;
      before = sharpness;
    }
  }
}

TEST(Sharpness, BrightnessAndSkyDoNotCount) {
  const double usual = sharpnessOf(frameOf({}), mono, 2);
  for (const Planet& planet : {Planet{.peak = 15000}, Planet{.peak = 60000}, Planet{.sky = 5000},
                               Planet{.peak = 7000, .sky = 200}}) {
    EXPECT_NEAR(sharpnessOf(frameOf(planet), mono, 2), usual, 0.02 * usual);
  }
}

TEST(Sharpness, NoiseOfTheSkyIsSubtracted) {
  const double quiet = sharpnessOf(frameOf({.blur = 3, .noise = 0}), mono, 2);
  EXPECT_NEAR(sharpnessOf(frameOf({.blur = 3, .noise = 1500}), mono, 2), quiet, 0.1 * quiet);
}

TEST(Sharpness, NeitherThePlaceNorAHotPixelCounts) {
  const double usual = sharpnessOf(frameOf({}), mono, 2);
  EXPECT_NEAR(sharpnessOf(frameOf({.x = 80, .y = 70}), mono, 2), usual, 0.05 * usual);
  std::vector<std::uint8_t> frame = frameOf({});
  const std::size_t hot = 2 * pixelIndex(mono.width, 30, 30);
  frame[hot] = 0xFF;
  frame[hot + 1] = 0xFF;
  EXPECT_NEAR(sharpnessOf(frame, mono, 2), usual, 0.05 * usual);
}

TEST(Sharpness, OfALargeFrameIsThatOfThePlanetInIt) {
  const FrameLayout large{1600, 1200, PixelFormat::Raw16, BayerPattern::None};
  const double usual = sharpnessOf(frameOf({}), mono, 2);
  EXPECT_NEAR(sharpnessOf(frameOf({.x = 1300, .y = 1000}, large), large, 2), usual, 0.05 * usual);
}

TEST(Sharpness, OfARegionIsThatOfWhatIsInIt) {
  const auto frame = frame16(mono, [](int x, int y) {
    const double left = std::hypot(x - 100, y - 150) - 40;
    const double right = std::hypot(x - 300, y - 150) - 40;
    return 500 + 30000 / (1 + std::exp(left / 4)) + 30000 / (1 + std::exp(right / 0.7));
  });
  const double soft = sharpnessOf(frame, mono, 2, Region{20, 70, 160, 160});
  const double sharp = sharpnessOf(frame, mono, 2, Region{220, 70, 160, 160});
  EXPECT_GT(sharp, 1.5 * soft);
}

// The Moon: no sky, relief everywhere.
TEST(Sharpness, OfAFullFrameFollowsTheFocus) {
  const auto moon = [](double contrast) {
    return frame16(mono, [contrast](int x, int y) {
      return 20000 + 8000 * std::sin(x / 30.0) * std::cos(y / 25.0) +
             contrast * std::sin(x / 1.5) * std::sin(y / 1.7);
    });
  };
  EXPECT_GT(sharpnessOf(moon(3000), mono, 1), 1.5 * sharpnessOf(moon(300), mono, 1));
}

TEST(Sharpness, OfEightBitsAndOfColourIsMeasuredToo) {
  const FrameLayout bytes{200, 200, PixelFormat::Raw8, BayerPattern::None};
  const FrameLayout rgb{200, 200, PixelFormat::Rgb24, BayerPattern::None};
  std::vector<std::uint8_t> grey;
  std::vector<std::uint8_t> colour;
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 200; ++x) {
      const double distance = std::hypot(x - 100, y - 100) - 40;
      const auto sample = static_cast<std::uint8_t>(10 + 200 / (1 + std::exp(distance / 2)));
      grey.push_back(sample);
      colour.insert(colour.end(), 3, sample);
    }
  }
  const double sharpness = sharpnessOf(grey, bytes, 1);
  EXPECT_GT(sharpness, 0);
  EXPECT_NEAR(sharpnessOf(colour, rgb, 1), sharpness, 0.01 * sharpness);
}

TEST(Sharpness, NothingHasNone) {
  const auto noise = frame16(mono, [](int x, int y) { return 1000 + 100 * grain(x, y); });
  EXPECT_EQ(sharpnessOf(frame16(mono, [](int, int) { return 1000.0; }), mono, 2), 0);
  EXPECT_LT(sharpnessOf(noise, mono, 2), 500);  // noise alone has no meaning, but does no harm
  const FrameLayout tiny{1, 1, PixelFormat::Raw8, BayerPattern::None};
  EXPECT_EQ(sharpnessOf({200}, tiny, 1), 0);
  EXPECT_EQ(measureSharpness({}, mono, Image{0, 0, 1, {}}, 2), 0);
  EXPECT_EQ(sharpnessOf(frameOf({}), mono, 2, Region{390, 290, 100, 100}), 0);  // of before
}

}  // namespace

}  // namespace orvane::host
