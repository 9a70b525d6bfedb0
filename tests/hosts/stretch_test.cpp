// The curve that makes faint images visible, and pictures of frames.
#include "imaging/stretch.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

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

TEST(MidtonesTransfer, IsClampedToItsRange) {
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

// A dark frame with a red square in its middle, as a sensor with a Bayer pattern delivers it.
std::vector<std::uint8_t> redSquare(const FrameLayout& layout) {
  std::vector<std::uint8_t> frame;
  for (int y = 0; y < layout.height; ++y) {
    for (int x = 0; x < layout.width; ++x) {
      const bool isInside = x >= 8 && x < 16 && y >= 8 && y < 16;
      const char colour = bayerName(layout.bayer)[static_cast<std::size_t>(2 * (y % 2) + x % 2)];
      const auto high = static_cast<std::uint8_t>(isInside && colour == 'R' ? 200 : 20 + x % 3);
      if (layout.format == PixelFormat::Raw16) {
        frame.push_back(0x55);
      }
      frame.push_back(high);
    }
  }
  return frame;
}

class PreviewOfBayerPattern
    : public ::testing::TestWithParam<std::tuple<PixelFormat, BayerPattern>> {};

TEST_P(PreviewOfBayerPattern, IsInColour) {
  const auto [format, bayer] = GetParam();
  const FrameLayout layout{24, 24, format, bayer};
  const ScreenImage preview = previewOf(redSquare(layout), layout);
  ASSERT_EQ(preview.width, 24);
  ASSERT_EQ(preview.height, 24);
  ASSERT_EQ(preview.channels, 3);
  const std::size_t middle = std::size_t{12 * 24 + 12} * 3;
  EXPECT_GT(preview.samples[middle], preview.samples[middle + 1] + 50);
  EXPECT_GT(preview.samples[middle], preview.samples[middle + 2] + 50);
}

INSTANTIATE_TEST_SUITE_P(
    Preview, PreviewOfBayerPattern,
    ::testing::Combine(::testing::Values(PixelFormat::Raw8, PixelFormat::Raw16),
                       ::testing::Values(BayerPattern::Rggb, BayerPattern::Grbg, BayerPattern::Gbrg,
                                         BayerPattern::Bggr)),
    [](const auto& test) {
      return std::string(formatName(std::get<0>(test.param))) + bayerName(std::get<1>(test.param));
    });

TEST(StretchedBrightness, HasAnInverse) {
  const Stretch stretch{1000, 9000, 0.1};
  EXPECT_EQ(stretchedBrightness(stretch, 900), 0);
  EXPECT_EQ(stretchedBrightness(stretch, 9100), 1);
  EXPECT_NEAR(stretchedBrightness(stretch, 1800), 0.5, 1e-12);
  for (const double sample : {1000.0, 1200.0, 4000.0, 9000.0}) {
    EXPECT_NEAR(sampleOfBrightness(stretch, stretchedBrightness(stretch, sample)), sample, 1e-8);
  }
}

TEST(Preview, OfMonoIsGrey) {
  const std::vector<std::uint8_t> frame(64, 9);
  for (const PixelFormat format : {PixelFormat::Raw8, PixelFormat::Mono8}) {
    EXPECT_EQ(previewOf(frame, {8, 8, format, BayerPattern::None}).channels, 1);
  }
}

TEST(Preview, OfRgbNeedsNoBayerPattern) {
  const std::vector<std::uint8_t> frame{255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  const ScreenImage preview = previewOf(frame, {2, 2, PixelFormat::Rgb24, BayerPattern::None});
  EXPECT_EQ(preview.channels, 3);
  EXPECT_EQ(preview.samples[0], 255);
  EXPECT_EQ(preview.samples[1], 0);
}

TEST(Preview, OfALargeFrameIsSmaller) {
  const std::vector<std::uint8_t> frame(5000);
  const ScreenImage preview =
      previewOf(frame, {100, 50, PixelFormat::Raw8, BayerPattern::Rggb}, 30);
  EXPECT_EQ(preview.width, 25);
  EXPECT_EQ(preview.height, 12);
  EXPECT_EQ(preview.channels, 3);
}

}  // namespace

}  // namespace orvane::host
