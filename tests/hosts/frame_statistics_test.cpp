// What the samples of a frame are like.
#include "imaging/frame_statistics.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace orvane::host {

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes wide(const std::vector<int>& samples) {
  Bytes bytes;
  for (const int sample : samples) {
    bytes.push_back(static_cast<std::uint8_t>(sample & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(sample >> 8));
  }
  return bytes;
}

FrameLayout row(int width, PixelFormat format) {
  return {width, 1, format, Mosaic::None};
}

TEST(FrameStatistics, OfEightBits) {
  const auto statistics = frameStatistics(Bytes{3, 255, 255, 7}, row(4, PixelFormat::Raw8), 12);
  EXPECT_DOUBLE_EQ(statistics.mean, 130);
  EXPECT_EQ(statistics.smallest, 3);
  EXPECT_EQ(statistics.largest, 255);
  EXPECT_EQ(statistics.saturated, 2);
  EXPECT_EQ(frameStatistics(Bytes{254}, row(1, PixelFormat::Mono8), 12).saturated, 0);
}

TEST(FrameStatistics, CountsPixelsOfRgbOnce) {
  const auto statistics =
      frameStatistics(Bytes{255, 255, 0, 1, 2, 255, 9, 9, 9}, row(3, PixelFormat::Rgb24), 8);
  EXPECT_EQ(statistics.saturated, 2);
  EXPECT_EQ(statistics.smallest, 0);
}

TEST(FrameStatistics, OfSixteenBitsShiftedUp) {
  const auto statistics =
      frameStatistics(wide({0xfff0, 0xffe0, 16, 0}), row(4, PixelFormat::Raw16), 12);
  EXPECT_DOUBLE_EQ(statistics.mean, (0xfff0 + 0xffe0 + 16) / 4.0);
  EXPECT_EQ(statistics.largest, 0xfff0);
  EXPECT_EQ(statistics.saturated, 1);
}

TEST(FrameStatistics, OfSixteenBitsAtTheLowEnd) {
  EXPECT_EQ(frameStatistics(wide({4095, 4094, 4095}), row(3, PixelFormat::Raw16), 12).saturated, 2);
  EXPECT_EQ(frameStatistics(wide({4094}), row(1, PixelFormat::Raw16), 12).saturated, 0);
  EXPECT_EQ(frameStatistics(wide({65535, 65534}), row(2, PixelFormat::Raw16), 16).saturated, 1);
  // A depth that makes no sense is brought to one that does.
  EXPECT_EQ(frameStatistics(wide({65535}), row(1, PixelFormat::Raw16), 99).saturated, 1);
}

TEST(FrameStatistics, OfNothing) {
  EXPECT_EQ(frameStatistics({}, row(0, PixelFormat::Raw8), 8).saturated, 0);
}

}  // namespace

}  // namespace orvane::host
