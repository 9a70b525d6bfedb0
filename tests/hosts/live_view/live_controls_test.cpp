// Exposure, gain and offset as keys and sliders change them.
#include "live_view/live_controls.hpp"

#include <gtest/gtest.h>

namespace orvane::host {

namespace {

oc::CameraInfo camera() {
  oc::CameraInfo description;
  description.minGain = 0;
  description.maxGain = 400;
  description.maxExposureUs = 2000000;
  return description;
}

constexpr ControlsRequest now{20000, 100, 10};

ControlsRequest after(ViewCommand command) {
  return controlsAfter(command, now, camera()).value_or(ControlsRequest{});
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
  const ControlsRequest moreGain = after(ViewCommand::MoreGain);
  EXPECT_EQ(moreGain.exposureUs, now.exposureUs);
  EXPECT_EQ(moreGain.offset, now.offset);
}

TEST(ControlsAfter, OtherCommandsAreNoneOfTheirs) {
  EXPECT_FALSE(controlsAfter(ViewCommand::ToggleRecording, now, camera()));
  EXPECT_FALSE(controlsAfter(ViewCommand::None, now, camera()));
}

TEST(ControlsAfter, StayWithinWhatTheCameraCanDo) {
  const ControlsRequest most{1900000, 399, 0};
  EXPECT_EQ(controlsAfter(ViewCommand::MuchLongerExposure, most, camera())->exposureUs, 2000000);
  EXPECT_EQ(controlsAfter(ViewCommand::MuchMoreGain, most, camera())->gain, 400);
  EXPECT_EQ(controlsAfter(ViewCommand::LessOffset, most, camera())->offset, 0);
}

TEST(ControlsAfter, ACameraThatTellsNoLimitsHasSomeAllTheSame) {
  const oc::CameraInfo unknown;
  EXPECT_EQ(longestExposureOf(unknown), 2147483647);
  EXPECT_EQ(gainRangeOf(unknown).largest, 500);
  EXPECT_EQ(controlsAfter(ViewCommand::MoreGain, now, unknown)->gain, 105);
}

TEST(Sliders, PlacesAndControlsFitEachOther) {
  for (const SliderKind slider : {SliderKind::Exposure, SliderKind::Gain, SliderKind::Offset}) {
    const ControlsRequest least = controlsAfter(slider, 0, now, camera());
    const ControlsRequest most = controlsAfter(slider, 1, now, camera());
    EXPECT_EQ(placeOf(slider, least, camera()), 0);
    EXPECT_EQ(placeOf(slider, most, camera()), 1);
  }
  EXPECT_EQ(controlsAfter(SliderKind::Gain, 0.5, now, camera()).gain, 200);
  EXPECT_EQ(controlsAfter(SliderKind::Gain, 0.5, now, camera()).exposureUs, now.exposureUs);
  EXPECT_EQ(controlsAfter(SliderKind::Offset, 0.1, now, camera()).offset, 30);
  EXPECT_EQ(controlsAfter(SliderKind::Exposure, 1, now, camera()).exposureUs, 2000000);
}

}  // namespace

}  // namespace orvane::host
