// The history of a watch, in bounded memory.
#include "oc_capture/watch_history.hpp"

#include <gtest/gtest.h>

namespace orvane::host {

namespace {

WatchPoint pointNumber(int number) {
  return {static_cast<double>(number),
          number / 1000.0,
          {static_cast<double>(number), 1000 - number, 1000 + number, number % 7}};
}

TEST(WatchHistory, KeepsAFewPointsAsTheyAre) {
  WatchHistory history;
  for (int number = 0; number < 3; ++number) {
    history.add(pointNumber(number));
  }
  ASSERT_EQ(history.points().size(), 3U);
  EXPECT_DOUBLE_EQ(history.points()[2].seconds, 2);
  EXPECT_DOUBLE_EQ(history.points()[2].statistics.mean, 2);
}

TEST(WatchHistory, JoinsNeighboursWhenThereAreTooMany) {
  constexpr int most = static_cast<int>(WatchHistory::mostPoints);
  WatchHistory history;
  for (int number = 0; number < most; ++number) {
    history.add(pointNumber(number));
  }
  ASSERT_EQ(history.points().size(), WatchHistory::mostPoints / 2);
  const WatchPoint& second = history.points()[1];  // of the points 2 and 3
  EXPECT_DOUBLE_EQ(second.seconds, 3);
  EXPECT_DOUBLE_EQ(second.temperature.value_or(0), 0.003);
  EXPECT_DOUBLE_EQ(second.statistics.mean, 2.5);
  EXPECT_EQ(second.statistics.smallest, 997);
  EXPECT_EQ(second.statistics.largest, 1003);
  EXPECT_EQ(second.statistics.saturated, 3);

  // From now on two frames make a point.
  history.add(pointNumber(most));
  EXPECT_EQ(history.points().size(), WatchHistory::mostPoints / 2);
  history.add(pointNumber(most + 1));
  EXPECT_EQ(history.points().size(), WatchHistory::mostPoints / 2 + 1);
  EXPECT_DOUBLE_EQ(history.points().back().statistics.mean, most + 0.5);
}

TEST(WatchHistory, NeverGrowsBeyondItsBound) {
  WatchHistory history;
  for (int number = 0; number < 100000; ++number) {
    history.add(pointNumber(number));
    ASSERT_LT(history.points().size(), WatchHistory::mostPoints);
  }
  EXPECT_DOUBLE_EQ(history.points().front().statistics.mean, 7.5);  // of 16 frames
}

}  // namespace

}  // namespace orvane::host
