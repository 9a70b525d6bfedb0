// The thread that is the library's only caller.
#include "live_view/live_camera.hpp"

#include <atomic>
#include <chrono>
#include <thread>

#include "live_test.hpp"

namespace orvane::testing {

namespace {

using namespace host;

class LiveCameraTest : public LiveTest {
 protected:
  LiveCameraTest() { sdk.stop_clock(0); }

  // Waits until something holds; false when it does not within half a minute.
  template <class Condition>
  static bool soon(Condition condition) {
    for (int attempt = 0; attempt < 3000; ++attempt) {
      if (condition()) {
        return true;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }
};

TEST_F(LiveCameraTest, FramesAndStatesArrive) {
  std::atomic<int> news = 0;
  LiveFrame frame;
  {
    LiveCamera camera(options(), [&] { ++news; });
    ASSERT_TRUE(soon([&] { return camera.takeFrame(frame); }));
    EXPECT_EQ(frame.layout.width, 320);
    EXPECT_EQ(frame.layout.bayer, BayerPattern::Rggb);
    EXPECT_EQ(frame.bytes().size(), 64000U);
    ASSERT_TRUE(soon([&] { return camera.state()->framesPerSecond > 1; }));
    EXPECT_EQ(camera.state()->phase, LivePhase::Streaming);
    EXPECT_GT(news, 2);
  }
  EXPECT_EQ(sdk.invariants().devicesOpen, 0);
  EXPECT_FALSE(frame.buffer.empty());  // it was given away and stays
}

TEST_F(LiveCameraTest, RequestsAreCarriedOut) {
  LiveCamera camera(options(), [] {});
  ASSERT_TRUE(soon([&] { return camera.state()->phase == LivePhase::Streaming; }));
  for (int gain = 1; gain <= 150; ++gain) {
    camera.send(ControlsRequest{10000, gain, 5});
  }
  ASSERT_TRUE(soon([&] { return camera.state()->settings.gain == 150; }));
  camera.send(ChooseRequest{1});
  ASSERT_TRUE(soon([&] { return camera.state()->cameraName == "Mono Two"; }));
  LiveFrame frame;
  ASSERT_TRUE(soon([&] { return camera.takeFrame(frame) && frame.opening == 2; }));
  EXPECT_EQ(frame.layout.bayer, BayerPattern::None);
}

TEST_F(LiveCameraTest, EndingItFinishesTheRecording) {
  {
    LiveCamera camera(options(), [] {});
    camera.send(ToggleRecordingRequest{});
    ASSERT_TRUE(soon([&] {
      const auto& recording = camera.state()->recording;
      return recording && recording->frames > 3;
    }));
  }
  ASSERT_EQ(recordings().size(), 1U);
  const SerFile file(recordings().front());
  EXPECT_GT(file.frameCount, 3);
  EXPECT_EQ(file.timeStamps.size(), static_cast<std::size_t>(file.frameCount));
  EXPECT_EQ(file.unreadBytes, 0);
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
