// The curve that makes faint images visible.
#include "imaging/stretch.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace orvane::host {

namespace {

// 10000 samples: noise of +-20 around 1000, and a star whose brightness is given.
Image nightSky(std::uint16_t star) {
  Image image{100, 100, 1, {}};
  for (int index = 0; index < 10000; ++index) {
    image.samples.push_back(static_cast<std::uint16_t>(980 + (index * 7919) % 41));
  }
  image.samples[5050] = star;
  image.samples[5051] = star;
  return image;
}

TEST(MidtonesTransfer, GoesThroughItsThreePoints) {
  for (const double midtones : {0.1, 0.25, 0.5, 0.9}) {
    EXPECT_DOUBLE_EQ(midtonesTransfer(midtones, 0), 0);
    EXPECT_DOUBLE_EQ(midtonesTransfer(midtones, midtones), 0.5);
    EXPECT_DOUBLE_EQ(midtonesTransfer(midtones, 1), 1);
  }
  EXPECT_DOUBLE_EQ(midtonesTransfer(0.5, 0.3), 0.3);
  EXPECT_DOUBLE_EQ(midtonesTransfer(0.25, 0.5), 0.75);
}

TEST(MidtonesTransfer, IsHeldWithinItsRange) {
  EXPECT_EQ(midtonesTransfer(0.25, -3), 0);
  EXPECT_EQ(midtonesTransfer(0.25, 3), 1);
}

TEST(AutoStretch, PutsBlackBelowTheNoiseAndWhiteAtTheBrightest) {
  const Stretch stretch = autoStretch(nightSky(40000)).front();
  EXPECT_GT(stretch.black, 500);
  EXPECT_LT(stretch.black, 980);
  EXPECT_EQ(stretch.white, 40000);
}

TEST(AutoStretch, MakesTheBackgroundAQuarterOfWhiteAndKeepsTheStarWhite) {
  const ScreenImage screen = stretched(nightSky(40000));
  EXPECT_EQ(screen.samples[5050], 255);
  std::vector<std::uint8_t> sorted = screen.samples;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_NEAR(sorted[5000], 64, 1);
  EXPECT_GT(sorted.front(), 0);
}

TEST(AutoStretch, IsNotMisledByOneHotPixelInTenThousand) {
  Image image = nightSky(5000);
  image.samples[17] = 65535;
  EXPECT_EQ(autoStretch(image).front().white, 5000);
}

TEST(AutoStretch, KeepsTheBackgroundAboveBlackWhereItHasNoNoise) {
  Image image{100, 1, 1, std::vector<std::uint16_t>(100, 1000)};
  image.samples[3] = 60000;
  const ScreenImage screen = stretched(image);
  EXPECT_NEAR(screen.samples[0], 64, 1);
  EXPECT_EQ(screen.samples[3], 255);
}

TEST(AutoStretch, DarkensNoImage) {
  Image image{101, 1, 1, {}};
  for (int index = 0; index <= 100; ++index) {
    image.samples.push_back(static_cast<std::uint16_t>(index * 655));
  }
  EXPECT_LE(autoStretch(image).front().midtones, 0.5);
  EXPECT_NEAR(stretched(image).samples[50], 128, 2);
}

TEST(AutoStretch, ShowsAnEvenImageAsItIs) {
  for (const int level : {0, 30000, 65535}) {
    const auto sample = static_cast<std::uint16_t>(level);
    const ScreenImage screen = stretched({2, 1, 1, {sample, sample}});
    EXPECT_NEAR(screen.samples[0], level / 257.0, 0.6);
  }
}

TEST(AutoStretch, LeavesNoisyDarknessDark) {
  Image image{100, 1, 1, {}};
  for (int index = 0; index < 100; ++index) {
    image.samples.push_back(static_cast<std::uint16_t>(index % 3 == 0 ? 257 : 0));
  }
  image.samples[50] = 65535;
  const ScreenImage screen = stretched(image);
  EXPECT_EQ(screen.samples[1], 0);
  EXPECT_LT(screen.samples[0], 80);
  EXPECT_EQ(screen.samples[50], 255);
}

TEST(AutoStretch, TakesTheCastFromTheBackgroundAndLeavesTheStarItsColour) {
  const Image sky = nightSky(20000);
  Image image{100, 100, 3, {}};
  for (const std::uint16_t sample : sky.samples) {
    image.samples.push_back(static_cast<std::uint16_t>(sample * 2));
    image.samples.push_back(sample);
    image.samples.push_back(static_cast<std::uint16_t>(sample > 10000 ? 1000 : sample));
  }
  const std::vector<Stretch> stretches = autoStretch(image);
  ASSERT_EQ(stretches.size(), 3U);
  EXPECT_EQ(stretches[0].white, 40000);
  EXPECT_EQ(stretches[2].white, 40000);
  const ScreenImage screen = stretched(image);
  const std::size_t background = std::size_t{42} * 3;
  EXPECT_NEAR(screen.samples[background], screen.samples[background + 1], 12);
  EXPECT_EQ(screen.samples[background + 2], screen.samples[background + 1]);
  const std::size_t star = std::size_t{5050} * 3;
  EXPECT_EQ(screen.samples[star], 255);
  EXPECT_LT(screen.samples[star + 1], 255);
  EXPECT_LT(screen.samples[star + 2], 100);
}

}  // namespace

}  // namespace orvane::host
