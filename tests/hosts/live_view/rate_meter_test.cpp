// How many frames come a second.
#include "live_view/rate_meter.hpp"

#include <gtest/gtest.h>

namespace orvane::host {

namespace {

using std::chrono::milliseconds;

const RateMeter::Clock::time_point start{std::chrono::hours(1)};

RateMeter meterOf(int frames, milliseconds interval) {
  RateMeter meter;
  for (int frame = 0; frame < frames; ++frame) {
    meter.add(start + frame * interval);
  }
  return meter;
}

TEST(RateMeter, NeedsTwoFrames) {
  EXPECT_EQ(RateMeter().perSecond(start), 0);
  EXPECT_EQ(meterOf(1, milliseconds(10)).perSecond(start), 0);
  EXPECT_NEAR(meterOf(2, milliseconds(10)).perSecond(start + milliseconds(10)), 100, 1e-6);
}

TEST(RateMeter, IsTheRateOfTheLastTwoSeconds) {
  RateMeter meter = meterOf(100, milliseconds(10));
  for (int frame = 0; frame < 70; ++frame) {
    meter.add(start + milliseconds(1000 + 40 * frame));
  }
  EXPECT_NEAR(meter.perSecond(start + milliseconds(3760)), 25, 0.1);
}

TEST(RateMeter, FarApartTwoFramesAreEnough) {
  EXPECT_NEAR(meterOf(3, milliseconds(10000)).perSecond(start + milliseconds(20000)), 0.1, 1e-6);
}

TEST(RateMeter, FallsWhenNoFrameComes) {
  const RateMeter meter = meterOf(50, milliseconds(20));
  EXPECT_NEAR(meter.perSecond(start + milliseconds(980)), 50, 1e-6);
  EXPECT_NEAR(meter.perSecond(start + milliseconds(990)), 50, 1e-6);  // the next is not due yet
  EXPECT_NEAR(meter.perSecond(start + milliseconds(980 + 500)), 2, 1e-6);
  EXPECT_NEAR(meter.perSecond(start + milliseconds(980 + 10000)), 0.1, 1e-6);
}

TEST(RateMeter, FramesAtTheSameMomentDoNotDivideByNothing) {
  EXPECT_LE(meterOf(5, milliseconds(0)).perSecond(start), 1e6);
}

TEST(RateMeter, StartsAnewWhenCleared) {
  RateMeter meter = meterOf(5, milliseconds(10));
  meter.clear();
  EXPECT_EQ(meter.perSecond(start + milliseconds(40)), 0);
}

}  // namespace

}  // namespace orvane::host
