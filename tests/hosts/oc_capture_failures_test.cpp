// "oc_capture record" where something goes wrong: the file stays valid, the camera is closed, and
// the message and the exit status tell.
#include <chrono>
#include <nlohmann/json.hpp>
#include <thread>

#include "oc_capture_test.hpp"
#include "session/causes.hpp"

namespace orvane::testing {

namespace {

using nlohmann::ordered_json;

constexpr const char* noCamera = "No camera was found. The command \"list\" says what to check.";

class OcCaptureFailure : public OcCaptureAsiTest {
 protected:
  // Records frames of 64 x 48 pixels.
  ProgramStart smallFrames(const char* more, const std::string& simulator = stoppedClock) const {
    return start(
        {"record --camera 0 --width 64 --height 48 --sdk", sdks.path(), "--out", recording(), more},
        simulator);
  }

  // Expects status 1 and nothing on standard output. Returns the last line on standard error, with
  // its end.
  static std::string failureOf(const ProgramStart& start) {
    const ProgramResult result = runProgram(start);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    const std::size_t lineEnd = result.err.find_last_not_of('\n') + 1;
    return result.err.substr(result.err.find_last_of('\n', lineEnd - 1) + 1);
  }

  std::string logCommand() const { return "log " + utf8(scratch.file("calls")); }

  void expectCameraClosed() const {
    const std::string calls = contentOf(scratch.file("calls"));
    EXPECT_LT(calls.rfind("ASIStopVideoCapture(0) = 0"), calls.rfind("ASICloseCamera(0) = 0"))
        << calls;
    EXPECT_GT(calls.rfind("ASICloseCamera(0) = 0"), calls.rfind("ASIGetVideoData")) << calls;
  }

  // Expects a valid recording. Returns the number of its frames.
  int recordedFrames() const {
    const SerFile file(recording());
    EXPECT_EQ(file.timeStamps.size(), file.frames.size());
    EXPECT_EQ(file.unreadBytes, 0);
    return file.frameCount;
  }

  // The camera was closed after its stream had started.
  void expectClosedAfterStart() const {
    const std::string calls = contentOf(scratch.file("calls"));
    EXPECT_GT(calls.rfind("ASICloseCamera(0)"), calls.rfind("ASIStartVideoCapture(0)")) << calls;
  }
};

TEST_F(OcCaptureFailure, ACameraThatFailsInTheMiddle) {
  EXPECT_EQ(failureOf(smallFrames("--frames 20",
                                  "clock stopped; force ASIGetVideoData 6 -1 5; " + logCommand())),
            errorText("ASIGetVideoData: 5"));
  EXPECT_EQ(recordedFrames(), 5);
  expectCameraClosed();
}

TEST_F(OcCaptureFailure, ACameraThatIsUnpluggedInTheMiddle) {
  EXPECT_EQ(failureOf(smallFrames("--frames 20", "clock stopped; unplug 0 ASIGetVideoData 3")),
            errorText("ASIGetVideoData: 5"));
  EXPECT_EQ(recordedFrames(), 2);
}

TEST_F(OcCaptureFailure, ACameraThatFallsSilent) {
  // One missed frame is no failure; a camera that sends no more is one, after a while.
  const std::string silence =
      "clock stopped; force ASIGetVideoData 2 1 11; force ASIGetVideoData 4 -1 11; ";
  EXPECT_EQ(failureOf(smallFrames("--frames 20 --exposure 1ms", silence + logCommand())),
            errorText("The camera has sent no frame for 5 waits of 502 ms."));
  EXPECT_EQ(recordedFrames(), 2);
  expectCameraClosed();
}

TEST_F(OcCaptureFailure, ACameraThatSendsNothingBeforeTheEnd) {
  EXPECT_EQ(failureOf(smallFrames("--seconds 0.1", "clock stopped; force ASIGetVideoData 1 -1 11")),
            errorText("No frame came before the recording's end."));
  EXPECT_FALSE(std::filesystem::exists(recording()));
  EXPECT_FALSE(std::filesystem::exists(preview()));
}

TEST_F(OcCaptureFailure, ACameraThatCannotBeOpened) {
  // The scan opens each of the four cameras once.
  expectFailure(runProgram(smallFrames("", "force ASIOpenCamera 5 1 16")), 1, "ASIOpenCamera: 16");
  EXPECT_FALSE(std::filesystem::exists(recording()));
}

// The keys of the document are those of a success. What is not known is null.
TEST_F(OcCaptureFailure, JsonTellsThatTheCameraCannotBeOpened) {
  const std::string error = "ASIOpenCamera: 16";
  const std::string picture = utf8(scratch.file("frame.png"));
  const std::pair<std::string, CommandLine> captures[] = {
      {"record", {"--frames 2 --no-preview --out", recording()}},
      {"snap", {"--out", picture}},
      {"watch", {"--frames 2"}}};
  for (const auto& [command, more] : captures) {
    SCOPED_TRACE(command);
    const CommandLine all{"--camera 0 --width 64 --height 48 --format raw16 --json --quiet", more};
    const auto keysOf = [](const ordered_json& document) {
      std::vector<std::string> keys;
      for (const auto& member : document.items()) {
        keys.push_back(member.key());
      }
      return keys;
    };
    const ProgramResult failed =
        runWithSdks(command.c_str(), all, "clock stopped; force ASIOpenCamera 5 1 16");
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.err, errorText(error));
    const auto document = ordered_json::parse(failed.out);
    expectMembers(document, {{"camera", "ZWO ASI120MC-S"},
                             {"width", nullptr},
                             {"height", nullptr},
                             {"format", "raw16"},
                             {"error", error},
                             {"explanation", host::explained(error)}});
    EXPECT_TRUE(document.value("file", ordered_json()).is_null());

    const ProgramResult empty =
        runWithSdks(command.c_str(), all, "output ASIGetNumOfConnectedCameras result 1 -1 0");
    EXPECT_EQ(empty.status, 1);
    const auto withoutCamera = ordered_json::parse(empty.out);
    expectMembers(
        withoutCamera,
        {{"camera", nullptr}, {"format", nullptr}, {"error", noCamera}, {"explanation", noCamera}});

    const auto success =
        ordered_json::parse(expectSuccess(runWithSdks(command.c_str(), all, stoppedClock)).out);
    expectMembers(success, {{"width", 64}, {"error", ""}, {"explanation", ""}});
    EXPECT_EQ(keysOf(document), keysOf(success));
    EXPECT_EQ(keysOf(withoutCamera), keysOf(success));
  }
}

TEST_F(OcCaptureFailure, JsonOfBenchTellsThatThereIsNoCamera) {
  const ProgramResult result =
      runWithSdks("bench", {"--json"}, "output ASIGetNumOfConnectedCameras result 1 -1 0");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, errorText(noCamera));
  expectMembers(ordered_json::parse(result.out),
                {{"measurements", ordered_json::array()}, {"chart", nullptr}, {"error", noCamera}});
}

TEST_F(OcCaptureFailure, AScanThatFailsForOtherCamerasOnly) {
  const ProgramResult result = expectSuccess(
      runProgram(smallFrames("--frames 2", "clock stopped; force ASIGetCameraProperty 2 1 16")));
  EXPECT_TRUE(result.err.starts_with(errorText("ASIGetCameraProperty: 16"))) << result.err;
  EXPECT_EQ(recordedFrames(), 2);
}

TEST_F(OcCaptureFailure, NoCameraAtAll) {
  expectFailure(runProgram(smallFrames("", "output ASIGetNumOfConnectedCameras result 1 -1 0")), 1,
                noCamera);
  EXPECT_FALSE(std::filesystem::exists(recording()));
}

TEST_F(OcCaptureFailure, AFileThatCannotBeCreated) {
  std::filesystem::create_directory(recording());
  const ProgramResult result =
      runProgram(smallFrames("--overwrite", "clock stopped; " + logCommand()));
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.err.starts_with("oc_capture: Cannot create \"" + utf8(recording()) + "\": "))
      << result.err;
  expectClosedAfterStart();
}

TEST_F(OcCaptureFailure, APreviewThatCannotBeWritten) {
  std::filesystem::create_directory(preview());
  const ProgramResult result = runProgram(smallFrames("--frames 2 --overwrite"));
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.out.starts_with("Recorded 2 frames ")) << result.out;
  EXPECT_PRED_FORMAT2(IsSubstring,
                      "oc_capture: Cannot create \"" + utf8(preview()) + "\": ", result.err);
  EXPECT_EQ(recordedFrames(), 2);
}

#ifndef _WIN32

constexpr int frameSize = 64 * 48;
constexpr int headerSize = 178;

TEST_F(OcCaptureFailure, ADiskThatIsFullInTheMiddleOfAFrame) {
  ProgramStart limited = smallFrames("--frames 20", "clock stopped; " + logCommand());
  limited.largestFile = headerSize + 4 * frameSize + frameSize / 2;
  const std::string failure = failureOf(limited);
  EXPECT_TRUE(failure.starts_with("oc_capture: Cannot write \"" + utf8(recording()))) << failure;
  EXPECT_EQ(recordedFrames(), 4);  // the time stamps had room where the frame had begun
  expectCameraClosed();
}

TEST_F(OcCaptureFailure, ADiskWithoutRoomForTheTimeStamps) {
  ProgramStart limited = smallFrames("--frames 4");
  limited.largestFile = headerSize + 4 * frameSize + 5;
  const std::string failure = failureOf(limited);
  EXPECT_TRUE(failure.starts_with("oc_capture: Cannot write \"" + utf8(recording()))) << failure;
  const SerFile file(recording());
  EXPECT_EQ(file.frameCount, 4);
  EXPECT_TRUE(file.timeStamps.empty());
  EXPECT_EQ(file.unreadBytes, 0);
}

TEST_F(OcCaptureFailure, ADiskThatIsFullFromTheStart) {
  ProgramStart limited = smallFrames("");
  limited.largestFile = headerSize + frameSize / 2;
  EXPECT_EQ(failureOf(limited),
            errorText("Cannot write \"" + utf8(recording()) + "\": File too large"));
  EXPECT_FALSE(std::filesystem::exists(recording()));
}

#endif

TEST_F(OcCaptureFailure, CtrlCEndsTheRecordingWell) {
  ProgramStart interruptible = smallFrames("--seconds 120 --exposure 5ms", logCommand());
  interruptible.mayBeInterrupted = true;
  Program program(interruptible);
  const auto hasBegun = [&] {
    std::error_code ignored;
    return std::filesystem::file_size(recording(), ignored) > 10000 && !ignored;
  };
  while (program.isRunning() && !hasBegun()) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  program.interrupt();
  const ProgramResult result = expectSuccess(program.wait());
  EXPECT_TRUE(result.out.starts_with("Recorded ")) << result.out;
  EXPECT_GT(recordedFrames(), 0);
  EXPECT_TRUE(std::filesystem::exists(preview()));
  expectCameraClosed();
}

}  // namespace

}  // namespace orvane::testing
