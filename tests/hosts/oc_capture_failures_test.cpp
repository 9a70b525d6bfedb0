// "oc_capture record" where something goes wrong: the file stays valid, the camera is closed, and
// the message and the exit status tell.
#include <chrono>
#include <thread>

#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

class OcCaptureFailure : public OcCaptureTest {
 protected:
  OcCaptureFailure() { sdks.add("ASICamera2"); }

  std::vector<std::string> smallFrames(const std::vector<std::string>& more) const {
    std::vector<std::string> arguments = recordArguments({"--width", "64", "--height", "48"});
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  std::string logCommand() const { return "log " + utf8(scratch.file("calls")); }

  void expectCameraClosed() const {
    const std::string calls = contentOf(scratch.file("calls"));
    EXPECT_LT(calls.rfind("ASIStopVideoCapture(0) = 0"), calls.rfind("ASICloseCamera(0) = 0"))
        << calls;
    EXPECT_GT(calls.rfind("ASICloseCamera(0) = 0"), calls.rfind("ASIGetVideoData")) << calls;
  }

  void expectValidRecording(int frames) const {
    const SerFile file(recording());
    EXPECT_EQ(file.frameCount, frames);
    EXPECT_EQ(file.timeStamps.size(), static_cast<std::size_t>(frames));
    EXPECT_EQ(file.unreadBytes, 0);
  }
};

// The last line on standard error.
std::string lastLine(const std::string& text) {
  const std::size_t end = text.find_last_not_of('\n') + 1;
  const std::size_t start = text.find_last_of('\n', end - 1) + 1;
  return text.substr(start, end - start);
}

TEST_F(OcCaptureFailure, ACameraThatFailsInTheMiddle) {
  const ProgramResult result =
      run(smallFrames({"--frames", "20"}),
          "clock stopped; seed 5; force ASIGetVideoData 6 -1 5; " + logCommand());
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(lastLine(result.err), "oc_capture: ASIGetVideoData: 5");
  EXPECT_EQ(result.out, "");
  expectValidRecording(5);
  expectCameraClosed();
}

TEST_F(OcCaptureFailure, ACameraThatIsUnpluggedInTheMiddle) {
  const ProgramResult result =
      run(smallFrames({"--frames", "20"}), "clock stopped; unplug 0 ASIGetVideoData 3");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(lastLine(result.err), "oc_capture: ASIGetVideoData: 5");
  expectValidRecording(2);
}

TEST_F(OcCaptureFailure, ACameraThatFallsSilent) {
  // One missed frame is no failure; a camera that sends no more is one, after a while.
  const ProgramResult result =
      run(smallFrames({"--frames", "20", "--exposure", "1ms"}),
          "clock stopped; force ASIGetVideoData 2 1 11; force ASIGetVideoData 4 -1 11; " +
              logCommand());
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(lastLine(result.err),
            "oc_capture: The camera has sent no frame for 5 waits of 502 ms.");
  expectValidRecording(2);
  expectCameraClosed();
}

TEST_F(OcCaptureFailure, ACameraThatSendsNothingBeforeTheEnd) {
  const ProgramResult result =
      run(smallFrames({"--seconds", "0.1"}), "clock stopped; force ASIGetVideoData 1 -1 11");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(lastLine(result.err), "oc_capture: No frame came before the recording's end.");
  expectValidRecording(0);
  EXPECT_FALSE(std::filesystem::exists(preview()));
}

TEST_F(OcCaptureFailure, ACameraThatCannotBeOpened) {
  // The scan opens each of the four cameras once.
  const ProgramResult result = run(smallFrames({}), "force ASIOpenCamera 5 1 16");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "oc_capture: ASIOpenCamera: 16\n");
  EXPECT_FALSE(std::filesystem::exists(recording()));
}

TEST_F(OcCaptureFailure, AScanThatFailsForOtherCamerasOnly) {
  const ProgramResult result =
      run(smallFrames({"--frames", "2"}), "clock stopped; force ASIGetCameraProperty 2 1 16");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err.rfind("oc_capture: ASIGetCameraProperty: 16\n", 0), 0U) << result.err;
  expectValidRecording(2);
}

TEST_F(OcCaptureFailure, NoCameraAtAll) {
  const ProgramResult result =
      run(smallFrames({}), "output ASIGetNumOfConnectedCameras result 1 -1 0");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "oc_capture: No camera was found.\n");
  EXPECT_FALSE(std::filesystem::exists(recording()));
}

TEST_F(OcCaptureFailure, AFileThatCannotBeCreated) {
  std::filesystem::create_directory(recording());
  const ProgramResult result = run(smallFrames({"--overwrite"}), "clock stopped; " + logCommand());
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err.rfind("oc_capture: Cannot create \"" + utf8(recording()) + "\": ", 0), 0U)
      << result.err;
  const std::string calls = contentOf(scratch.file("calls"));
  EXPECT_GT(calls.rfind("ASICloseCamera(0)"), calls.rfind("ASIStartVideoCapture(0)")) << calls;
}

TEST_F(OcCaptureFailure, APreviewThatCannotBeWritten) {
  std::filesystem::create_directory(preview());
  const ProgramResult result = run(smallFrames({"--frames", "2"}));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(
      lastLine(result.err).rfind("oc_capture: Cannot create \"" + utf8(preview()) + "\": ", 0), 0U)
      << result.err;
  expectValidRecording(2);
}

#ifndef _WIN32

constexpr int frameSize = 64 * 48;
constexpr int headerSize = 178;

TEST_F(OcCaptureFailure, ADiskThatIsFullInTheMiddleOfAFrame) {
  ProgramStart limited =
      start(smallFrames({"--frames", "20"}), "clock stopped; seed 5; " + logCommand());
  limited.largestFile = headerSize + 4 * frameSize + frameSize / 2;
  const ProgramResult result = runProgram(limited);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(lastLine(result.err).rfind("oc_capture: Cannot write \"" + utf8(recording()), 0), 0U)
      << result.err;
  expectValidRecording(4);  // the time stamps had room where the frame had begun
  expectCameraClosed();
}

TEST_F(OcCaptureFailure, ADiskWithoutRoomForTheTimeStamps) {
  ProgramStart limited = start(smallFrames({"--frames", "4"}));
  limited.largestFile = headerSize + 4 * frameSize + 5;
  const ProgramResult result = runProgram(limited);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(lastLine(result.err).rfind("oc_capture: Cannot write \"" + utf8(recording()), 0), 0U)
      << result.err;
  const SerFile file(recording());
  EXPECT_EQ(file.frameCount, 4);
  EXPECT_TRUE(file.timeStamps.empty());
  EXPECT_EQ(file.unreadBytes, 0);
}

TEST_F(OcCaptureFailure, ADiskThatIsFullFromTheStart) {
  std::filesystem::create_symlink("/dev/full", recording());
  const ProgramResult result = run(smallFrames({"--overwrite"}), "clock stopped; " + logCommand());
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(lastLine(result.err),
            "oc_capture: Cannot write \"" + utf8(recording()) + "\": No space left on device");
  const std::string calls = contentOf(scratch.file("calls"));
  EXPECT_GT(calls.rfind("ASICloseCamera(0)"), calls.rfind("ASIStartVideoCapture(0)")) << calls;
}

#endif

TEST_F(OcCaptureFailure, CtrlCEndsTheRecordingWell) {
  ProgramStart interruptible =
      start(smallFrames({"--seconds", "120", "--exposure", "5ms"}), logCommand());
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
  const ProgramResult result = program.wait();
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.rfind("Recorded ", 0), 0U) << result.out;
  const SerFile file(recording());
  EXPECT_GT(file.frameCount, 0);
  EXPECT_EQ(file.timeStamps.size(), static_cast<std::size_t>(file.frameCount));
  EXPECT_EQ(file.unreadBytes, 0);
  EXPECT_TRUE(std::filesystem::exists(preview()));
  expectCameraClosed();
}

}  // namespace

}  // namespace orvane::testing
