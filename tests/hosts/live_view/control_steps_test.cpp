// Steps of exposure and gain.
#include "live_view/control_steps.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace orvane::host {

namespace {

TEST(SteppedExposure, TenStepsMakeAFactorOfTen) {
  std::int64_t exposure = 1000;
  std::vector<std::int64_t> steps;
  for (int step = 0; step < 10; ++step) {
    exposure = steppedExposure(exposure, 1, longestExposureUs);
    steps.push_back(exposure);
  }
  EXPECT_EQ(steps, (std::vector<std::int64_t>{1250, 1600, 2000, 2500, 3200, 4000, 5000, 6400, 8000,
                                              10000}));
  EXPECT_EQ(steppedExposure(1000, 10, longestExposureUs), 10000);
  EXPECT_EQ(steppedExposure(10000, -10, longestExposureUs), 1000);
}

TEST(SteppedExposure, BackAndForthEndsWhereItBegan) {
  for (std::int64_t exposure = 10; exposure < 1000000000;
       exposure = steppedExposure(exposure, 1, longestExposureUs)) {
    EXPECT_EQ(
        steppedExposure(steppedExposure(exposure, 1, longestExposureUs), -1, longestExposureUs),
        exposure);
  }
}

TEST(SteppedExposure, BetweenTwoStepsTheNearerOneIsNext) {
  EXPECT_EQ(steppedExposure(1100, 1, longestExposureUs), 1250);
  EXPECT_EQ(steppedExposure(1100, -1, longestExposureUs), 1000);
}

TEST(SteppedExposure, StaysBetweenTheShortestAndTheLongest) {
  EXPECT_EQ(steppedExposure(1, -1, longestExposureUs), 1);
  EXPECT_EQ(steppedExposure(3, -10, longestExposureUs), 1);
  EXPECT_EQ(steppedExposure(1, 1, longestExposureUs), 2);  // no two steps are the same
  EXPECT_EQ(steppedExposure(9000, 3, 11000), 11000);
  EXPECT_EQ(steppedExposure(2000000000, 10, longestExposureUs), 2000000000);
}

TEST(ExposureSlider, EndsAreTheShortestAndTheLongest) {
  EXPECT_EQ(exposurePlace(10, 60000000), 0);
  EXPECT_EQ(exposurePlace(1, 60000000), 0);
  EXPECT_EQ(exposurePlace(60000000, 60000000), 1);
  EXPECT_EQ(exposureAtPlace(0, 60000000), 10);
  EXPECT_EQ(exposureAtPlace(-3, 60000000), 10);
  EXPECT_EQ(exposureAtPlace(1, 59000000), 59000000);
}

TEST(ExposureSlider, PlacesAndStepsFitEachOther) {
  for (const std::int64_t exposure : {10, 500, 20000, 64000, 1250000, 50000000}) {
    EXPECT_EQ(exposureAtPlace(exposurePlace(exposure, 2000000000), 2000000000), exposure);
  }
  EXPECT_NEAR(exposurePlace(10000, 10000000), 0.5, 1e-9);
}

TEST(ExposureSlider, ACameraWithTheShortestExposureOnlyHasOne) {
  EXPECT_EQ(exposurePlace(5, 5), 0);
  EXPECT_EQ(exposureAtPlace(0.5, 5), 5);
}

TEST(NumberRange, StepsArePartsOfTheRange) {
  EXPECT_EQ((NumberRange{0, 600}).step(false), 6);
  EXPECT_EQ((NumberRange{0, 600}).step(true), 60);
  EXPECT_EQ((NumberRange{0, 50}).step(false), 1);
  EXPECT_EQ((NumberRange{5, 5}).step(true), 1);
  EXPECT_EQ((NumberRange{-2147483647 - 1, 2147483647}).step(false), 42949672);
}

TEST(NumberRange, NumbersAndPlacesFitEachOther) {
  const NumberRange range{100, 500};
  EXPECT_EQ(range.clamped(99), 100);
  EXPECT_EQ(range.clamped(5000000000), 500);
  EXPECT_EQ(range.place(100), 0);
  EXPECT_EQ(range.place(300), 0.5);
  EXPECT_EQ(range.place(9999), 1);
  EXPECT_EQ(range.atPlace(0.25), 200);
  EXPECT_EQ(range.atPlace(7), 500);
  EXPECT_EQ((NumberRange{3, 3}).place(3), 0);
  EXPECT_EQ((NumberRange{3, 3}).atPlace(0.7), 3);
}

}  // namespace

}  // namespace orvane::host
