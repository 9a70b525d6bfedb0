// Reduced frames and parts of frames, compared with values calculated by hand.
#include "live_view/reduced_frame.hpp"

#include <gtest/gtest.h>

#include <array>

#include "imaging/image.hpp"

namespace orvane::host {

namespace {

TEST(ReductionFactor, KeepsTheImageAtLeastAsLargeAsThePlaceForIt) {
  const FrameLayout mono{1936, 1096, PixelFormat::Raw8, BayerPattern::None};
  EXPECT_EQ(reductionFactor(mono, 1936, 1096), 1);
  EXPECT_EQ(reductionFactor(mono, 4000, 3000), 1);
  EXPECT_EQ(reductionFactor(mono, 969, 549), 1);
  EXPECT_EQ(reductionFactor(mono, 968, 548), 2);
  EXPECT_EQ(reductionFactor(mono, 600, 340), 3);
}

TEST(ReductionFactor, IsEvenForBayerPatterns) {
  const FrameLayout bayer{1936, 1096, PixelFormat::Raw8, BayerPattern::Rggb};
  EXPECT_EQ(reductionFactor(bayer, 1936, 1096), 2);
  EXPECT_EQ(reductionFactor(bayer, 600, 340), 2);
  EXPECT_EQ(reductionFactor(bayer, 480, 270), 4);
}

TEST(ReductionFactor, HasAnAnswerForAPlaceWithoutRoom) {
  EXPECT_EQ(reductionFactor({10000, 10000, PixelFormat::Raw16, BayerPattern::None}, 0, 0), 256);
}

TEST(ReduceFrame, MonoPixelsAreMeans) {
  const std::vector<std::uint8_t> frame = {
      10, 20, 30, 40,  //
      30, 40, 50, 61,  //
      9,  9,  9,  9,
  };
  Image reduced;
  reduceFrame(frame, {4, 3, PixelFormat::Mono8, BayerPattern::None}, 2, reduced);
  EXPECT_EQ(reduced.width, 2);
  EXPECT_EQ(reduced.height, 1);  // the last row does not fill a square
  EXPECT_EQ(reduced.channels, 1);
  EXPECT_EQ(reduced.samples, (std::vector<std::uint16_t>{25 * 257, 11629}));  // 45.25 * 257
}

TEST(ReduceFrame, WithFactorOneNothingChanges) {
  const std::vector<std::uint8_t> frame = {0x34, 0x12, 0xFF, 0xFF};
  Image reduced{7, 7, 3, std::vector<std::uint16_t>(147, 9)};  // an earlier image does not matter
  reduceFrame(frame, {2, 1, PixelFormat::Raw16, BayerPattern::None}, 1, reduced);
  EXPECT_EQ(reduced.width, 2);
  EXPECT_EQ(reduced.samples, (std::vector<std::uint16_t>{0x1234, 0xFFFF}));
}

TEST(ReduceFrame, RgbChannelsStayApart) {
  const std::vector<std::uint8_t> frame = {1, 10, 100, 3, 30, 102,  //
                                           5, 50, 104, 7, 70, 106};
  Image reduced;
  reduceFrame(frame, {2, 2, PixelFormat::Rgb24, BayerPattern::None}, 2, reduced);
  EXPECT_EQ(reduced.channels, 3);
  EXPECT_EQ(reduced.samples, (std::vector<std::uint16_t>{4 * 257, 40 * 257, 103 * 257}));
}

class EveryBayerPatternReduced : public ::testing::TestWithParam<BayerPattern> {};

// Where a Bayer pattern has its colours, written as its name reads.
char colourAt(BayerPattern bayer, int x, int y) {
  return bayerName(bayer)[static_cast<std::size_t>(2 * (y % 2) + x % 2)];
}

TEST_P(EveryBayerPatternReduced, EachColourIsTheMeanOfItsPixels) {
  const FrameLayout layout{8, 4, PixelFormat::Raw16, GetParam()};
  std::vector<std::uint8_t> frame;
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 8; ++x) {
      // Red 1000, green 2000, blue 3000; in the right half 40000 more.
      const char colour = colourAt(GetParam(), x, y);
      const int base = colour == 'R' ? 1000 : colour == 'G' ? 2000 : 3000;
      const int sample = base + (x >= 4 ? 40000 : 0);
      frame.push_back(static_cast<std::uint8_t>(sample % 256));
      frame.push_back(static_cast<std::uint8_t>(sample / 256));
    }
  }
  Image reduced;
  for (const int factor : {2, 4}) {
    reduceFrame(frame, layout, factor, reduced);
    ASSERT_EQ(reduced.width, 8 / factor);
    ASSERT_EQ(reduced.height, 4 / factor);
    ASSERT_EQ(reduced.channels, 3);
    for (std::size_t pixel = 0; pixel < reduced.samples.size() / 3; ++pixel) {
      const bool isRight = static_cast<int>(pixel) % reduced.width >= reduced.width / 2;
      const int more = isRight ? 40000 : 0;
      EXPECT_EQ(reduced.samples[3 * pixel], 1000 + more);
      EXPECT_EQ(reduced.samples[3 * pixel + 1], 2000 + more);
      EXPECT_EQ(reduced.samples[3 * pixel + 2], 3000 + more);
    }
  }
}

TEST_P(EveryBayerPatternReduced, APartLooksAsInTheWholeFrame) {
  const FrameLayout layout{12, 10, PixelFormat::Raw8, GetParam()};
  std::vector<std::uint8_t> frame(120);
  for (std::size_t index = 0; index < frame.size(); ++index) {
    frame[index] = static_cast<std::uint8_t>(index * 37 % 251);
  }
  const Image whole = debayer(imageFromFrame(frame, layout), GetParam());
  Image part;
  const PixelRect where = cutFrame(frame, layout, {3, 5, 6, 4}, part);
  EXPECT_EQ(where, (PixelRect{2, 4, 6, 4}));  // where the Bayer pattern begins anew
  ASSERT_EQ(part.samples.size(), 6U * 4 * 3);
  // Pixels at the border see a mirror in place of their neighbours.
  for (int y = 1; y < 3; ++y) {
    for (int x = 1; x < 5; ++x) {
      for (int channel = 0; channel < 3; ++channel) {
        const int inPart = (y * 6 + x) * 3 + channel;
        const int inWhole = ((y + 4) * 12 + x + 2) * 3 + channel;
        EXPECT_EQ(part.samples.begin()[inPart], whole.samples.begin()[inWhole]) << x << ", " << y;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(ReduceFrame, EveryBayerPatternReduced,
                         ::testing::Values(BayerPattern::Rggb, BayerPattern::Grbg,
                                           BayerPattern::Gbrg, BayerPattern::Bggr),
                         [](const auto& test) { return bayerName(test.param); });

TEST(CutFrame, IsMovedIntoTheFrame) {
  const FrameLayout layout{4, 2, PixelFormat::Raw8, BayerPattern::None};
  const std::vector<std::uint8_t> frame = {0, 1, 2, 3, 4, 5, 6, 7};
  Image part;
  EXPECT_EQ(cutFrame(frame, layout, {-5, -5, 2, 1}, part), (PixelRect{0, 0, 2, 1}));
  EXPECT_EQ(part.samples, (std::vector<std::uint16_t>{0, 257}));
  EXPECT_EQ(cutFrame(frame, layout, {90, 90, 2, 1}, part), (PixelRect{2, 1, 2, 1}));
  EXPECT_EQ(part.samples, (std::vector<std::uint16_t>{6 * 257, 7 * 257}));
  EXPECT_EQ(cutFrame(frame, layout, {1, 1, 90, 90}, part), (PixelRect{0, 0, 4, 2}));
}

TEST(CutFrame, KeepsTheBytesOfAPixelTogether) {
  Image part;
  const std::vector<std::uint8_t> rgb = {1, 2, 3, 4, 5, 6};
  cutFrame(rgb, {2, 1, PixelFormat::Rgb24, BayerPattern::None}, {1, 0, 1, 1}, part);
  EXPECT_EQ(part.samples, (std::vector<std::uint16_t>{4 * 257, 5 * 257, 6 * 257}));
  const std::vector<std::uint8_t> words = {1, 2, 3, 4};
  cutFrame(words, {2, 1, PixelFormat::Raw16, BayerPattern::None}, {1, 0, 1, 1}, part);
  EXPECT_EQ(part.samples, (std::vector<std::uint16_t>{0x0403}));
}

}  // namespace

}  // namespace orvane::host
