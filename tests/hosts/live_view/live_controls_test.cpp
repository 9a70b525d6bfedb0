// Exposure, gain and offset as keys and sliders change them, and their steps.
#include "live_view/live_controls.hpp"

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

oc::CameraInfo camera() {
  oc::CameraInfo description;
  description.minGain = 0;
  description.maxGain = 400;
  description.maxExposureUs = 2000000;
  return description;
}

constexpr Controls current{20000, 100, 10};

Controls after(ViewCommand command) {
  return controlsAfter(command, current, camera()).value_or(Controls{});
}

TEST(ControlsAfter, ACommandChangesOneOfThem) {
  EXPECT_EQ(after(ViewCommand::LongerExposure).exposureUs, 25000);
  EXPECT_EQ(after(ViewCommand::ShorterExposure).exposureUs, 16000);
  EXPECT_EQ(after(ViewCommand::MuchLongerExposure).exposureUs, 200000);
  EXPECT_EQ(after(ViewCommand::MuchShorterExposure).exposureUs, 2000);
  EXPECT_EQ(after(ViewCommand::MoreGain).gain, 104);
  EXPECT_EQ(after(ViewCommand::LessGain).gain, 96);
  EXPECT_EQ(after(ViewCommand::MuchMoreGain).gain, 140);
  EXPECT_EQ(after(ViewCommand::MuchLessGain).gain, 60);
  EXPECT_EQ(after(ViewCommand::MoreOffset).offset, 11);
  EXPECT_EQ(after(ViewCommand::LessOffset).offset, 9);
  const Controls moreGain = after(ViewCommand::MoreGain);
  EXPECT_EQ(moreGain.exposureUs, current.exposureUs);
  EXPECT_EQ(moreGain.offset, current.offset);
}

TEST(ControlsAfter, OtherCommandsAreNoneOfTheirs) {
  EXPECT_FALSE(controlsAfter(ViewCommand::ToggleRecording, current, camera()));
  EXPECT_FALSE(controlsAfter(ViewCommand::None, current, camera()));
}

TEST(ControlsAfter, StayWithinWhatTheCameraCanDo) {
  const Controls most{1900000, 399, 0};
  EXPECT_EQ(controlsAfter(ViewCommand::MuchLongerExposure, most, camera())->exposureUs, 2000000);
  EXPECT_EQ(controlsAfter(ViewCommand::MuchMoreGain, most, camera())->gain, 400);
  EXPECT_EQ(controlsAfter(ViewCommand::LessOffset, most, camera())->offset, 0);
}

TEST(ControlsAfter, ACameraThatTellsNoLimitsHasSomeAllTheSame) {
  const oc::CameraInfo unknown;
  EXPECT_EQ(longestExposureOf(unknown), 2147483647);
  EXPECT_EQ(gainRangeOf(unknown).largest, 500);
  EXPECT_EQ(controlsAfter(ViewCommand::MoreGain, current, unknown)->gain, 105);
}

TEST(Sliders, PlacesAndControlsFitEachOther) {
  for (const SliderKind slider : {SliderKind::Exposure, SliderKind::Gain, SliderKind::Offset}) {
    const Controls least = controlsAfter(slider, 0, current, camera());
    const Controls most = controlsAfter(slider, 1, current, camera());
    EXPECT_EQ(placeOf(slider, least, camera()), 0);
    EXPECT_EQ(placeOf(slider, most, camera()), 1);
  }
  EXPECT_EQ(controlsAfter(SliderKind::Gain, 0.5, current, camera()).gain, 200);
  EXPECT_EQ(controlsAfter(SliderKind::Gain, 0.5, current, camera()).exposureUs, current.exposureUs);
  EXPECT_EQ(controlsAfter(SliderKind::Offset, 0.1, current, camera()).offset, 30);
  EXPECT_EQ(controlsAfter(SliderKind::Exposure, 1, current, camera()).exposureUs, 2000000);
}

}  // namespace

}  // namespace orvane::host
