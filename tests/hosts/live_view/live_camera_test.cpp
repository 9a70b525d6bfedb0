// A live session on a thread of its own.
#include "live_view/live_camera.hpp"

#include <atomic>
#include <chrono>

#include "live_test.hpp"

namespace orvane::testing {

namespace {

using namespace host;

using LiveCameraTest = LiveTest;

TEST_F(LiveCameraTest, FramesAndStatesArrive) {
  std::atomic<int> news = 0;
  oc::Frame frame;
  std::vector<std::uint8_t> bytes;
  {
    LiveCamera camera(options(), [&] { ++news; });
    ASSERT_TRUE(comesTrue([&] { return static_cast<bool>(frame = camera.takeFrame()); }));
    EXPECT_EQ(frame.width(), 320);
    EXPECT_EQ(frame.bayer(), BayerPattern::Rggb);
    bytes.assign(frame.pixels().begin(), frame.pixels().end());
    EXPECT_EQ(bytes.size(), 64000U);
    ASSERT_TRUE(comesTrue([&] { return camera.state()->capture.framesPerSecond > 1; }));
    EXPECT_EQ(camera.state()->phase, LivePhase::Streaming);
    EXPECT_GT(news, 2);
  }
  EXPECT_EQ(sdk.invariants().devicesOpen, 0);
  EXPECT_EQ(std::vector<std::uint8_t>(frame.pixels().begin(), frame.pixels().end()), bytes);
}

TEST_F(LiveCameraTest, RequestsAreDone) {
  LiveCamera camera(options(), [] {});
  ASSERT_TRUE(comesTrue([&] { return camera.state()->phase == LivePhase::Streaming; }));
  for (int gain = 1; gain <= 150; ++gain) {
    camera.send([gain](LiveSession& session) { session.setControls({10000, gain, 5}); });
  }
  ASSERT_TRUE(comesTrue([&] { return camera.state()->capture.settings.gain == 150; }));
  camera.send([](LiveSession& session) { session.choose(1); });
  ASSERT_TRUE(comesTrue([&] { return camera.state()->cameraName() == "Mono Two"; }));
  oc::Frame frame;
  ASSERT_TRUE(comesTrue([&] { return (frame = camera.takeFrame()) && frame.opening() == 2; }));
  EXPECT_EQ(frame.bayer(), BayerPattern::None);
}

TEST_F(LiveCameraTest, EndingItClosesRecordingAndCamera) {
  {
    LiveCamera camera(options(), [] {});
    camera.send(&LiveSession::toggleRecording);
    ASSERT_TRUE(comesTrue([&] {
      const auto& recording = camera.state()->recording;
      return recording && recording->frames > 3;
    }));
  }
  EXPECT_EQ(sdk.invariants().devicesOpen, 0);
  EXPECT_EQ(sdk.invariants().streamsRunning, 0);
  const SerFile file(recording());
  EXPECT_GT(file.frameCount, 3);
  EXPECT_EQ(file.timeStamps.size(), static_cast<std::size_t>(file.frameCount));
  EXPECT_EQ(file.unreadBytes, 0);
}

TEST_F(LiveCameraTest, ALimitOfTimeIsKept) {
  LiveOptions limited = options();
  limited.recording.limit.microseconds = 300000;
  LiveCamera camera(limited, [] {});
  camera.send(&LiveSession::toggleRecording);
  ASSERT_TRUE(comesTrue([&] { return camera.state()->recording.has_value(); }));
  ASSERT_TRUE(comesTrue([&] { return !camera.state()->recording; }));
  EXPECT_EQ(camera.state()->notice.text.substr(0, 38), "The limit of 0.3 s is reached. Recorde");
}

TEST_F(LiveCameraTest, EndsAtOnceWithoutACamera) {
  sdk.setCameras({});
  const auto start = std::chrono::steady_clock::now();
  {
    LiveCamera camera(options(), [] {});
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}  // namespace

}  // namespace orvane::testing
