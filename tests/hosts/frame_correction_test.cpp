// Correcting frames whose layout differs from what the SDK reported.
#include "imaging/frame_correction.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "imaging/image.hpp"
#include "system/failures.hpp"

namespace orvane::host {

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes corrected(Bytes frame, const FrameLayout& layout, const FrameCorrection& correction) {
  correctFrame(frame, layout, correction);
  return frame;
}

TEST(FrameCorrection, ReversesRows) {
  const FrameCorrection flip{true, false, {}};
  EXPECT_EQ(corrected({1, 2, 3, 4, 5, 6}, {2, 3, PixelFormat::Mono8, BayerPattern::None}, flip),
            (Bytes{5, 6, 3, 4, 1, 2}));
  EXPECT_EQ(corrected({1, 2, 3, 4}, {1, 2, PixelFormat::Raw16, BayerPattern::None}, flip),
            (Bytes{3, 4, 1, 2}));
  EXPECT_EQ(corrected({7, 8}, {2, 1, PixelFormat::Raw8, BayerPattern::None}, flip), (Bytes{7, 8}));
}

TEST(FrameCorrection, SwapsRedAndBlue) {
  EXPECT_EQ(corrected({1, 2, 3, 4, 5, 6}, {2, 1, PixelFormat::Rgb24, BayerPattern::None},
                      {false, true, {}}),
            (Bytes{3, 2, 1, 6, 5, 4}));
  EXPECT_EQ(corrected({1, 2, 3, 4, 5, 6}, {1, 2, PixelFormat::Rgb24, BayerPattern::None},
                      {true, true, {}}),
            (Bytes{6, 5, 4, 3, 2, 1}));
}

TEST(FrameCorrection, WithoutAnyTheFrameStays) {
  const FrameLayout layout{2, 2, PixelFormat::Raw8, BayerPattern::Grbg};
  EXPECT_EQ(corrected({1, 2, 3, 4}, layout, {}), (Bytes{1, 2, 3, 4}));
  EXPECT_EQ(correctedLayout(layout, {}).bayer, BayerPattern::Grbg);
}

// An evenly coloured scene keeps its colours when it is flipped.
TEST(FrameCorrection, FlipsTheBayerPatternWithTheRows) {
  for (const BayerPattern bayer :
       {BayerPattern::Rggb, BayerPattern::Grbg, BayerPattern::Gbrg, BayerPattern::Bggr}) {
    for (const int height : {4, 5}) {
      const FrameLayout layout{4, height, PixelFormat::Raw8, bayer};
      Bytes frame;
      for (int y = 0; y < height; ++y) {
        for (int x = 0; x < 4; ++x) {
          const char colour = bayerName(bayer)[static_cast<std::size_t>(2 * (y % 2) + x % 2)];
          frame.push_back(colour == 'R' ? 200 : colour == 'G' ? 100 : 50);
        }
      }
      const FrameCorrection flip{true, false, {}};
      const FrameLayout flipped = correctedLayout(layout, flip);
      correctFrame(frame, layout, flip);
      const Image image = debayer(imageFromFrame(frame, flipped), flipped.bayer);
      for (std::size_t at = 0; at < image.samples.size(); at += 3) {
        ASSERT_EQ(image.samples[at], 200 * 257) << bayerName(bayer) << " " << height;
        ASSERT_EQ(image.samples[at + 1], 100 * 257);
        ASSERT_EQ(image.samples[at + 2], 50 * 257);
      }
    }
  }
}

TEST(FrameCorrection, TakesAnotherBayerPattern) {
  const FrameLayout layout{4, 4, PixelFormat::Raw16, BayerPattern::Rggb};
  EXPECT_EQ(correctedLayout(layout, {false, false, BayerPattern::Bggr}).bayer, BayerPattern::Bggr);
  EXPECT_EQ(correctedLayout(layout, {false, false, BayerPattern::None}).bayer, BayerPattern::None);
  EXPECT_EQ(correctedLayout(layout, {true, false, BayerPattern::Bggr}).bayer, BayerPattern::Grbg);
}

TEST(FrameCorrection, RefusesCorrectionsThatDoNotApply) {
  for (const PixelFormat format : {PixelFormat::Raw8, PixelFormat::Raw16, PixelFormat::Mono8}) {
    EXPECT_THROW(correctedLayout({2, 2, format, BayerPattern::None}, {false, true, {}}),
                 UsageError);
  }
  for (const PixelFormat format : {PixelFormat::Rgb24, PixelFormat::Mono8}) {
    EXPECT_THROW(
        correctedLayout({2, 2, format, BayerPattern::None}, {false, false, BayerPattern::Rggb}),
        UsageError);
  }
}

}  // namespace

}  // namespace orvane::host
