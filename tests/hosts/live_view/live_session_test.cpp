// A live session with a simulated SDK.
#include "live_view/live_session.hpp"

#include <optional>

#include "live_test.hpp"

namespace orvane::testing {

namespace {

using namespace host;

class LiveSessionTest : public LiveTest {
 protected:
  void start(const std::string& camera = "Colour") { start(options(camera)); }
  void start(const LiveOptions& options) {
    session.emplace(options);
    session->start();
  }

  void run(const LiveRequest& request) { session->run(request); }
  const LiveState& state() { return session->state(); }
  std::string notice() { return state().notice.text; }

  // Waits until this holds for the session's state.
  template <class Condition>
  bool soon(Condition condition) {
    return comesTrue([&] { return condition(state()); });
  }

  // Waits for more frames.
  bool hasFrames(std::uint64_t count) {
    const std::uint64_t all = state().capture.frames + count;
    return soon([&](const LiveState& now) { return now.capture.frames >= all; });
  }

  bool isLost() {
    return soon([](const LiveState& now) { return now.phase == LivePhase::Lost; });
  }

  // A frame of the camera that is open now.
  oc::Frame frame() {
    oc::Frame newest;
    EXPECT_TRUE(soon([&](const LiveState& now) {
      newest = session->takeFrame();
      return newest && newest.opening() == now.capture.opening;
    }));
    return newest;
  }

  int controlCallsOfAnOpening() {
    sdk.takeLog();
    start();
    session.reset();
    const std::string log = sdk.takeLog();
    int calls = 0;
    for (std::size_t at = log.find("ASISetControlValue("); at != std::string::npos;
         at = log.find("ASISetControlValue(", at + 1)) {
      ++calls;
    }
    return calls;
  }

  std::optional<LiveSession> session;
};

TEST_F(LiveSessionTest, OpensTheNamedCameraWithItsUsualSettings) {
  start("mono");
  const LiveState& now = state();
  EXPECT_EQ(now.phase, LivePhase::Streaming);
  EXPECT_EQ(now.cameraName(), "Mono Two");
  EXPECT_EQ(now.chosen, 1U);
  EXPECT_EQ(now.notice.text, "Mono Two is streaming.");
  EXPECT_EQ(now.capture.layout.width, 320);
  EXPECT_EQ(now.capture.layout.height, 200);
  EXPECT_EQ(now.capture.settings.exposureUs, 20000);
  EXPECT_EQ(now.capture.settings.gain, 100);
  EXPECT_EQ(now.capture.settings.offset, 10);
  EXPECT_TRUE(hasFrames(4));
  const oc::Frame first = frame();
  EXPECT_EQ(first.size(), 64000U);
  EXPECT_EQ(first.camera().bitDepth, 12);
  EXPECT_EQ(first.opening(), 1U);
  EXPECT_GT(state().capture.temperature, -50);
}

TEST_F(LiveSessionTest, WithoutANameTheUserChooses) {
  start("");
  EXPECT_EQ(state().phase, LivePhase::Idle);
  EXPECT_EQ(notice(), "Found 2 cameras.");
  EXPECT_FALSE(session->isStreaming());
  run(ChooseRequest{1});
  EXPECT_EQ(state().cameraName(), "Mono Two");
  run(ChooseRequest{2});  // there is none
  EXPECT_EQ(state().cameraName(), "Mono Two");
  EXPECT_TRUE(session->isStreaming());
}

TEST_F(LiveSessionTest, WithoutANameTheOnlyCameraIsOpened) {
  sdk.setCameras({monoCamera()});
  start("");
  EXPECT_EQ(state().cameraName(), "Mono Two");
}

TEST_F(LiveSessionTest, ANameThatFitsNothingLeavesTheChoice) {
  start("Three");
  EXPECT_EQ(state().phase, LivePhase::Idle);
  EXPECT_EQ(state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(notice(), "No camera fits \"Three\"; there are 0 (Colour One), 1 (Mono Two).");
}

TEST_F(LiveSessionTest, TellsWhenThereIsNothingToOpen) {
  sdk.setCameras({});
  start();
  EXPECT_EQ(notice(), "No camera was found; plug one in and press F5.");
  run(ToggleRecordingRequest{});
  EXPECT_EQ(notice(), "There is no camera to record from.");
  run(NextFormatRequest{});
  run(NextBinRequest{});
  run(ControlsRequest{1, 2, 3});
  EXPECT_EQ(state().phase, LivePhase::Idle);
  sdk.setCameras({colourCamera(), monoCamera()});
  run(RescanRequest{});
  EXPECT_EQ(state().cameraName(), "Colour One");
  EXPECT_TRUE(session->isStreaming());
}

TEST_F(LiveSessionTest, TellsOfADirectoryThatIsNotThere) {
  start(LiveOptions{utf8(scratch.file("nothing")), "", scratch.path()});
  EXPECT_EQ(state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(notice(), "There is no directory \"" + utf8(scratch.file("nothing")) + "\".");
}

TEST_F(LiveSessionTest, TellsOfADirectoryWithoutSdks) {
  start(LiveOptions{utf8(scratch.path()), "", scratch.path()});
  EXPECT_EQ(notice(), "No SDK could be loaded from \"" + utf8(scratch.path()) + "\".");
}

TEST_F(LiveSessionTest, TellsOfCamerasThatFailedDuringTheScan) {
  sdk.forceResult("ASIGetCameraProperty", 5, 2);
  start("");
  // The one that was found is the only one, and is opened; its stream is the newer news.
  EXPECT_EQ(state().cameras.size(), 1U);
  EXPECT_EQ(state().cameraName(), "Colour One");
}

TEST_F(LiveSessionTest, ControlsReachTheCamera) {
  start();
  run(ControlsRequest{40000, 222, 33});
  ASSERT_TRUE(soon([](const LiveState& now) { return now.capture.settings.gain == 222; }));
  EXPECT_EQ(state().capture.settings.exposureUs, 40000);
  EXPECT_EQ(state().capture.settings.offset, 33);
  EXPECT_EQ(state().capture.refusals, 0U);
  session->stop();
  const std::string log = sdk.takeLog();
  EXPECT_NE(log.find("ASISetControlValue(3, 1, 40000, 0) = 0"), std::string::npos) << log;
  EXPECT_NE(log.find("ASISetControlValue(3, 0, 222, 0) = 0"), std::string::npos) << log;
  EXPECT_NE(log.find("ASISetControlValue(3, 5, 33, 0) = 0"), std::string::npos) << log;
}

// The camera refuses the second call after those of the opening.
TEST_F(LiveSessionTest, ControlsThatAreRefusedLeaveThoseOfBefore) {
  sdk.forceResult("ASISetControlValue", 16, controlCallsOfAnOpening() + 2, 1);
  start();
  run(ControlsRequest{40000, 222, 33});
  ASSERT_TRUE(soon([](const LiveState& now) { return now.capture.refusals == 1; }));
  EXPECT_EQ(state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(notice().substr(0, 33), "The camera refused the setting: A");
  EXPECT_EQ(state().capture.settings.exposureUs, 20000);
  EXPECT_EQ(state().capture.settings.gain, 100);
  EXPECT_TRUE(hasFrames(1));
  run(NextBinRequest{});  // not with what was refused
  EXPECT_EQ(state().capture.settings.gain, 100);
  EXPECT_EQ(state().capture.layout.width, 160);
}

TEST_F(LiveSessionTest, FormatsAndBinsGoRound) {
  start();
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw8);
  run(NextFormatRequest{});
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw16);
  EXPECT_EQ(state().capture.opening, 2U);
  EXPECT_EQ(frame().size(), 128000U);
  run(NextBinRequest{});
  EXPECT_EQ(state().capture.layout.width, 160);
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw16);
  EXPECT_EQ(frame().size(), 32000U);
  run(NextFormatRequest{});
  run(NextBinRequest{});
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw8);
  EXPECT_EQ(state().capture.layout.width, 320);
}

TEST_F(LiveSessionTest, AFormatThatTheCameraRefusesLeavesTheOneOfBefore) {
  sdk.forceResult("ASISetROIFormat", 8, 2, 1);
  start();
  run(NextFormatRequest{});
  EXPECT_TRUE(session->isStreaming());
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw8);
  EXPECT_EQ(state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(notice().substr(0, 28), "Colour One cannot be opened:");
}

TEST_F(LiveSessionTest, RecordsUntilItIsStopped) {
  start();
  run(ToggleRecordingRequest{});
  ASSERT_TRUE(state().recording);
  EXPECT_EQ(notice().substr(0, 11), "Recording \"");
  EXPECT_TRUE(soon([](const LiveState& now) { return now.recording->frames > 5; }));
  const std::string name = state().recording->file;
  run(ToggleRecordingRequest{});
  EXPECT_FALSE(state().recording);
  const SerFile file(scratch.file(name));
  EXPECT_GT(file.frameCount, 5);
  EXPECT_EQ(notice(),
            "Recorded " + std::to_string(file.frameCount) + " frames in \"" + name + "\".");
  EXPECT_EQ(file.colorId, 8);
  EXPECT_EQ(file.instrument, "Colour One");
  EXPECT_EQ(file.unreadBytes, 0);
  EXPECT_TRUE(hasFrames(1));
}

TEST_F(LiveSessionTest, NothingElseIsOpenedWhileItRecords) {
  start();
  run(ToggleRecordingRequest{});
  const std::vector<LiveRequest> requests = {RescanRequest{}, ChooseRequest{1}, NextFormatRequest{},
                                             NextBinRequest{}};
  for (const LiveRequest& request : requests) {
    run(request);
    EXPECT_EQ(notice(), "Stop the recording first: press R.");
    EXPECT_EQ(state().capture.opening, 1U);
  }
  run(ControlsRequest{30000, 50, 5});  // these may change
  EXPECT_TRUE(soon([](const LiveState& now) { return now.capture.settings.gain == 50; }));
}

TEST_F(LiveSessionTest, ARecordingWithoutADirectoryIsRefused) {
  LiveOptions wrong = options();
  wrong.recordings = scratch.file("nothing");
  start(wrong);
  run(ToggleRecordingRequest{});
  EXPECT_FALSE(state().recording);
  EXPECT_EQ(state().notice.kind, NoticeKind::Error);
  EXPECT_TRUE(hasFrames(1));
}

TEST_F(LiveSessionTest, AnUnpluggedCameraIsClosedAndItsRecordingKept) {
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 20"), 1);
  start();
  run(ToggleRecordingRequest{});
  ASSERT_TRUE(isLost());
  const LiveState& now = state();
  EXPECT_EQ(now.cameraName(), "Colour One");
  EXPECT_EQ(now.notice.kind, NoticeKind::Error);
  EXPECT_EQ(now.notice.text.substr(0, 30), "Colour One does not answer (AS");
  EXPECT_FALSE(session->isStreaming());
  EXPECT_EQ(sdk.invariants().devicesOpen, 0);
  ASSERT_EQ(recordings().size(), 1U);
  const SerFile file(recordings().front());
  EXPECT_GT(file.frameCount, 0);
  const std::string saved = "Recorded " + std::to_string(file.frameCount) + " frames in ";
  EXPECT_NE(now.notice.text.find("then press F5. " + saved), std::string::npos) << now.notice.text;
  EXPECT_FALSE(now.recording);
}

TEST_F(LiveSessionTest, ACameraThatComesBackHasItsSettings) {
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 60"), 1);
  start();
  run(ControlsRequest{50000, 77, 8});
  run(NextFormatRequest{});  // with these settings, whether the camera has them or not
  EXPECT_EQ(state().capture.settings.gain, 77);
  ASSERT_TRUE(isLost());

  run(RescanRequest{});
  EXPECT_EQ(state().phase, LivePhase::Lost);
  EXPECT_EQ(notice(), "Colour One is not there; plug it in and press F5. Found: 1 camera.");
  EXPECT_EQ(state().cameraName(), "Colour One");
  EXPECT_EQ(state().camera(), nullptr);

  sdk.set_plugged(0, 1);
  run(RescanRequest{});
  EXPECT_EQ(state().phase, LivePhase::Streaming);
  EXPECT_EQ(state().cameraName(), "Colour One");
  EXPECT_EQ(state().capture.settings.exposureUs, 50000);
  EXPECT_EQ(state().capture.settings.gain, 77);
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw16);
  EXPECT_TRUE(hasFrames(1));
}

// ORVANE_SIMULATOR takes the same commands, so a running program can be tested like this.
TEST_F(LiveSessionTest, CablesArePulledAndPutInAtChosenCalls) {
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 4; plug 0 ASIGetNumOfConnectedCameras 3"), 1);
  EXPECT_EQ(sdk.command("plug 0 ASIGetVideoData"), 0);
  EXPECT_EQ(sdk.command("plug 0 ASIGetVideoData 1 1"), 0);
  start();
  ASSERT_TRUE(isLost());
  run(RescanRequest{});
  EXPECT_EQ(state().cameras.size(), 1U);
  run(RescanRequest{});
  EXPECT_EQ(state().cameras.size(), 2U);
  EXPECT_EQ(state().phase, LivePhase::Streaming);
}

TEST_F(LiveSessionTest, OfTwoOfAKindTheOneOfBeforeIsOpenedAgain) {
  SimCamera twin = colourCamera();
  twin.id = 8;
  sdk.setCameras({colourCamera(), twin});
  ASSERT_EQ(sdk.command("unplug 0 ASIGetNumOfConnectedCameras 3"), 1);
  start("1");
  run(RescanRequest{});
  EXPECT_EQ(state().chosen, 1U);
  run(RescanRequest{});
  EXPECT_EQ(state().chosen, 0U);
  EXPECT_TRUE(session->isStreaming());
}

TEST_F(LiveSessionTest, WhenItsCameraIsGoneAnotherCanBeChosen) {
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 4"), 1);
  start();
  ASSERT_TRUE(isLost());
  run(RescanRequest{});
  run(ChooseRequest{0});
  EXPECT_EQ(state().cameraName(), "Mono Two");
  EXPECT_EQ(state().capture.settings.gain, 100);
  EXPECT_TRUE(hasFrames(1));
}

TEST_F(LiveSessionTest, ASingleFailureIsNoEnd) {
  sdk.forceResult("ASIGetVideoData", 5, 2, 3);
  start();
  EXPECT_TRUE(hasFrames(4));
  EXPECT_TRUE(session->isStreaming());
  EXPECT_EQ(notice(), "Colour One: ASIGetVideoData: 5.");
  EXPECT_EQ(state().notice.kind, NoticeKind::Warning);
}

TEST_F(LiveSessionTest, ACameraThatIsInUseElsewhereIsNotOpened) {
  SimCamera busy = colourCamera();
  busy.isBusy = 1;
  sdk.setCameras({busy, monoCamera()});
  start();
  EXPECT_EQ(state().phase, LivePhase::Lost);
  EXPECT_EQ(notice().substr(0, 28), "Colour One cannot be opened:");
}

TEST_F(LiveSessionTest, StoppingClosesFileAndCamera) {
  start();
  run(ToggleRecordingRequest{});
  EXPECT_TRUE(soon([](const LiveState& now) { return now.recording->frames > 3; }));
  session->stop();
  EXPECT_EQ(sdk.invariants().devicesOpen, 0);
  EXPECT_EQ(sdk.invariants().streamsRunning, 0);
  ASSERT_EQ(recordings().size(), 1U);
  const SerFile file(recordings().front());
  EXPECT_GT(file.frameCount, 3);
  EXPECT_EQ(file.timeStamps.size(), static_cast<std::size_t>(file.frameCount));
}

}  // namespace

}  // namespace orvane::testing
