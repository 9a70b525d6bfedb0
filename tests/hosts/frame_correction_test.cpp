// Putting right what an SDK delivers otherwise than it says.
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

TEST(FrameCorrection, TurnsRowsAround) {
  const FrameCorrection flip{true, false, {}};
  EXPECT_EQ(corrected({1, 2, 3, 4, 5, 6}, {2, 3, PixelFormat::Mono8, Mosaic::None}, flip),
            (Bytes{5, 6, 3, 4, 1, 2}));
  EXPECT_EQ(corrected({1, 2, 3, 4}, {1, 2, PixelFormat::Raw16, Mosaic::None}, flip),
            (Bytes{3, 4, 1, 2}));
  EXPECT_EQ(corrected({7, 8}, {2, 1, PixelFormat::Raw8, Mosaic::None}, flip), (Bytes{7, 8}));
}

TEST(FrameCorrection, ExchangesRedAndBlue) {
  EXPECT_EQ(
      corrected({1, 2, 3, 4, 5, 6}, {2, 1, PixelFormat::Rgb24, Mosaic::None}, {false, true, {}}),
      (Bytes{3, 2, 1, 6, 5, 4}));
  EXPECT_EQ(
      corrected({1, 2, 3, 4, 5, 6}, {1, 2, PixelFormat::Rgb24, Mosaic::None}, {true, true, {}}),
      (Bytes{6, 5, 4, 3, 2, 1}));
}

TEST(FrameCorrection, WithoutAnyTheFrameStays) {
  const FrameLayout layout{2, 2, PixelFormat::Raw8, Mosaic::Grbg};
  EXPECT_EQ(corrected({1, 2, 3, 4}, layout, {}), (Bytes{1, 2, 3, 4}));
  EXPECT_EQ(correctedLayout(layout, {}).mosaic, Mosaic::Grbg);
}

// An evenly coloured scene keeps its colours when it is turned upside down.
TEST(FrameCorrection, TheMosaicTurnsWithTheRows) {
  for (const Mosaic mosaic : {Mosaic::Rggb, Mosaic::Grbg, Mosaic::Gbrg, Mosaic::Bggr}) {
    for (const int height : {4, 5}) {
      const FrameLayout layout{4, height, PixelFormat::Raw8, mosaic};
      Bytes frame;
      for (int y = 0; y < height; ++y) {
        for (int x = 0; x < 4; ++x) {
          const char colour = mosaicName(mosaic)[static_cast<std::size_t>(2 * (y % 2) + x % 2)];
          frame.push_back(colour == 'R' ? 200 : colour == 'G' ? 100 : 50);
        }
      }
      const FrameCorrection flip{true, false, {}};
      const FrameLayout flipped = correctedLayout(layout, flip);
      correctFrame(frame, layout, flip);
      const Image image = debayer(imageFromFrame(frame, flipped), flipped.mosaic);
      for (std::size_t at = 0; at < image.samples.size(); at += 3) {
        ASSERT_EQ(image.samples[at], 200 * 257) << mosaicName(mosaic) << " " << height;
        ASSERT_EQ(image.samples[at + 1], 100 * 257);
        ASSERT_EQ(image.samples[at + 2], 50 * 257);
      }
    }
  }
}

TEST(FrameCorrection, TakesAnotherMosaic) {
  const FrameLayout layout{4, 4, PixelFormat::Raw16, Mosaic::Rggb};
  EXPECT_EQ(correctedLayout(layout, {false, false, Mosaic::Bggr}).mosaic, Mosaic::Bggr);
  EXPECT_EQ(correctedLayout(layout, {false, false, Mosaic::None}).mosaic, Mosaic::None);
  EXPECT_EQ(correctedLayout(layout, {true, false, Mosaic::Bggr}).mosaic, Mosaic::Grbg);
}

TEST(FrameCorrection, RefusesWhatMakesNoSense) {
  for (const PixelFormat format : {PixelFormat::Raw8, PixelFormat::Raw16, PixelFormat::Mono8}) {
    EXPECT_THROW(correctedLayout({2, 2, format, Mosaic::None}, {false, true, {}}), UsageError);
  }
  for (const PixelFormat format : {PixelFormat::Rgb24, PixelFormat::Mono8}) {
    EXPECT_THROW(correctedLayout({2, 2, format, Mosaic::None}, {false, false, Mosaic::Rggb}),
                 UsageError);
  }
}

}  // namespace

}  // namespace orvane::host
