// A live view's work with the library, with a simulated SDK.
#include "live_view/live_session.hpp"

#include "live_test.hpp"

namespace orvane::testing {

namespace {

using namespace host;

class LiveSessionTest : public LiveTest {
 protected:
  // Frames that came in as many attempts.
  static int framesOf(LiveSession& session, int attempts) {
    int frames = 0;
    for (int attempt = 0; attempt < attempts && session.isStreaming(); ++attempt) {
      frames += session.poll() ? 1 : 0;
    }
    return frames;
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
  EXPECT_GT(framesOf(session, 10), 3);
  EXPECT_EQ(session.frame().bytes().size(), 64000U);
  EXPECT_EQ(session.frame().bitDepth, 12);
  EXPECT_EQ(session.frame().opening, 1U);
  EXPECT_GT(session.state().frames, 3);
  EXPECT_GT(session.state().temperature, -50);
}

TEST_F(LiveSessionTest, WithoutANameTheUserChooses) {
  LiveSession session(options(""));
  session.start();
  EXPECT_EQ(session.state().phase, LivePhase::Idle);
  EXPECT_EQ(noticeOf(session), "Found 2 cameras.");
  EXPECT_FALSE(session.isStreaming());
  session.carryOut(ChooseRequest{1});
  EXPECT_EQ(session.state().cameraName, "Mono Two");
  session.carryOut(ChooseRequest{2});  // there is none
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
  session.carryOut(ToggleRecordingRequest{});
  EXPECT_EQ(noticeOf(session), "There is no camera to record from.");
  session.carryOut(NextFormatRequest{});
  session.carryOut(NextBinRequest{});
  session.carryOut(ControlsRequest{1, 2, 3});
  EXPECT_EQ(session.state().phase, LivePhase::Idle);
  sdk.setCameras({colourCamera(), monoCamera()});
  session.carryOut(RescanRequest{});
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
  sdk.takeLog();
  session.carryOut(ControlsRequest{40000, 222, 33});
  const std::string log = sdk.takeLog();
  EXPECT_NE(log.find("ASISetControlValue(3, 1, 40000, 0) = 0"), std::string::npos) << log;
  EXPECT_NE(log.find("ASISetControlValue(3, 0, 222, 0) = 0"), std::string::npos) << log;
  EXPECT_NE(log.find("ASISetControlValue(3, 5, 33, 0) = 0"), std::string::npos) << log;
  EXPECT_EQ(session.state().settings.exposureUs, 40000);
  EXPECT_EQ(session.state().settings.gain, 222);
  EXPECT_EQ(session.state().settings.offset, 33);
  EXPECT_EQ(session.state().settled, 0U);
}

TEST_F(LiveSessionTest, ControlsThatAreRefusedLeaveThoseOfBefore) {
  LiveSession session(options());
  session.start();
  sdk.forceResult("ASISetControlValue", 16, 2, 1);
  session.carryOut(ControlsRequest{40000, 222, 33});
  EXPECT_EQ(session.state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(noticeOf(session).substr(0, 33), "The camera refused the setting: A");
  EXPECT_EQ(session.state().settings.exposureUs, 20000);
  EXPECT_EQ(session.state().settled, 1U);
  EXPECT_GT(framesOf(session, 5), 0);
}

TEST_F(LiveSessionTest, FormatsAndBinsGoRound) {
  LiveSession session(options());
  session.start();
  EXPECT_EQ(session.state().layout.format, PixelFormat::Raw8);
  session.carryOut(NextFormatRequest{});
  EXPECT_EQ(session.state().layout.format, PixelFormat::Raw16);
  EXPECT_EQ(session.state().opening, 2U);
  framesOf(session, 4);
  EXPECT_EQ(session.frame().bytes().size(), 128000U);
  session.carryOut(NextBinRequest{});
  EXPECT_EQ(session.state().layout.width, 160);
  EXPECT_EQ(session.state().layout.format, PixelFormat::Raw16);
  framesOf(session, 4);
  EXPECT_EQ(session.frame().bytes().size(), 32000U);
  session.carryOut(NextFormatRequest{});
  session.carryOut(NextBinRequest{});
  EXPECT_EQ(session.state().layout.format, PixelFormat::Raw8);
  EXPECT_EQ(session.state().layout.width, 320);
}

TEST_F(LiveSessionTest, AFormatThatTheCameraRefusesLeavesTheOneOfBefore) {
  LiveSession session(options());
  session.start();
  sdk.forceResult("ASISetROIFormat", 8, 1, 1);
  session.carryOut(NextFormatRequest{});
  EXPECT_TRUE(session.isStreaming());
  EXPECT_EQ(session.state().layout.format, PixelFormat::Raw8);
  EXPECT_EQ(session.state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(noticeOf(session).substr(0, 28), "Colour One cannot be opened:");
}

TEST_F(LiveSessionTest, RecordsUntilItIsStopped) {
  LiveSession session(options());
  session.start();
  session.carryOut(ToggleRecordingRequest{});
  ASSERT_TRUE(session.state().recording);
  EXPECT_EQ(noticeOf(session).substr(0, 11), "Recording \"");
  const int frames = framesOf(session, 8);
  EXPECT_EQ(session.state().recording->frames, frames);
  const std::string name = session.state().recording->file;
  session.carryOut(ToggleRecordingRequest{});
  EXPECT_FALSE(session.state().recording);
  EXPECT_EQ(noticeOf(session),
            "Recorded " + std::to_string(frames) + " frames in \"" + name + "\".");
  const SerFile file(scratch.file(name));
  EXPECT_EQ(file.frameCount, frames);
  EXPECT_EQ(file.colorId, 8);
  EXPECT_EQ(file.instrument, "Colour One");
  EXPECT_EQ(file.unreadBytes, 0);
  EXPECT_GT(framesOf(session, 5), 0);
}

TEST_F(LiveSessionTest, NothingElseIsOpenedWhileItRecords) {
  LiveSession session(options());
  session.start();
  session.carryOut(ToggleRecordingRequest{});
  const std::vector<LiveRequest> requests = {RescanRequest{}, ChooseRequest{1}, NextFormatRequest{},
                                             NextBinRequest{}};
  for (const LiveRequest& request : requests) {
    session.carryOut(request);
    EXPECT_EQ(noticeOf(session), "Stop the recording first: press R.");
    EXPECT_EQ(session.state().opening, 1U);
  }
  session.carryOut(ControlsRequest{30000, 50, 5});  // these may change
  EXPECT_EQ(session.state().settings.gain, 50);
}

TEST_F(LiveSessionTest, ARecordingWithoutADirectoryIsRefused) {
  LiveOptions wrong = options();
  wrong.recordings = scratch.file("nothing");
  LiveSession session(wrong);
  session.start();
  session.carryOut(ToggleRecordingRequest{});
  EXPECT_FALSE(session.state().recording);
  EXPECT_EQ(session.state().notice.kind, NoticeKind::Error);
  EXPECT_GT(framesOf(session, 5), 0);
}

TEST_F(LiveSessionTest, AnUnpluggedCameraIsClosedAndItsRecordingKept) {
  LiveSession session(options());
  session.start();
  session.carryOut(ToggleRecordingRequest{});
  const int frames = framesOf(session, 5);
  sdk.set_plugged(0, 0);
  framesOf(session, 50);
  const LiveState& state = session.state();
  EXPECT_EQ(state.phase, LivePhase::Lost);
  EXPECT_EQ(state.cameraName, "Colour One");
  EXPECT_EQ(state.notice.kind, NoticeKind::Error);
  EXPECT_EQ(state.notice.text.substr(0, 30), "Colour One does not answer (AS");
  EXPECT_FALSE(session.isStreaming());
  EXPECT_EQ(sdk.invariants().devicesOpen, 0);
  ASSERT_EQ(recordings().size(), 1U);
  EXPECT_EQ(SerFile(recordings().front()).frameCount, frames);
}

TEST_F(LiveSessionTest, ACameraThatComesBackHasItsSettings) {
  LiveSession session(options());
  session.start();
  session.carryOut(NextFormatRequest{});
  session.carryOut(ControlsRequest{50000, 77, 8});
  sdk.set_plugged(0, 0);
  framesOf(session, 50);
  ASSERT_EQ(session.state().phase, LivePhase::Lost);

  session.carryOut(RescanRequest{});
  EXPECT_EQ(session.state().phase, LivePhase::Lost);
  EXPECT_EQ(noticeOf(session),
            "Colour One is not there; plug it in and press F5. Found: 1 camera.");
  EXPECT_EQ(session.state().cameraName, "Colour One");
  EXPECT_EQ(session.state().camera(), nullptr);

  sdk.set_plugged(0, 1);
  session.carryOut(RescanRequest{});
  EXPECT_EQ(session.state().phase, LivePhase::Streaming);
  EXPECT_EQ(session.state().cameraName, "Colour One");
  EXPECT_EQ(session.state().settings.exposureUs, 50000);
  EXPECT_EQ(session.state().settings.gain, 77);
  EXPECT_EQ(session.state().layout.format, PixelFormat::Raw16);
  EXPECT_GT(framesOf(session, 5), 0);
}

// As the environment of a program can ask for it, which has no hands to pull a cable.
TEST_F(LiveSessionTest, CablesArePulledAndPutInAtChosenCalls) {
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 4; plug 0 ASIGetNumOfConnectedCameras 3"), 1);
  EXPECT_EQ(sdk.command("plug 0 ASIGetVideoData"), 0);
  EXPECT_EQ(sdk.command("plug 0 ASIGetVideoData 1 1"), 0);
  LiveSession session(options());
  session.start();
  framesOf(session, 50);
  EXPECT_EQ(session.state().phase, LivePhase::Lost);
  session.carryOut(RescanRequest{});
  EXPECT_EQ(session.state().cameras.size(), 1U);
  session.carryOut(RescanRequest{});
  EXPECT_EQ(session.state().cameras.size(), 2U);
  EXPECT_EQ(session.state().phase, LivePhase::Streaming);
}

TEST_F(LiveSessionTest, OfTwoOfAKindTheOneOfBeforeIsOpenedAgain) {
  SimCamera twin = colourCamera();
  twin.id = 8;
  sdk.setCameras({colourCamera(), twin});
  LiveSession session(options("1"));
  session.start();
  session.carryOut(RescanRequest{});
  EXPECT_EQ(session.state().chosen, 1U);
  sdk.set_plugged(0, 0);
  session.carryOut(RescanRequest{});
  EXPECT_EQ(session.state().chosen, 0U);
  EXPECT_TRUE(session.isStreaming());
}

TEST_F(LiveSessionTest, WhenItsCameraIsGoneAnotherCanBeChosen) {
  LiveSession session(options());
  session.start();
  sdk.set_plugged(0, 0);
  framesOf(session, 50);
  session.carryOut(RescanRequest{});
  session.carryOut(ChooseRequest{0});
  EXPECT_EQ(session.state().cameraName, "Mono Two");
  EXPECT_EQ(session.state().settings.gain, 100);
  EXPECT_GT(framesOf(session, 5), 0);
}

TEST_F(LiveSessionTest, ASingleFailureIsNoEnd) {
  LiveSession session(options());
  session.start();
  sdk.forceResult("ASIGetVideoData", 5, 2, 3);
  EXPECT_GT(framesOf(session, 10), 3);
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
  session.carryOut(ToggleRecordingRequest{});
  const int frames = framesOf(session, 5);
  session.stop();
  EXPECT_EQ(sdk.invariants().devicesOpen, 0);
  EXPECT_EQ(sdk.invariants().streamsRunning, 0);
  ASSERT_EQ(recordings().size(), 1U);
  const SerFile file(recordings().front());
  EXPECT_EQ(file.frameCount, frames);
  EXPECT_EQ(file.timeStamps.size(), static_cast<std::size_t>(frames));
}

}  // namespace

}  // namespace orvane::testing
