// The timing of a recording from its time stamps.
#include "session/frame_timing.hpp"

#include <gtest/gtest.h>

#include <cstdint>

namespace orvane::host {

namespace {

// Time stamps from milliseconds.
std::vector<std::int64_t> ticks(const std::vector<std::int64_t>& milliseconds) {
  std::vector<std::int64_t> stamps = milliseconds;
  for (std::int64_t& stamp : stamps) {
    stamp = 638448448000000000 + stamp * 10000;
  }
  return stamps;
}

TEST(FrameStamps, GoOnByTheSteadyClockWhenTheOtherIsSet) {
  using std::chrono::hours;
  using std::chrono::milliseconds;
  const std::chrono::steady_clock::time_point steady(hours(5));
  const std::chrono::sys_days night(std::chrono::days(20000));
  FrameStamps stamps;
  EXPECT_EQ(stamps.add(steady, night), night);
  EXPECT_EQ(stamps.add(steady + milliseconds(10), night - hours(1)), night + milliseconds(10));
  EXPECT_EQ(stamps.add(steady + milliseconds(25), night + hours(2)), night + milliseconds(25));
}

TEST(FrameTiming, OfASteadyRecording) {
  const FrameTiming timing = frameTiming(ticks({0, 10, 21, 30, 40})).value();
  EXPECT_DOUBLE_EQ(timing.seconds, 0.04);
  EXPECT_DOUBLE_EQ(timing.framesPerSecond, 100);
  EXPECT_DOUBLE_EQ(timing.medianInterval, 0.01);
  EXPECT_EQ(timing.gaps, 0);
  EXPECT_EQ(timing.missedFrames, 0);
  EXPECT_EQ(timing.stepsBack, 0);
}

TEST(FrameTiming, FindsGaps) {
  // Intervals of 10, 10, 31, 10, 15, 16, 10.
  const FrameTiming timing = frameTiming(ticks({0, 10, 20, 51, 61, 76, 92, 102})).value();
  EXPECT_EQ(timing.gaps, 1);
  EXPECT_EQ(timing.missedFrames, 2);
  EXPECT_DOUBLE_EQ(timing.longestGap, 0.031);
  EXPECT_EQ(timing.longestGapAfter, 2);
}

TEST(FrameTiming, CountsStepsBack) {
  const FrameTiming timing = frameTiming(ticks({0, 10, 5, 15, 12, 40})).value();
  EXPECT_EQ(timing.stepsBack, 2);
}

TEST(FrameTiming, HasNoGapsWhereTheClockStandsStill) {
  const FrameTiming timing = frameTiming(ticks({0, 0, 0, 0, 100})).value();
  EXPECT_EQ(timing.gaps, 0);
}

TEST(FrameTiming, OfStampsThatMakeNoSense) {
  EXPECT_FALSE(frameTiming({}));
  EXPECT_FALSE(frameTiming(ticks({5})));
  EXPECT_FALSE(frameTiming(ticks({5, 5})));
  EXPECT_FALSE(frameTiming(ticks({5, 4})));
  EXPECT_FALSE(frameTiming({0, 10}));
  EXPECT_FALSE(frameTiming({INT64_MIN, INT64_MAX}));
  EXPECT_FALSE(frameTiming({1, INT64_MAX}));
  EXPECT_FALSE(frameTiming({1, -1, 2}));
}

TEST(Quantile, IsTheValueThatAPartDoesNotExceed) {
  EXPECT_DOUBLE_EQ(quantile({}, 0.5), 0);
  EXPECT_DOUBLE_EQ(quantile({7}, 0.01), 7);
  EXPECT_DOUBLE_EQ(quantile({1, 2, 3, 4}, 0), 1);
  EXPECT_DOUBLE_EQ(quantile({1, 2, 3, 4}, 0.5), 2);
  EXPECT_DOUBLE_EQ(quantile({1, 2, 3, 4}, 0.51), 3);
  EXPECT_DOUBLE_EQ(quantile({1, 2, 3, 4}, 1), 4);
}

}  // namespace

}  // namespace orvane::host
