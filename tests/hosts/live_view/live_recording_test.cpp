// Recordings that are started by a key: their names and their files.
#include "live_view/live_recording.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <iomanip>
#include <numeric>
#include <sstream>

#include "cpp_face/scripted_library.hpp"
#include "scratch_directory.hpp"
#include "ser_file.hpp"

namespace orvane::host {

namespace {

using orvane::testing::ScratchDirectory;
using orvane::testing::SerFile;

TEST(RecordingName, IsTheTimeAndTheCamera) {
  std::tm time = {};
  std::istringstream("2026-11-01 20:05:09") >> std::get_time(&time, "%Y-%m-%d %H:%M:%S");
  const std::string longest(59, 'x');
  const std::pair<std::string, std::string> names[] = {
      {"ZWO ASI294MC Pro", "ZWO ASI294MC Pro"},
      {"a<b>c:d\"e/f\\g|h?i*j\nk", "a-b-c-d-e-f-g-h-i-j-k"},  // file systems refuse these
      {longest + "\u00e9\u00e9", longest},                    // cut between two characters
  };
  for (const auto& [camera, name] : names) {
    EXPECT_EQ(recordingName(time, camera), "2026-11-01_20-05-09_" + name + ".ser");
  }
}

TEST(UnusedPath, IsNumberedWhereThereIsAFile) {
  const ScratchDirectory scratch;
  EXPECT_EQ(unusedPath(scratch.path(), "a.ser"), scratch.path() / "a.ser");
  std::ofstream(scratch.file("a.ser")) << "1";
  EXPECT_EQ(unusedPath(scratch.path(), "a.ser"), scratch.path() / "a_2.ser");
  std::ofstream(scratch.file("a_2.ser")) << "2";
  EXPECT_EQ(unusedPath(scratch.path(), "a.ser"), scratch.path() / "a_3.ser");
}

TEST(LiveRecording, ItsContentIsASentence) {
  EXPECT_EQ(contentText({"a.ser", 1}), "1 frame in \"a.ser\".");
  EXPECT_EQ(contentText({"a.ser", 0}), "no frame, so there is no file.");
  EXPECT_EQ(contentText({.file = "a.ser", .frames = 12, .droppedFrames = 3}),
            "12 frames in \"a.ser\". Dropped, since the disk did not keep up: 3.");
}

TEST(LiveRecording, IsAValidFile) {
  const ScratchDirectory scratch;
  oc::CameraInfo camera = oc::parseCameraInfo(0, testing::infoText(0, "Camera: one"));
  std::atomic<int> toSend = 2;
  testing::script().read = [&](std::uint8_t* buffer, int size) {
    std::iota(buffer, buffer + size, std::uint8_t{1});
    return toSend-- > 0 ? size : 0;
  };
  oc::CaptureThread capture({}, testing::scriptedLibrary());
  oc::FrameQueue frames = capture.frames(oc::Delivery::Every, 4);
  capture.open(camera, {}).get();
  LiveRecording recording(scratch.path(), camera, capture.state().layout, std::move(frames));
  while (recording.progress().frames < 2) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_FALSE(recording.hasEnded());
  recording.close();
  EXPECT_TRUE(recording.hasEnded());
  const RecordingProgress progress = recording.progress();
  EXPECT_EQ(progress.frames, 2);
  EXPECT_EQ(progress.bytes, 16);
  EXPECT_EQ(progress.droppedFrames, 0);
  EXPECT_GE(progress.seconds, 0);
  EXPECT_EQ(progress.file.substr(progress.file.size() - 15), "Camera- one.ser");

  const SerFile file(scratch.file(progress.file));
  EXPECT_EQ(file.frameCount, 2);
  EXPECT_EQ(file.colorId, 9);
  EXPECT_EQ(file.instrument, "Camera: one");
  EXPECT_EQ(file.frames.at(1), (std::vector<std::uint8_t>{1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(file.timeStamps.size(), 2U);
  EXPECT_EQ(file.unreadBytes, 0);
}

}  // namespace

}  // namespace orvane::host
