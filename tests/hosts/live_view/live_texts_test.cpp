// The texts of the live view.
#include "live_view/live_texts.hpp"

#include <gtest/gtest.h>

#include <chrono>

namespace orvane::host {

namespace {

TEST(LiveTexts, Exposure) {
  EXPECT_EQ(exposureText(1), "1 \u00b5s");
  EXPECT_EQ(exposureText(999), "999 \u00b5s");
  EXPECT_EQ(exposureText(1250), "1.25 ms");
  EXPECT_EQ(exposureText(64000), "64 ms");
  EXPECT_EQ(exposureText(2500000), "2.5 s");
}

TEST(LiveTexts, Format) {
  LiveState state;
  EXPECT_EQ(formatText(state), "");
  state.phase = LivePhase::Streaming;
  state.capture.layout = {1280, 960, PixelFormat::Raw16, BayerPattern::Grbg};
  state.capture.settings.bin = 2;
  EXPECT_EQ(formatText(state), "1280 \u00d7 960   GRBG   raw16   bin 2");
  state.capture.layout.bayer = BayerPattern::None;
  EXPECT_EQ(formatText(state), "1280 \u00d7 960   raw16   bin 2");
}

TEST(LiveTexts, Temperature) {
  EXPECT_EQ(temperatureText(-10), "-10.0 \u00b0C");
  EXPECT_EQ(temperatureText(18.25), "18.2 \u00b0C");
  EXPECT_EQ(temperatureText({}), unknownText);
}

TEST(LiveTexts, Rate) {
  EXPECT_EQ(rateText(0), unknownText);
  EXPECT_EQ(rateText(50.04), "50.0 / s");
  EXPECT_EQ(rateText(1), "1.0 / s");
  EXPECT_EQ(rateText(0.1), "1 in 10.0 s");
}

TEST(LiveTexts, Histogram) {
  Histogram grey;
  grey.channel[0].smallest = 3;
  grey.channel[0].largest = 240;
  grey.channel[0].median = 17;
  grey.channel[0].mean = 20.26;
  grey.channel[1].largest = 9999;  // of no meaning
  EXPECT_EQ(histogramText(grey), "min 3   median 17   mean 20.3   max 240");
  Histogram colour = grey;
  colour.channels = 3;
  colour.channel[1] = {{}, 1, 200, 99, 100};
  colour.channel[2] = {{}, 2, 250, 150, 400};
  EXPECT_EQ(histogramText(colour), "min 1   median 17 / 99 / 150   max 250");
}

TEST(LiveTexts, Saturation) {
  EXPECT_EQ(saturationText(0), "0 % saturated");
  EXPECT_EQ(saturationText(0.00123), "0.12 % saturated");
  EXPECT_EQ(saturationText(0.5), "50 % saturated");
}

TEST(LiveTexts, FocusFigures) {
  EXPECT_EQ(diameterText({}), unknownText);
  EXPECT_EQ(diameterText(3.456), "3.46 px");
  EXPECT_EQ(sharpnessText({}), unknownText);
  EXPECT_EQ(sharpnessText(0), unknownText);
  EXPECT_EQ(sharpnessText(12.34), "12.3");
}

TEST(LiveTexts, Recording) {
  EXPECT_EQ(recordingText({"a.ser", 12, 34500000, 42.9}), "00:42   12 frames   34.5 MB");
  EXPECT_EQ(recordingText({"a.ser", 90000, 123456789012, 3723}),
            "62:03   90000 frames   123.46 GB");
}

TEST(LiveTexts, EmptyPicture) {
  LiveState state;
  EXPECT_EQ(emptyPictureText(state), "Looking for cameras\u2026");
  state.phase = LivePhase::Idle;
  EXPECT_EQ(emptyPictureText(state), "No camera");
  state.cameras.resize(2);
  EXPECT_EQ(emptyPictureText(state), "Press C to choose a camera");
  state.phase = LivePhase::Lost;
  EXPECT_EQ(emptyPictureText(state), "No picture");
  state.phase = LivePhase::Streaming;
  EXPECT_EQ(emptyPictureText(state), "Waiting for the first frame\u2026");
  state.capture.frames = 1;
  EXPECT_EQ(emptyPictureText(state), "");
}

TEST(LiveTexts, StatusLineTellsOfFramesThatDoNotCome) {
  LiveState state;
  state.phase = LivePhase::Streaming;
  state.capture.settings.exposureUs = 1000000;
  state.notice = {NoticeKind::Information, "Fine."};
  state.capture.silence = std::chrono::milliseconds(3400);
  EXPECT_EQ(statusLine(state).text, "Fine.");
  state.capture.silence = std::chrono::milliseconds(12200);
  EXPECT_EQ(statusLine(state).kind, NoticeKind::Warning);
  EXPECT_EQ(statusLine(state).text,
            "No frame for 12 s. If none comes, check the cable and press F5.");
  state.notice = {NoticeKind::Error, "Worse."};
  EXPECT_EQ(statusLine(state).text, "Worse.");
}

TEST(LiveTexts, RecordingDetailsTellWhatComesFirst) {
  RecordingProgress now;
  EXPECT_EQ(recordingDetails(now), "0 dropped");
  EXPECT_FALSE(isAlarming(now));
  now.freeBytes = 45'200'000'000;
  now.secondsToFull = 5999;
  EXPECT_EQ(recordingDetails(now), "0 dropped   45.20 GB free   100 min left");
  now.secondsToLimit = 42.4;
  EXPECT_EQ(recordingDetails(now), "0 dropped   45.20 GB free   42 s left");
  EXPECT_FALSE(isAlarming(now));
  now.secondsToFull = 41;
  EXPECT_EQ(recordingDetails(now), "0 dropped   45.20 GB free   41 s left");
  EXPECT_TRUE(isAlarming(now));
  now.secondsToLimit.reset();
  EXPECT_TRUE(isAlarming(now));
  now.secondsToFull = 7200;
  now.droppedFrames = 3;
  EXPECT_EQ(recordingDetails(now), "3 dropped   45.20 GB free   2 h left");
  EXPECT_TRUE(isAlarming(now));
}

TEST(LiveTexts, LongExposuresHaveACountdown) {
  LiveState state;
  state.phase = LivePhase::Streaming;
  state.capture.settings.exposureUs = 2'000'000;
  EXPECT_FALSE(countdownOf(state));
  state.capture.settings.exposureUs = 10'000'000;
  state.capture.silence = std::chrono::milliseconds(2500);
  ASSERT_TRUE(countdownOf(state));
  EXPECT_EQ(countdownOf(state)->text, "Next frame in 8 s");
  EXPECT_EQ(countdownOf(state)->part, 0.25);
  state.capture.silence = std::chrono::seconds(10);
  EXPECT_EQ(countdownOf(state)->text, "Reading the frame\u2026");
  EXPECT_EQ(countdownOf(state)->part, 1);
  state.capture.settings.exposureUs = 135'000'000;
  EXPECT_EQ(countdownOf(state)->text, "Next frame in 02:05");
  state.phase = LivePhase::Lost;
  EXPECT_FALSE(countdownOf(state));
}

TEST(LiveTexts, CameraDetails) {
  oc::CameraInfo camera;
  camera.maxWidth = 1920;
  camera.maxHeight = 1080;
  camera.bitDepth = 12;
  EXPECT_EQ(cameraDetails(camera), (CameraDetails{"1920 \u00d7 1080", "12 bit", "mono", ""}));
  camera.isColor = true;
  EXPECT_EQ(cameraDetails(camera)[2], "colour");
  camera.bayer = BayerPattern::Bggr;
  camera.isCooled = true;
  EXPECT_EQ(cameraDetails(camera), (CameraDetails{"1920 \u00d7 1080", "12 bit", "BGGR", "cooled"}));
}

TEST(LiveTexts, CamerasAreFoundByTheirIndex) {
  std::vector<oc::CameraInfo> cameras(2);
  cameras[0].index = 0;
  cameras[1].index = 3;
  EXPECT_EQ(positionOf(cameras, 3), 1U);
  EXPECT_EQ(positionOf(cameras, 1), 2U);
}

}  // namespace

}  // namespace orvane::host
