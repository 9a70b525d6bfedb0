// Round numbers for the axes of charts.
#include "imaging/canvas.hpp"

#include <gtest/gtest.h>

namespace orvane::host {

namespace {

std::string labels(const Axis& axis) {
  std::string text;
  for (const double tick : axis.ticks()) {
    text += axis.label(tick) + " ";
  }
  return text;
}

TEST(Axis, HasRoundNumbersAroundItsValues) {
  EXPECT_EQ(labels(axisFor(0, 187, 5)), "0 50 100 150 200 ");
  EXPECT_EQ(labels(axisFor(0, 200, 5)), "0 50 100 150 200 ");
  EXPECT_EQ(labels(axisFor(0, 1, 5)), "0.0 0.2 0.4 0.6 0.8 1.0 ");
  EXPECT_EQ(labels(axisFor(-10.3, -9.9, 4)), "-10.3 -10.2 -10.1 -10.0 -9.9 ");
  EXPECT_EQ(labels(axisFor(-1, 1, 2)), "-1 0 1 ");
  EXPECT_EQ(labels(axisFor(0, 0.004, 4)), "0.000 0.001 0.002 0.003 0.004 ");
  EXPECT_EQ(labels(axisFor(3e6, 7e6, 2)), "2000000 4000000 6000000 8000000 ");
}

TEST(Axis, GivesEqualValuesSomeRoom) {
  const Axis zero = axisFor(0, 0, 4);
  EXPECT_LT(zero.low, 0);
  EXPECT_GT(zero.high, 0);
  const Axis large = axisFor(1000, 1000, 4);
  EXPECT_LT(large.low, 1000);
  EXPECT_GT(large.high, 1000);
}

TEST(Axis, SaysWhereAValueLies) {
  const Axis axis = axisFor(10, 20, 5);
  EXPECT_DOUBLE_EQ(axis.part(10), 0);
  EXPECT_DOUBLE_EQ(axis.part(12.5), 0.25);
  EXPECT_DOUBLE_EQ(axis.part(20), 1);
  EXPECT_DOUBLE_EQ(axis.part(-1e9), 0);
  EXPECT_DOUBLE_EQ(axis.part(1e9), 1);
}

}  // namespace

}  // namespace orvane::host
