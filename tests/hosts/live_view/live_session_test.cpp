// A live view's work with the library, with a simulated SDK.
#include "live_view/live_session.hpp"

#include "live_test.hpp"

namespace orvane::testing {

namespace {

using namespace host;

class LiveSessionTest : public LiveTest {
 protected:
  LiveSessionTest() { sdk.stop_clock(0); }

  // True when this holds for the session's state within half a minute.
  template <class Condition>
  static bool soon(LiveSession& session, Condition condition) {
    return comesTrue([&] { return condition(session.state()); });
  }

  // Waits for more frames.
  static bool hasFrames(LiveSession& session, std::uint64_t count) {
    const std::uint64_t all = session.state().frames + count;
    return soon(session, [&](const LiveState& state) { return state.frames >= all; });
  }

  static bool isLost(LiveSession& session) {
    return soon(session, [](const LiveState& state) { return state.phase == LivePhase::Lost; });
  }

  // A frame of the camera that is open now.
  static LiveFrame frameOf(LiveSession& session) {
    LiveFrame frame;
    EXPECT_TRUE(soon(session, [&](const LiveState& state) {
      return session.takeFrame(frame) && frame.opening == state.opening;
    }));
    return frame;
  }

  int controlCallsOfAnOpening() const {
    sdk.takeLog();
    {
      LiveSession session(options());
      session.start();
    }
    const std::string log = sdk.takeLog();
    int calls = 0;
    for (std::size_t at = log.find("ASISetControlValue("); at != std::string::npos;
         at = log.find("ASISetControlValue(", at + 1)) {
      ++calls;
    }
    return calls;
  }

  static std::string noticeOf(LiveSession& session) { return session.state().notice.text; }
};

TEST_F(LiveSessionTest, OpensTheNamedCameraWithItsUsualSettings) {
  LiveSession session(options("mono"));
  session.start();
  const LiveState& state = session.state();
  EXPECT_EQ(state.phase, LivePhase::Streaming);
  EXPECT_EQ(state.cameraName, "Mono Two");
  EXPECT_EQ(state.chosen, 1U);
  EXPECT_EQ(state.notice.text, "Mono Two is streaming.");
  EXPECT_EQ(state.layout.width, 320);
  EXPECT_EQ(state.layout.height, 200);
  EXPECT_EQ(state.settings.exposureUs, 20000);
  EXPECT_EQ(state.settings.gain, 100);
  EXPECT_EQ(state.settings.offset, 10);
  EXPECT_TRUE(hasFrames(session, 4));
  const LiveFrame frame = frameOf(session);
  EXPECT_EQ(frame.bytes.size(), 64000U);
  EXPECT_EQ(frame.bitDepth, 12);
  EXPECT_EQ(frame.opening, 1U);
  EXPECT_GT(session.state().temperature, -50);
}

TEST_F(LiveSessionTest, WithoutANameTheUserChooses) {
  LiveSession session(options(""));
  session.start();
  EXPECT_EQ(session.state().phase, LivePhase::Idle);
  EXPECT_EQ(noticeOf(session), "Found 2 cameras.");
  EXPECT_FALSE(session.isStreaming());
  session.run(ChooseRequest{1});
  EXPECT_EQ(session.state().cameraName, "Mono Two");
  session.run(ChooseRequest{2});  // there is none
  EXPECT_EQ(session.state().cameraName, "Mono Two");
  EXPECT_TRUE(session.isStreaming());
}

TEST_F(LiveSessionTest, WithoutANameTheOnlyCameraIsOpened) {
  sdk.setCameras({monoCamera()});
  LiveSession session(options(""));
  session.start();
  EXPECT_EQ(session.state().cameraName, "Mono Two");
}

TEST_F(LiveSessionTest, ANameThatFitsNothingLeavesTheChoice) {
  LiveSession session(options("Three"));
  session.start();
  EXPECT_EQ(session.state().phase, LivePhase::Idle);
  EXPECT_EQ(session.state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(noticeOf(session), "No camera fits \"Three\"; there are 0 (Colour One), 1 (Mono Two).");
}

TEST_F(LiveSessionTest, TellsWhenThereIsNothingToOpen) {
  sdk.setCameras({});
  LiveSession session(options());
  session.start();
  EXPECT_EQ(noticeOf(session), "No camera was found; plug one in and press F5.");
  session.run(ToggleRecordingRequest{});
  EXPECT_EQ(noticeOf(session), "There is no camera to record from.");
  session.run(NextFormatRequest{});
  session.run(NextBinRequest{});
  session.run(ControlsRequest{1, 2, 3});
  EXPECT_EQ(session.state().phase, LivePhase::Idle);
  sdk.setCameras({colourCamera(), monoCamera()});
  session.run(RescanRequest{});
  EXPECT_EQ(session.state().cameraName, "Colour One");
  EXPECT_TRUE(session.isStreaming());
}

TEST_F(LiveSessionTest, TellsOfADirectoryThatIsNotThere) {
  LiveSession session({utf8(scratch.file("nothing")), "", scratch.path()});
  session.start();
  EXPECT_EQ(session.state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(noticeOf(session), "There is no directory \"" + utf8(scratch.file("nothing")) + "\".");
}

TEST_F(LiveSessionTest, TellsOfADirectoryWithoutSdks) {
  LiveSession session({utf8(scratch.path()), "", scratch.path()});
  session.start();
  EXPECT_EQ(noticeOf(session), "No SDK could be loaded from \"" + utf8(scratch.path()) + "\".");
}

TEST_F(LiveSessionTest, TellsOfCamerasThatFailedDuringTheScan) {
  sdk.forceResult("ASIGetCameraProperty", 5, 2);
  LiveSession session(options(""));
  session.start();
  // The one that was found is the only one, and is opened; its stream is the newer news.
  EXPECT_EQ(session.state().cameras.size(), 1U);
  EXPECT_EQ(session.state().cameraName, "Colour One");
}

TEST_F(LiveSessionTest, ControlsReachTheCamera) {
  LiveSession session(options());
  session.start();
  session.run(ControlsRequest{40000, 222, 33});
  ASSERT_TRUE(soon(session, [](const LiveState& state) { return state.settings.gain == 222; }));
  EXPECT_EQ(session.state().settings.exposureUs, 40000);
  EXPECT_EQ(session.state().settings.offset, 33);
  EXPECT_EQ(session.state().settled, 0U);
  session.stop();
  const std::string log = sdk.takeLog();
  EXPECT_NE(log.find("ASISetControlValue(3, 1, 40000, 0) = 0"), std::string::npos) << log;
  EXPECT_NE(log.find("ASISetControlValue(3, 0, 222, 0) = 0"), std::string::npos) << log;
  EXPECT_NE(log.find("ASISetControlValue(3, 5, 33, 0) = 0"), std::string::npos) << log;
}

// The second call after those of the opening.
TEST_F(LiveSessionTest, ControlsThatAreRefusedLeaveThoseOfBefore) {
  sdk.forceResult("ASISetControlValue", 16, controlCallsOfAnOpening() + 2, 1);
  LiveSession session(options());
  session.start();
  session.run(ControlsRequest{40000, 222, 33});
  ASSERT_TRUE(soon(session, [](const LiveState& state) { return state.settled == 1; }));
  EXPECT_EQ(session.state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(noticeOf(session).substr(0, 33), "The camera refused the setting: A");
  EXPECT_EQ(session.state().settings.exposureUs, 20000);
  EXPECT_EQ(session.state().settings.gain, 100);
  EXPECT_TRUE(hasFrames(session, 1));
  session.run(NextBinRequest{});  // not with what was refused
  EXPECT_EQ(session.state().settings.gain, 100);
  EXPECT_EQ(session.state().layout.width, 160);
}

TEST_F(LiveSessionTest, FormatsAndBinsGoRound) {
  LiveSession session(options());
  session.start();
  EXPECT_EQ(session.state().layout.format, PixelFormat::Raw8);
  session.run(NextFormatRequest{});
  EXPECT_EQ(session.state().layout.format, PixelFormat::Raw16);
  EXPECT_EQ(session.state().opening, 2U);
  EXPECT_EQ(frameOf(session).bytes.size(), 128000U);
  session.run(NextBinRequest{});
  EXPECT_EQ(session.state().layout.width, 160);
  EXPECT_EQ(session.state().layout.format, PixelFormat::Raw16);
  EXPECT_EQ(frameOf(session).bytes.size(), 32000U);
  session.run(NextFormatRequest{});
  session.run(NextBinRequest{});
  EXPECT_EQ(session.state().layout.format, PixelFormat::Raw8);
  EXPECT_EQ(session.state().layout.width, 320);
}

TEST_F(LiveSessionTest, AFormatThatTheCameraRefusesLeavesTheOneOfBefore) {
  sdk.forceResult("ASISetROIFormat", 8, 2, 1);
  LiveSession session(options());
  session.start();
  session.run(NextFormatRequest{});
  EXPECT_TRUE(session.isStreaming());
  EXPECT_EQ(session.state().layout.format, PixelFormat::Raw8);
  EXPECT_EQ(session.state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(noticeOf(session).substr(0, 28), "Colour One cannot be opened:");
}

TEST_F(LiveSessionTest, RecordsUntilItIsStopped) {
  LiveSession session(options());
  session.start();
  session.run(ToggleRecordingRequest{});
  ASSERT_TRUE(session.state().recording);
  EXPECT_EQ(noticeOf(session).substr(0, 11), "Recording \"");
  EXPECT_TRUE(soon(session, [](const LiveState& state) { return state.recording->frames > 5; }));
  const std::string name = session.state().recording->file;
  session.run(ToggleRecordingRequest{});
  EXPECT_FALSE(session.state().recording);
  const SerFile file(scratch.file(name));
  EXPECT_GT(file.frameCount, 5);
  EXPECT_EQ(noticeOf(session),
            "Recorded " + std::to_string(file.frameCount) + " frames in \"" + name + "\".");
  EXPECT_EQ(file.colorId, 8);
  EXPECT_EQ(file.instrument, "Colour One");
  EXPECT_EQ(file.unreadBytes, 0);
  EXPECT_TRUE(hasFrames(session, 1));
}

TEST_F(LiveSessionTest, NothingElseIsOpenedWhileItRecords) {
  LiveSession session(options());
  session.start();
  session.run(ToggleRecordingRequest{});
  const std::vector<LiveRequest> requests = {RescanRequest{}, ChooseRequest{1}, NextFormatRequest{},
                                             NextBinRequest{}};
  for (const LiveRequest& request : requests) {
    session.run(request);
    EXPECT_EQ(noticeOf(session), "Stop the recording first: press R.");
    EXPECT_EQ(session.state().opening, 1U);
  }
  session.run(ControlsRequest{30000, 50, 5});  // these may change
  EXPECT_TRUE(soon(session, [](const LiveState& state) { return state.settings.gain == 50; }));
}

TEST_F(LiveSessionTest, ARecordingWithoutADirectoryIsRefused) {
  LiveOptions wrong = options();
  wrong.recordings = scratch.file("nothing");
  LiveSession session(wrong);
  session.start();
  session.run(ToggleRecordingRequest{});
  EXPECT_FALSE(session.state().recording);
  EXPECT_EQ(session.state().notice.kind, NoticeKind::Error);
  EXPECT_TRUE(hasFrames(session, 1));
}

TEST_F(LiveSessionTest, AnUnpluggedCameraIsClosedAndItsRecordingKept) {
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 20"), 1);
  LiveSession session(options());
  session.start();
  session.run(ToggleRecordingRequest{});
  ASSERT_TRUE(isLost(session));
  const LiveState& state = session.state();
  EXPECT_EQ(state.cameraName, "Colour One");
  EXPECT_EQ(state.notice.kind, NoticeKind::Error);
  EXPECT_EQ(state.notice.text.substr(0, 30), "Colour One does not answer (AS");
  EXPECT_FALSE(session.isStreaming());
  EXPECT_EQ(sdk.invariants().devicesOpen, 0);
  ASSERT_EQ(recordings().size(), 1U);
  const SerFile file(recordings().front());
  EXPECT_GT(file.frameCount, 0);
  const std::string saved = "Recorded " + std::to_string(file.frameCount) + " frames in ";
  EXPECT_NE(state.notice.text.find("then press F5. " + saved), std::string::npos)
      << state.notice.text;
  EXPECT_FALSE(state.recording);
}

TEST_F(LiveSessionTest, ACameraThatComesBackHasItsSettings) {
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 60"), 1);
  LiveSession session(options());
  session.start();
  session.run(ControlsRequest{50000, 77, 8});
  session.run(NextFormatRequest{});  // with these settings, whether the camera has them or not
  EXPECT_EQ(session.state().settings.gain, 77);
  ASSERT_TRUE(isLost(session));

  session.run(RescanRequest{});
  EXPECT_EQ(session.state().phase, LivePhase::Lost);
  EXPECT_EQ(noticeOf(session),
            "Colour One is not there; plug it in and press F5. Found: 1 camera.");
  EXPECT_EQ(session.state().cameraName, "Colour One");
  EXPECT_EQ(session.state().camera(), nullptr);

  sdk.set_plugged(0, 1);
  session.run(RescanRequest{});
  EXPECT_EQ(session.state().phase, LivePhase::Streaming);
  EXPECT_EQ(session.state().cameraName, "Colour One");
  EXPECT_EQ(session.state().settings.exposureUs, 50000);
  EXPECT_EQ(session.state().settings.gain, 77);
  EXPECT_EQ(session.state().layout.format, PixelFormat::Raw16);
  EXPECT_TRUE(hasFrames(session, 1));
}

// As the environment of a program can ask for it, which has no hands to pull a cable.
TEST_F(LiveSessionTest, CablesArePulledAndPutInAtChosenCalls) {
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 4; plug 0 ASIGetNumOfConnectedCameras 3"), 1);
  EXPECT_EQ(sdk.command("plug 0 ASIGetVideoData"), 0);
  EXPECT_EQ(sdk.command("plug 0 ASIGetVideoData 1 1"), 0);
  LiveSession session(options());
  session.start();
  ASSERT_TRUE(isLost(session));
  session.run(RescanRequest{});
  EXPECT_EQ(session.state().cameras.size(), 1U);
  session.run(RescanRequest{});
  EXPECT_EQ(session.state().cameras.size(), 2U);
  EXPECT_EQ(session.state().phase, LivePhase::Streaming);
}

TEST_F(LiveSessionTest, OfTwoOfAKindTheOneOfBeforeIsOpenedAgain) {
  SimCamera twin = colourCamera();
  twin.id = 8;
  sdk.setCameras({colourCamera(), twin});
  ASSERT_EQ(sdk.command("unplug 0 ASIGetNumOfConnectedCameras 3"), 1);
  LiveSession session(options("1"));
  session.start();
  session.run(RescanRequest{});
  EXPECT_EQ(session.state().chosen, 1U);
  session.run(RescanRequest{});
  EXPECT_EQ(session.state().chosen, 0U);
  EXPECT_TRUE(session.isStreaming());
}

TEST_F(LiveSessionTest, WhenItsCameraIsGoneAnotherCanBeChosen) {
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 4"), 1);
  LiveSession session(options());
  session.start();
  ASSERT_TRUE(isLost(session));
  session.run(RescanRequest{});
  session.run(ChooseRequest{0});
  EXPECT_EQ(session.state().cameraName, "Mono Two");
  EXPECT_EQ(session.state().settings.gain, 100);
  EXPECT_TRUE(hasFrames(session, 1));
}

TEST_F(LiveSessionTest, ASingleFailureIsNoEnd) {
  sdk.forceResult("ASIGetVideoData", 5, 2, 3);
  LiveSession session(options());
  session.start();
  EXPECT_TRUE(hasFrames(session, 4));
  EXPECT_TRUE(session.isStreaming());
  EXPECT_EQ(noticeOf(session), "Colour One: ASIGetVideoData: 5.");
  EXPECT_EQ(session.state().notice.kind, NoticeKind::Warning);
}

TEST_F(LiveSessionTest, ACameraThatIsInUseElsewhereIsNotOpened) {
  SimCamera busy = colourCamera();
  busy.isBusy = 1;
  sdk.setCameras({busy, monoCamera()});
  LiveSession session(options());
  session.start();
  EXPECT_EQ(session.state().phase, LivePhase::Lost);
  EXPECT_EQ(noticeOf(session).substr(0, 28), "Colour One cannot be opened:");
}

TEST_F(LiveSessionTest, StoppingClosesFileAndCamera) {
  LiveSession session(options());
  session.start();
  session.run(ToggleRecordingRequest{});
  EXPECT_TRUE(soon(session, [](const LiveState& state) { return state.recording->frames > 3; }));
  session.stop();
  EXPECT_EQ(sdk.invariants().devicesOpen, 0);
  EXPECT_EQ(sdk.invariants().streamsRunning, 0);
  ASSERT_EQ(recordings().size(), 1U);
  const SerFile file(recordings().front());
  EXPECT_GT(file.frameCount, 3);
  EXPECT_EQ(file.timeStamps.size(), static_cast<std::size_t>(file.frameCount));
}

}  // namespace

}  // namespace orvane::testing
