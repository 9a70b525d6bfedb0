// The focus figure, on stars of known width.
#include "live_view/focus.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "live_view/reduced_frame.hpp"
#include "synthetic_frame.hpp"

namespace orvane::host {

namespace {

using orvane::testing::frame16;
using orvane::testing::grain;
using orvane::testing::starLight;

constexpr FrameLayout mono{400, 300, PixelFormat::Raw16, BayerPattern::None};

Focus focusOf(const std::vector<std::uint8_t>& frame, const FrameLayout& layout, int factor,
              const std::optional<Star>& before = std::nullopt) {
  Image reduced;
  reduceFrame(frame, layout, factor, reduced);
  return measureFocus(frame, layout, reduced, factor, before);
}

// Twice the mean distance from the middle of a bell of this width.
double diameterOfBell(double width) {
  return 2 * width * std::sqrt(std::acos(-1.0) / 2);
}

class StarOfWidth : public ::testing::TestWithParam<double> {};

TEST_P(StarOfWidth, IsMeasuredWhereItIs) {
  const double width = GetParam();
  for (const BayerPattern bayer : {BayerPattern::None, BayerPattern::Gbrg}) {
    const FrameLayout layout{400, 300, PixelFormat::Raw16, bayer};
    const auto frame = frame16(layout, [&](int x, int y) {
      return 1000 + 20 * grain(x, y) + starLight(x, y, 123.3, 77.8, width, 40000);
    });
    for (const int factor : {2, 4}) {
      const Focus focus = focusOf(frame, layout, factor);
      ASSERT_TRUE(focus.star);
      EXPECT_NEAR(focus.star->x, 123.3, 0.1);
      EXPECT_NEAR(focus.star->y, 77.8, 0.1);
      // A Bayer pattern's squares of two make a star a little wider.
      const double seen = bayer == BayerPattern::None ? width : std::hypot(width, 0.5);
      EXPECT_NEAR(focus.star->halfFluxDiameter, diameterOfBell(seen), 0.05 * diameterOfBell(seen))
          << factor;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Focus, StarOfWidth, ::testing::Values(1.0, 1.5, 2.5, 4.0, 6.0));

TEST(Focus, OfEightBitsIsTheSame) {
  const FrameLayout layout{200, 200, PixelFormat::Raw8, BayerPattern::None};
  std::vector<std::uint8_t> frame;
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 200; ++x) {
      frame.push_back(static_cast<std::uint8_t>(10.5 + starLight(x, y, 90.5, 110.5, 2, 200)));
    }
  }
  const Focus focus = focusOf(frame, layout, 1);
  ASSERT_TRUE(focus.star);
  EXPECT_NEAR(focus.star->halfFluxDiameter, diameterOfBell(2), 0.2);
}

struct StarChoice {
  const char* name;
  double (*light)(int x, int y);
  double x;  // of the star that is to be measured
  double y;
  std::optional<Star> before = std::nullopt;
};

void PrintTo(const StarChoice& choice, std::ostream* out) {
  *out << choice.name;
}

class StarToMeasure : public ::testing::TestWithParam<StarChoice> {};

TEST_P(StarToMeasure, IsFound) {
  const auto frame = frame16(mono, GetParam().light);
  for (const int factor : {1, 2}) {
    const Focus focus = focusOf(frame, mono, factor, GetParam().before);
    ASSERT_TRUE(focus.star);
    EXPECT_NEAR(focus.star->x, GetParam().x, 0.2);
    EXPECT_NEAR(focus.star->y, GetParam().y, 0.2);
  }
}

double twoStars(int x, int y) {
  return 500 + starLight(x, y, 60, 60, 2, 20000) + starLight(x, y, 300, 200, 3, 30000);
}

double oneStar(int x, int y) {
  return 500 + 10 * grain(x, y) + starLight(x, y, 300, 200, 3, 30000);
}

double starAndHotPixel(int x, int y) {
  const double hot = x == 50 && y == 60 ? 60000 : 0;
  return 500 + 10 * grain(x, y) + hot + starLight(x, y, 300, 200, 1.5, 20000);
}

double starBesidePlanet(int x, int y) {
  const double distance = std::hypot(x - 200, y - 150);
  return 500 + 10 * grain(x, y) + (distance < 60 ? 40000 : 0) + starLight(x, y, 40, 40, 2, 9000);
}

INSTANTIATE_TEST_SUITE_P(
    Focus, StarToMeasure,
    ::testing::Values(StarChoice{"TheBrightestOfSeveral", twoStars, 300, 200},
                      StarChoice{"TheOneOfBeforeEvenIfItMoved", twoStars, 60, 60, Star{67, 53, 5}},
                      StarChoice{"AnotherWhenTheOneOfBeforeIsGone", oneStar, 300, 200,
                                 Star{60, 60, 5}},
                      StarChoice{"NoHotPixel", starAndHotPixel, 300, 200},
                      StarChoice{"OneBesideAPlanet", starBesidePlanet, 40, 40}),
    [](const auto& test) { return test.param.name; });

TEST(Focus, APlanetIsNoStarButHasSharpEdges) {
  const auto planet = [](double blur) {
    return frame16(mono, [blur](int x, int y) {
      const double distance = std::hypot(x - 200, y - 150) - 60;
      return 500 + 10 * grain(x, y) + 30000 / (1 + std::exp(distance / blur));
    });
  };
  const Focus sharp = focusOf(planet(0.5), mono, 2);
  const Focus soft = focusOf(planet(4), mono, 2);
  EXPECT_FALSE(sharp.star);
  EXPECT_FALSE(soft.star);
  EXPECT_GT(soft.sharpness, 0);
  EXPECT_GT(sharp.sharpness, 1.5 * soft.sharpness);
}

TEST(Focus, NoiseAloneHasNoStar) {
  const auto frame = frame16(mono, [](int x, int y) { return 1000 + 100 * grain(x, y); });
  EXPECT_FALSE(focusOf(frame, mono, 1).star);
}

TEST(Focus, StarsAtTheBorderDoNotLeadOutOfTheFrame) {
  for (const auto& corner : {std::pair{0.0, 0.0}, std::pair{400.0, 300.0}}) {
    const double x0 = corner.first;
    const double y0 = corner.second;
    const auto frame =
        frame16(mono, [&](int x, int y) { return 500 + starLight(x, y, x0, y0, 2, 30000); });
    const Focus focus = focusOf(frame, mono, 1);
    if (focus.star) {
      EXPECT_NEAR(focus.star->x, x0, 5);
      EXPECT_NEAR(focus.star->y, y0, 5);
    }
  }
}

TEST(Focus, OfTinyAndOfEmptyImagesIsNothing) {
  const FrameLayout tiny{1, 1, PixelFormat::Raw8, BayerPattern::Rggb};
  EXPECT_FALSE(measureFocus(std::vector<std::uint8_t>{9}, tiny, Image{0, 0, 3, {}}, 2).star);
  const FrameLayout one{1, 1, PixelFormat::Raw8, BayerPattern::None};
  EXPECT_FALSE(focusOf({200}, one, 1).star);
}

}  // namespace

}  // namespace orvane::host
