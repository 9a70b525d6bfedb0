// The size of a frame in bytes.
#include <gtest/gtest.h>

#include <limits>

#include "capture/active_camera.hpp"

using orvane::bytesPerPixel;
using orvane::frameBytes;

TEST(BytesPerPixel, Raw16HasTwoRgb24ThreeEveryOtherCodeOne) {
  EXPECT_EQ(bytesPerPixel(0), 1);
  EXPECT_EQ(bytesPerPixel(1), 2);
  EXPECT_EQ(bytesPerPixel(2), 3);
  EXPECT_EQ(bytesPerPixel(3), 1);
  EXPECT_EQ(bytesPerPixel(4), 1);
  EXPECT_EQ(bytesPerPixel(-1), 1);
  EXPECT_EQ(bytesPerPixel(std::numeric_limits<int>::min()), 1);
}

TEST(FrameBytes, ProductHas64Bits) {
  EXPECT_EQ(frameBytes(1936, 1096, 1), 1936LL * 1096 * 2);
  EXPECT_EQ(frameBytes(32768, 32768, 0), 1LL << 30);
  EXPECT_EQ(frameBytes(2147483647, 1, 2), 3LL * 2147483647);
  EXPECT_EQ(frameBytes(2147483647, 2147483647, 0), 2147483647LL * 2147483647LL);
}

TEST(FrameBytes, NegativeAndOverflowingSizesAreDefined) {
  constexpr int least = std::numeric_limits<int>::min();
  EXPECT_EQ(frameBytes(-4, 5, 0), -20);
  EXPECT_LT(frameBytes(least, least, 1), 1);
  EXPECT_LT(frameBytes(least, least, 2), 1);
}
