// A live session with a simulated SDK.
#include "live_view/live_session.hpp"

#include <algorithm>
#include <optional>

#include "live_test.hpp"
#include "session/causes.hpp"
#include "system/text.hpp"

namespace orvane::testing {

namespace {

using namespace host;

class LiveSessionTest : public LiveTest {
 protected:
  void start(const std::string& camera = "Colour") { start(options(camera)); }
  void start(const LiveOptions& options) {
    session.emplace(options);
    run(&LiveSession::rescan);
  }

  void run(const LiveRequest& request) { session->run(request); }
  void choose(std::size_t position) {
    run([position](LiveSession& its) { its.choose(position); });
  }
  void setControls(const Controls& controls) {
    run([&](LiveSession& its) { its.setControls(controls); });
  }
  void setRegion(const std::optional<Region>& region) {
    run([&](LiveSession& its) { its.setRegion(region); });
  }
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
  choose(1);
  EXPECT_EQ(state().cameraName(), "Mono Two");
  choose(2);  // there is none
  EXPECT_EQ(state().cameraName(), "Mono Two");
  EXPECT_TRUE(session->isStreaming());
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
  run(&LiveSession::toggleRecording);
  EXPECT_EQ(notice(), "There is no camera to record from.");
  run(&LiveSession::nextFormat);
  run(&LiveSession::nextBin);
  setControls({1, 2, 3});
  EXPECT_EQ(state().phase, LivePhase::Idle);
  sdk.setCameras({colourCamera(), monoCamera()});
  run(&LiveSession::rescan);
  EXPECT_EQ(state().cameraName(), "Colour One");
  EXPECT_TRUE(session->isStreaming());
}

TEST_F(LiveSessionTest, TellsOfADirectoryThatIsNotThereOrHasNoSdks) {
  start(LiveOptions{utf8(scratch.file("nothing")), "", scratch.path()});
  EXPECT_EQ(state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(notice(), "There is no directory \"" + utf8(scratch.file("nothing")) + "\".");
  start(LiveOptions{utf8(scratch.path()), "", scratch.path()});
  EXPECT_EQ(notice(), "No SDK could be loaded from \"" + utf8(scratch.path()) +
                          "\". Shift+O chooses another folder.");
  EXPECT_TRUE(state().sdks.empty());
}

TEST_F(LiveSessionTest, AnotherDirectoryOfSdksIsUsed) {
  start(LiveOptions{utf8(scratch.path()), "", scratch.path()});
  run([&](LiveSession& its) { its.useSdkDirectory(directory.utf8()); });
  EXPECT_EQ(notice(), "Found 2 cameras.");
  EXPECT_FALSE(state().sdks.empty());
  EXPECT_EQ(pathFromUtf8(state().sdkDirectory), pathFromUtf8(directory.utf8()));
}

TEST_F(LiveSessionTest, TheCameraOfBeforeHasItsSettingsOfBefore) {
  LiveOptions known = options("");
  known.lastCamera = "Mono Two";
  known.knownSettings["Mono Two"] = {
      .bin = 2, .format = PixelFormat::Raw16, .exposureUs = 30000, .gain = 9999, .offset = 5};
  known.warning = "Something was damaged.";
  start(known);
  EXPECT_EQ(state().notice.kind, NoticeKind::Warning);
  EXPECT_EQ(notice(), "Something was damaged. Mono Two is streaming.");
  EXPECT_EQ(state().capture.layout.width, 160);
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw16);
  EXPECT_EQ(state().capture.settings.exposureUs, 30000);
  EXPECT_EQ(state().capture.settings.gain, 300);  // the largest
  EXPECT_EQ(state().capture.settings.offset, 5);
  setControls({30000, 20, 6});
  choose(0);
  EXPECT_EQ(state().capture.settings.gain, 100);
  choose(1);
  EXPECT_EQ(state().capture.settings.gain, 20);
  EXPECT_EQ(state().capture.settings.offset, 6);
}

TEST_F(LiveSessionTest, SettingsOfBeforeThatDoNotFitAreNotUsed) {
  sdk.forceResult("ASISetControlValue", 16, 1, 1);
  LiveOptions known = options();
  known.knownSettings["Colour One"] = {
      .bin = 99, .format = PixelFormat::Rgb24, .exposureUs = 30000, .gain = 5, .offset = 5};
  start(known);
  EXPECT_EQ(notice(), "Colour One is streaming.");  // with the usual ones
  EXPECT_EQ(state().capture.settings.exposureUs, 20000);
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw8);
}

// The other camera fails during the scan. The stream of the one that is opened is the newer news.
TEST_F(LiveSessionTest, WithoutANameTheOnlyCameraIsOpened) {
  sdk.forceResult("ASIGetCameraProperty", 5, 2);
  start("");
  EXPECT_EQ(state().cameras.size(), 1U);
  EXPECT_EQ(state().cameraName(), "Colour One");
}

TEST_F(LiveSessionTest, ControlsReachTheCamera) {
  start();
  setControls({40000, 222, 33});
  ASSERT_TRUE(soon([](const LiveState& now) { return now.capture.settings.gain == 222; }));
  EXPECT_EQ(state().capture.settings.exposureUs, 40000);
  EXPECT_EQ(state().capture.settings.offset, 33);
  EXPECT_EQ(state().capture.refusals, 0U);
  session.reset();
  const std::string log = sdk.takeLog();
  for (const std::string control : {"1, 40000", "0, 222", "5, 33"}) {
    EXPECT_NE(log.find("ASISetControlValue(3, " + control + ", 0) = 0"), std::string::npos) << log;
  }
}

// The camera refuses the second call after those of the opening.
TEST_F(LiveSessionTest, ControlsThatAreRefusedLeaveThoseOfBefore) {
  start();
  session.reset();
  const std::string opening = sdk.takeCallsOf("ASISetControlValue");
  const auto calls = static_cast<int>(std::ranges::count(opening, '\n'));
  sdk.forceResult("ASISetControlValue", 16, calls + 2, 1);
  start();
  setControls({40000, 222, 33});
  ASSERT_TRUE(soon([](const LiveState& now) { return now.capture.refusals == 1; }));
  EXPECT_EQ(state().notice.kind, NoticeKind::Error);
  const std::string refusal = "The camera refused the setting: ";
  EXPECT_EQ(notice(), refusal + explained(notice().substr(refusal.size(), 12)));
  EXPECT_EQ(notice().substr(refusal.size(), 12), "ASI gain: 16");
  EXPECT_EQ(state().capture.settings.exposureUs, 20000);
  EXPECT_EQ(state().capture.settings.gain, 100);
  EXPECT_TRUE(hasFrames(1));
  run(&LiveSession::nextBin);  // not with what was refused
  EXPECT_EQ(state().capture.settings.gain, 100);
  EXPECT_EQ(state().capture.layout.width, 160);
}

TEST_F(LiveSessionTest, FormatsAndBinsGoRound) {
  start();
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw8);
  run(&LiveSession::nextFormat);
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw16);
  EXPECT_EQ(state().capture.opening, 2U);
  EXPECT_EQ(frame().size(), 128000U);
  run(&LiveSession::nextBin);
  EXPECT_EQ(state().capture.layout.width, 160);
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw16);
  EXPECT_EQ(frame().size(), 32000U);
  run(&LiveSession::nextFormat);
  run(&LiveSession::nextBin);
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw8);
  EXPECT_EQ(state().capture.layout.width, 320);
}

TEST_F(LiveSessionTest, AFormatThatTheCameraRefusesLeavesTheOneOfBefore) {
  sdk.forceResult("ASISetROIFormat", 8, 2, 1);
  start();
  run(&LiveSession::nextFormat);
  EXPECT_TRUE(session->isStreaming());
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw8);
  EXPECT_EQ(state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(notice(), "Colour One does not change to raw16: " + explained("ASISetROIFormat: 8"));
}

TEST_F(LiveSessionTest, RecordsUntilItIsStopped) {
  start();
  run(&LiveSession::toggleRecording);
  ASSERT_TRUE(state().recording);
  EXPECT_EQ(notice().substr(0, 11), "Recording \"");
  EXPECT_TRUE(soon([](const LiveState& now) { return now.recording->frames > 5; }));
  const std::string name = state().recording->file;
  run(&LiveSession::toggleRecording);
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

TEST_F(LiveSessionTest, RecordsARegionAndShowsTheWholeFrame) {
  start();
  const BayerPattern whole = state().capture.layout.bayer;
  setRegion(Region{21, 10, 100, 60});
  EXPECT_EQ(state().region, (Region{21, 10, 100, 60}));
  EXPECT_EQ(notice(),
            "Recordings keep 100 x 60 at 21, 10. The camera reads the whole frame, which takes as "
            "long as before.");
  run([](LiveSession& its) { its.moveRegion({-1000, 1}); });
  EXPECT_EQ(state().region, (Region{0, 11, 100, 60}));
  run(&LiveSession::toggleRecording);
  EXPECT_TRUE(soon([](const LiveState& now) { return now.recording->frames > 3; }));
  const std::string name = state().recording->file;
  EXPECT_EQ(frame().size(), 64000U);
  setRegion(std::nullopt);  // not while it records
  EXPECT_EQ(notice(), "Stop the recording first: press R.");
  run(&LiveSession::toggleRecording);
  const SerFile file(scratch.file(name));
  EXPECT_EQ(file.width, 100);
  EXPECT_EQ(file.height, 60);
  EXPECT_EQ(file.frames.front().size(), 6000U);
  EXPECT_EQ(file.colorId, static_cast<int>(shiftedBayer(whole, 0, 11)));
  EXPECT_EQ(file.unreadBytes, 0);
}

TEST_F(LiveSessionTest, TheRegionEndsWithTheFrameThatItWasDrawnIn) {
  start();
  setRegion(Region{20, 10, 100, 60});
  run(&LiveSession::nextFormat);
  EXPECT_TRUE(state().region);  // the frame has the same size
  run(&LiveSession::nextBin);
  EXPECT_FALSE(state().region);
  setRegion(Region{20, 10, 100, 60});
  choose(1);
  EXPECT_FALSE(state().region);
}

TEST_F(LiveSessionTest, ARegionThatDoesNotFitIsNone) {
  start();
  setRegion(Region{300, 10, 100, 60});
  EXPECT_FALSE(state().region);
  setRegion(Region{0, 0, 320, 200});
  EXPECT_FALSE(state().region);
  EXPECT_EQ(notice(), "Recordings keep the whole frame.");
  run([](LiveSession& its) { its.moveRegion({1, 1}); });
  EXPECT_EQ(notice(), "There is no region: drag one with the right mouse button.");
}

TEST_F(LiveSessionTest, NothingElseIsOpenedWhileItRecords) {
  start();
  run(&LiveSession::toggleRecording);
  const std::vector<LiveRequest> requests = {&LiveSession::rescan,
                                             [](LiveSession& its) { its.choose(1); },
                                             &LiveSession::nextFormat, &LiveSession::nextBin};
  for (const LiveRequest& request : requests) {
    run(request);
    EXPECT_EQ(notice(), "Stop the recording first: press R.");
    EXPECT_EQ(state().capture.opening, 1U);
  }
  setControls({30000, 50, 5});  // these may change
  EXPECT_TRUE(soon([](const LiveState& now) { return now.capture.settings.gain == 50; }));
}

TEST_F(LiveSessionTest, ARecordingWithoutADirectoryIsRefused) {
  LiveOptions wrong = options();
  wrong.recordings = scratch.file("nothing");
  start(wrong);
  run(&LiveSession::toggleRecording);
  EXPECT_FALSE(state().recording);
  EXPECT_EQ(state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(notice(), "There is no folder \"" + utf8(scratch.file("nothing")) +
                          "\" for recordings. O chooses another one.");
  EXPECT_TRUE(hasFrames(1));
  run([&](LiveSession& its) { its.useRecordings(scratch.path()); });
  EXPECT_EQ(notice(), "Recordings go to \"" + utf8(scratch.path()) + "\" from now on.");
  run(&LiveSession::toggleRecording);
  EXPECT_TRUE(state().recording);
}

TEST_F(LiveSessionTest, ARecordingEndsAtItsLimit) {
  LiveOptions limited = options();
  limited.recording.limit.frames = 3;
  limited.recording.nameTemplate = "a";
  start(limited);
  run(&LiveSession::toggleRecording);
  EXPECT_FALSE(session->recordingTimeLeft());
  run(&LiveSession::nextLimit);
  EXPECT_EQ(state().limit, limited.recording.limit);  // not while it records
  ASSERT_TRUE(soon([](const LiveState& now) { return !now.recording; }));
  EXPECT_EQ(notice(), "The limit of 3 frames is reached. Recorded 3 frames in \"a.ser\".");
  EXPECT_EQ(state().notice.kind, NoticeKind::Information);
  EXPECT_EQ(SerFile(scratch.file("a.ser")).frameCount, 3);
  EXPECT_NE(contentOf(scratch.file("a.txt")).find("frames=3\n"), std::string::npos);

  run(&LiveSession::nextLimit);
  EXPECT_EQ(notice(), "Recordings end after 10 s.");
  run(&LiveSession::toggleRecording);
  EXPECT_LE(session->recordingTimeLeft(), std::chrono::seconds(10));
  run(&LiveSession::toggleRecording);
  EXPECT_EQ(notice().substr(0, 9), "Recorded ");
  while (state().limit != RecordingLimit()) {
    run(&LiveSession::nextLimit);
  }
  EXPECT_EQ(notice(), "Recordings run until they are stopped.");
}

TEST_F(LiveSessionTest, AnUnpluggedCameraIsClosedAndItsRecordingKept) {
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 20"), 1);
  start();
  run(&LiveSession::toggleRecording);
  ASSERT_TRUE(isLost());
  const LiveState& now = state();
  EXPECT_EQ(now.cameraName(), "Colour One");
  EXPECT_EQ(now.notice.kind, NoticeKind::Error);
  const std::string lost = "Colour One is lost: " + explained("ASIGetVideoData: 5") + " F5 scans.";
  EXPECT_EQ(now.notice.text.substr(0, lost.size()), lost);
  EXPECT_FALSE(session->isStreaming());
  EXPECT_EQ(sdk.invariants().devicesOpen, 0);
  const SerFile file(recording());
  EXPECT_GT(file.frameCount, 0);
  const std::string saved = "Recorded " + std::to_string(file.frameCount) + " frames in ";
  EXPECT_NE(now.notice.text.find("F5 scans. " + saved), std::string::npos) << now.notice.text;
  EXPECT_FALSE(now.recording);
}

// ORVANE_SIMULATOR takes the same commands, so a running program can be tested like this.
TEST_F(LiveSessionTest, ACameraThatComesBackHasItsSettings) {
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 60; plug 0 ASIGetNumOfConnectedCameras 3"), 1);
  EXPECT_EQ(sdk.command("plug 0 ASIGetVideoData"), 0);
  EXPECT_EQ(sdk.command("plug 0 ASIGetVideoData 1 1"), 0);
  start();
  setControls({50000, 77, 8});
  run(&LiveSession::nextFormat);  // with these settings, whether the camera has them or not
  EXPECT_EQ(state().capture.settings.gain, 77);
  ASSERT_TRUE(isLost());

  run(&LiveSession::rescan);
  EXPECT_EQ(state().phase, LivePhase::Lost);
  EXPECT_EQ(notice(), "Colour One is not there; plug it in and press F5. Found: 1 camera.");
  EXPECT_EQ(state().cameraName(), "Colour One");
  EXPECT_EQ(state().camera(), nullptr);

  run(&LiveSession::rescan);
  EXPECT_EQ(state().cameras.size(), 2U);
  EXPECT_EQ(state().phase, LivePhase::Streaming);
  EXPECT_EQ(state().cameraName(), "Colour One");
  EXPECT_EQ(state().capture.settings.exposureUs, 50000);
  EXPECT_EQ(state().capture.settings.gain, 77);
  EXPECT_EQ(state().capture.layout.format, PixelFormat::Raw16);
  EXPECT_TRUE(hasFrames(1));
}

TEST_F(LiveSessionTest, OfTwoOfAKindTheOneOfBeforeIsOpenedAgain) {
  SimCamera twin = colourCamera();
  twin.id = 8;
  sdk.setCameras({colourCamera(), twin});
  ASSERT_EQ(sdk.command("unplug 0 ASIGetNumOfConnectedCameras 3"), 1);
  start("1");
  run(&LiveSession::rescan);
  EXPECT_EQ(state().chosen, 1U);
  run(&LiveSession::rescan);
  EXPECT_EQ(state().chosen, 0U);
  EXPECT_TRUE(session->isStreaming());
}

TEST_F(LiveSessionTest, WhenItsCameraIsGoneAnotherCanBeChosen) {
  ASSERT_EQ(sdk.command("unplug 0 ASIGetVideoData 4"), 1);
  start();
  ASSERT_TRUE(isLost());
  run(&LiveSession::rescan);
  choose(0);
  EXPECT_EQ(state().cameraName(), "Mono Two");
  EXPECT_EQ(state().capture.settings.gain, 100);
  EXPECT_TRUE(hasFrames(1));
}

TEST_F(LiveSessionTest, ASingleFailureIsNoEnd) {
  sdk.forceResult("ASIGetVideoData", 5, 2, 3);
  start();
  EXPECT_TRUE(hasFrames(4));
  EXPECT_TRUE(session->isStreaming());
  EXPECT_EQ(notice(), "Colour One: " + explained("ASIGetVideoData: 5"));
  EXPECT_EQ(state().notice.kind, NoticeKind::Warning);
}

TEST_F(LiveSessionTest, ACameraThatIsInUseElsewhereIsNotOpened) {
  SimCamera busy = colourCamera();
  busy.isBusy = 1;
  sdk.setCameras({busy, monoCamera()});
  start();
  EXPECT_EQ(state().phase, LivePhase::Lost);
  EXPECT_EQ(notice(), "Colour One cannot be opened: " + explained("ASIOpenCamera: 16"));
}

TEST_F(LiveSessionTest, TellsWhatAScanMissed) {
  SimCamera third = monoCamera();
  third.id = 5;
  sdk.setCameras({colourCamera(), monoCamera(), third});
  sdk.forceResult("ASIGetCameraProperty", 5, 3);
  start("");
  EXPECT_EQ(state().notice.kind, NoticeKind::Error);
  EXPECT_EQ(notice(), "Found 2 cameras. Some failed:\n" + explained("ASIGetCameraProperty: 5"));
}

}  // namespace

}  // namespace orvane::testing
