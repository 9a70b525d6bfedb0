// The picture beside a recording.
#include "imaging/stretch.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace orvane::host {

namespace {

// A dark frame with a red square in its middle, as a sensor behind a Bayer pattern sees it.
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
