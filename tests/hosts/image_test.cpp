// Images from frames, and smaller images from large ones.
#include "imaging/image.hpp"

#include <gtest/gtest.h>

namespace orvane::host {

namespace {

using Bytes = std::vector<std::uint8_t>;
using Samples = std::vector<std::uint16_t>;

TEST(ImageFromFrame, SpreadsEightBitsOverSixteen) {
  for (const PixelFormat format : {PixelFormat::Raw8, PixelFormat::Mono8}) {
    const Image image = imageFromFrame(Bytes{0, 1, 128, 255}, {2, 2, format, BayerPattern::None});
    EXPECT_EQ(image.width, 2);
    EXPECT_EQ(image.height, 2);
    EXPECT_EQ(image.channels, 1);
    EXPECT_EQ(image.samples, (Samples{0, 257, 128 * 257, 65535}));
  }
}

TEST(ImageFromFrame, ReadsSixteenBitsFromTheLowByteOn) {
  const Image image =
      imageFromFrame(Bytes{0x34, 0x12, 0xff, 0xff}, {2, 1, PixelFormat::Raw16, BayerPattern::Rggb});
  EXPECT_EQ(image.channels, 1);
  EXPECT_EQ(image.samples, (Samples{0x1234, 0xffff}));
}

TEST(ImageFromFrame, KeepsRedGreenAndBlueTogether) {
  const Image image =
      imageFromFrame(Bytes{1, 2, 3, 4, 5, 6}, {1, 2, PixelFormat::Rgb24, BayerPattern::None});
  EXPECT_EQ(image.channels, 3);
  EXPECT_EQ(image.samples, (Samples{257, 514, 771, 1028, 1285, 1542}));
}

TEST(Shrink, LeavesASmallImageAlone) {
  const Image image = shrink({3, 1, 1, {1, 2, 3}}, 3);
  EXPECT_EQ(image.width, 3);
  EXPECT_EQ(image.samples, (Samples{1, 2, 3}));
}

TEST(Shrink, TakesTheMeanOfSquares) {
  const Image image = shrink({4, 2, 1, {10, 20, 1, 2, 30, 40, 3, 4}}, 2);
  EXPECT_EQ(image.width, 2);
  EXPECT_EQ(image.height, 1);
  EXPECT_EQ(image.samples, (Samples{25, 2}));
}

TEST(Shrink, LeavesOutWhatDoesNotFillASquare) {
  const Image image = shrink({5, 3, 1, {4, 4, 8, 8, 9, 4, 4, 8, 8, 9, 9, 9, 9, 9, 9}}, 3);
  EXPECT_EQ(image.width, 2);
  EXPECT_EQ(image.height, 1);
  EXPECT_EQ(image.samples, (Samples{4, 8}));
}

TEST(Shrink, KeepsTheChannelsApart) {
  const Image image = shrink({2, 2, 3, {1, 100, 7, 3, 200, 7, 1, 100, 7, 3, 200, 7}}, 1);
  EXPECT_EQ(image.channels, 3);
  EXPECT_EQ(image.samples, (Samples{2, 150, 7}));
}

TEST(Shrink, LeavesAPixelOfANarrowImage) {
  const Image image = shrink({6, 1, 1, {1, 3, 5, 7, 9, 11}}, 2);
  EXPECT_EQ(image.width, 2);
  EXPECT_EQ(image.height, 1);
  EXPECT_EQ(image.samples, (Samples{3, 9}));
}

}  // namespace

}  // namespace orvane::host
