// Images from frames, smaller images from large ones, and debayering against values worked out by
// hand.
#include "imaging/image.hpp"

#include <gtest/gtest.h>

#include <array>
#include <utility>
#include <vector>

namespace orvane::host {

namespace {

using Bytes = std::vector<std::uint8_t>;
using Samples = std::vector<std::uint16_t>;

void expectImage(const Image& image, int width, int height, int channels, const Samples& samples) {
  EXPECT_EQ(image.width, width);
  EXPECT_EQ(image.height, height);
  EXPECT_EQ(image.channels, channels);
  EXPECT_EQ(image.samples, samples);
}

TEST(ImageFromFrame, SpreadsEightBitsOverSixteen) {
  for (const PixelFormat format : {PixelFormat::Raw8, PixelFormat::Mono8}) {
    expectImage(imageFromFrame(Bytes{0, 1, 128, 255}, {2, 2, format, BayerPattern::None}), 2, 2, 1,
                {0, 257, 128 * 257, 65535});
  }
}

TEST(ImageFromFrame, ReadsSixteenBitsWithTheLowByteFirst) {
  const FrameLayout layout{2, 1, PixelFormat::Raw16, BayerPattern::Rggb};
  expectImage(imageFromFrame(Bytes{0x34, 0x12, 0xff, 0xff}, layout), 2, 1, 1, {0x1234, 0xffff});
}

TEST(ImageFromFrame, KeepsRedGreenAndBlueTogether) {
  const FrameLayout layout{1, 2, PixelFormat::Rgb24, BayerPattern::None};
  expectImage(imageFromFrame(Bytes{1, 2, 3, 4, 5, 6}, layout), 1, 2, 3,
              {257, 514, 771, 1028, 1285, 1542});
}

TEST(Shrink, LeavesASmallImageAlone) {
  expectImage(shrink({3, 1, 1, {1, 2, 3}}, 3), 3, 1, 1, {1, 2, 3});
}

TEST(Shrink, TakesTheMeanOfSquares) {
  expectImage(shrink({4, 2, 1, {10, 20, 1, 2, 30, 40, 3, 4}}, 2), 2, 1, 1, {25, 2});
}

TEST(Shrink, LeavesOutWhatDoesNotFillASquare) {
  const Image image{5, 3, 1, {4, 4, 8, 8, 9, 4, 4, 8, 8, 9, 9, 9, 9, 9, 9}};
  expectImage(shrink(image, 3), 2, 1, 1, {4, 8});
}

TEST(Shrink, KeepsTheChannelsApart) {
  const Image image{2, 2, 3, {1, 100, 7, 3, 200, 7, 1, 100, 7, 3, 200, 7}};
  expectImage(shrink(image, 1), 1, 1, 3, {2, 150, 7});
}

TEST(Shrink, LeavesAPixelOfANarrowImage) {
  expectImage(shrink({6, 1, 1, {1, 3, 5, 7, 9, 11}}, 2), 2, 1, 1, {3, 9});
}

using Rgb = std::array<int, 3>;

Rgb pixelAt(const Image& image, int x, int y) {
  const std::size_t at = static_cast<std::size_t>(y * image.width + x) * 3;
  return {image.samples[at], image.samples[at + 1], image.samples[at + 2]};
}

class EveryBayerPattern : public ::testing::TestWithParam<BayerPattern> {};

// A colour that a pixel lacks is the mean of those of its eight neighbours that have it. Beyond the
// border, the image is mirrored on the border's pixels. The name of a Bayer pattern lists the
// colours of its first row, then those of its second row.
class NeighbourMeans {
 public:
  NeighbourMeans(const Image& bayer, const char* colours) : bayer_(bayer), colours_(colours) {}

  int at(int x, int y, char wanted) const {
    if (colour(x, y) == wanted) {
      return sample(x, y);
    }
    int sum = 0;
    int count = 0;
    for (int dy = -1; dy <= 1; ++dy) {
      for (int dx = -1; dx <= 1; ++dx) {
        const int column = mirrored(x + dx, bayer_.width);
        const int row = mirrored(y + dy, bayer_.height);
        if (colour(column, row) == wanted) {
          sum += sample(column, row);
          ++count;
        }
      }
    }
    return count == 0 ? -1 : (2 * sum + count) / (2 * count);
  }

 private:
  static int mirrored(int at, int size) { return at < 0 ? 1 : at == size ? size - 2 : at; }
  char colour(int x, int y) const { return colours_[2 * (y % 2) + x % 2]; }
  int sample(int x, int y) const { return bayer_.samples.begin()[y * bayer_.width + x]; }

  const Image& bayer_;
  const char* colours_;
};

TEST_P(EveryBayerPattern, EveryPixelHasTheMeansOfItsNeighboursAlsoAtTheBorder) {
  for (const PixelFormat format : {PixelFormat::Raw8, PixelFormat::Raw16}) {
    for (const auto& [width, height] : {std::pair(7, 5), std::pair(6, 4), std::pair(2, 2)}) {
      const FrameLayout layout{width, height, format, GetParam()};
      std::vector<std::uint8_t> frame(frameBytes(layout));
      std::uint32_t noise = 12345;
      for (std::uint8_t& byte : frame) {
        noise = noise * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(noise >> 24U);
      }
      const Image bayer = imageFromFrame(frame, layout);
      const Image image = debayer(bayer, GetParam());
      ASSERT_EQ(image.width, width);
      ASSERT_EQ(image.samples.size(), bayer.samples.size() * 3);
      const NeighbourMeans expected(bayer, bayerName(GetParam()));
      for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
          EXPECT_EQ(pixelAt(image, x, y),
                    (Rgb{expected.at(x, y, 'R'), expected.at(x, y, 'G'), expected.at(x, y, 'B')}))
              << formatName(format) << " " << width << " x " << height << ": " << x << ", " << y;
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Debayer, EveryBayerPattern,
                         ::testing::Values(BayerPattern::Rggb, BayerPattern::Grbg,
                                           BayerPattern::Gbrg, BayerPattern::Bggr),
                         [](const auto& test) { return bayerName(test.param); });

// The results were worked out by hand, from these samples:
//      1000   200  3000   400
//        50    70    90   110
//      5000   600  7000   800
//       130   150   170   190
TEST(Debayer, MeansOfTheNeighboursWithRedAtTheCorner) {
  const Image image = debayer(
      {4, 4, 1, {1000, 200, 3000, 400, 50, 70, 90, 110, 5000, 600, 7000, 800, 130, 150, 170, 190}},
      BayerPattern::Rggb);
  // Blue pixel: green from its four sides, red from its four corners.
  EXPECT_EQ(pixelAt(image, 1, 1), (Rgb{4000, (200 + 50 + 90 + 600 + 2) / 4, 70}));
  // Red pixel.
  EXPECT_EQ(pixelAt(image, 2, 2), (Rgb{7000, (90 + 600 + 800 + 170 + 2) / 4, 130}));
  // Green pixel in a row of blue: red from above and below, blue from the sides.
  EXPECT_EQ(pixelAt(image, 2, 1), (Rgb{5000, 90, 90}));
  // Green pixel in a row of red.
  EXPECT_EQ(pixelAt(image, 1, 2), (Rgb{6000, 600, 110}));
  // Above row 0 is row 1 again, left of column 0 is column 1, and so on.
  EXPECT_EQ(pixelAt(image, 0, 0), (Rgb{1000, (2 * 200 + 2 * 50 + 2) / 4, 70}));
  EXPECT_EQ(pixelAt(image, 3, 3), (Rgb{7000, (2 * 170 + 2 * 800 + 2) / 4, 190}));
  EXPECT_EQ(pixelAt(image, 3, 0), (Rgb{3000, 400, 110}));
}

TEST(Debayer, ImagesTooSmallForABayerPatternStayGrey) {
  EXPECT_EQ(pixelAt(debayer({1, 1, 1, {7}}, BayerPattern::Rggb), 0, 0), (Rgb{7, 7, 7}));
  const Image column = debayer({1, 2, 1, {10, 20}}, BayerPattern::Bggr);
  EXPECT_EQ(pixelAt(column, 0, 0)[2], 10);
  EXPECT_EQ(pixelAt(column, 0, 1)[1], 20);
}

}  // namespace

}  // namespace orvane::host
