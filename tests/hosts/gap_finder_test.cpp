// Gaps, found while the frames arrive.
#include <gtest/gtest.h>

#include <vector>

#include "session/frame_timing.hpp"

namespace orvane::host {

namespace {

// The numbers of the frames before the gaps, as they are found.
std::vector<std::int64_t> gapsAfter(GapFinder& finder, const std::vector<double>& intervals) {
  std::vector<std::int64_t> after;
  for (const double interval : intervals) {
    for (const FrameGap& gap : finder.add(interval)) {
      after.push_back(gap.after);
    }
  }
  return after;
}

using Frames = std::vector<std::int64_t>;

TEST(GapFinder, FindsIntervalsOfMoreThanThreeFrameTimes) {
  GapFinder finder;
  EXPECT_EQ(gapsAfter(finder, {1, 1, 1, 1, 1, 3, 3.5, 1, 10, 1}), (Frames{6, 8}));
  EXPECT_DOUBLE_EQ(finder.frameTime(), 1);
  EXPECT_EQ(finder.count().gaps, 2);
  EXPECT_EQ(finder.count().missedFrames, 3 + 9);
  EXPECT_DOUBLE_EQ(finder.count().longestGap, 10);
  EXPECT_EQ(finder.count().longestGapAfter, 8);
}

TEST(GapFinder, DoesNotJudgeBeforeFiveIntervals) {
  GapFinder finder;
  EXPECT_EQ(gapsAfter(finder, {0.01, 5, 0.01, 0.01}), Frames{});
  EXPECT_EQ(finder.count().gaps, 0);
  EXPECT_DOUBLE_EQ(finder.frameTime(), 0);
  EXPECT_EQ(gapsAfter(finder, {0.01}), Frames{1});
}

TEST(GapFinder, TheExposureIsTheLeastFrameTime) {
  GapFinder finder(2'000'000);  // frames that waited in a queue come at once
  EXPECT_EQ(gapsAfter(finder, {0.1, 0.1, 0.1, 0.1, 0.1, 2, 5.9, 6.1}), Frames{7});
  EXPECT_EQ(finder.count().missedFrames, 2);
}

TEST(GapFinder, FollowsARateThatChanges) {
  GapFinder finder;
  std::vector<double> intervals(500, 1.0);
  intervals.insert(intervals.end(), 500, 2.5);
  intervals.push_back(7);
  EXPECT_EQ(gapsAfter(finder, intervals), Frames{});
  EXPECT_EQ(gapsAfter(finder, {8}), Frames{1001});
}

TEST(GapFinder, JudgesNothingWhereTheClockStandsStill) {
  GapFinder finder;
  EXPECT_EQ(gapsAfter(finder, {0, 0, 0, 0, 0, 0, 100}), Frames{});
}

TEST(FrameTimingGaps, ThreeFramesHaveNone) {
  constexpr std::int64_t start = 638448448000000000;
  const auto timing = frameTiming({start, start + 10000, start + 60000000});
  ASSERT_TRUE(timing);
  EXPECT_EQ(timing->gaps, 0);
}

}  // namespace

}  // namespace orvane::host
