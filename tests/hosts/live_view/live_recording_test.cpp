// Recordings that are started by a key: their names and their files.
#include "live_view/live_recording.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <numeric>
#include <thread>

#include "cpp_face/scripted_library.hpp"
#include "failure.hpp"
#include "scratch_directory.hpp"
#include "ser_file.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using orvane::testing::ScratchDirectory;
using orvane::testing::SerFile;

TEST(LiveRecording, ItsContentIsASentence) {
  EXPECT_EQ(contentText({"a.ser", 1}), "1 frame in \"a.ser\".");
  EXPECT_EQ(contentText({"a.ser", 0}), "no frame, so there is no file.");
  EXPECT_EQ(contentText({.file = "a.ser", .frames = 12, .droppedFrames = 3}),
            "12 frames in \"a.ser\". Dropped, since the disk did not keep up: 3.");
}

// The value of a key in a settings log.
std::string logged(const std::string& log, const std::string& key) {
  const std::size_t start = ("\n" + log).find("\n" + key + "=");
  if (start == std::string::npos) {
    return "no " + key;
  }
  const std::size_t value = start + key.size() + 1;
  return log.substr(value, log.find('\n', value) - value);
}

class LiveRecordingTest : public ::testing::Test {
 protected:
  // A camera that delivers this many frames of eight bytes.
  void open(int frames, std::uint64_t most = 0) {
    toSend = frames;
    testing::script().read = [this](std::uint8_t* buffer, int size) {
      std::iota(buffer, buffer + size, std::uint8_t{1});
      return toSend-- > 0 ? size : 0;
    };
    queue = capture.frames(oc::Delivery::Every, 4, most);
    capture
        .open(oc::parseCameraInfo(0, testing::infoText(0, "Camera: one")),
              {.exposureUs = 3000, .gain = 5})
        .get();
  }

  template <class Condition>
  static void waitFor(Condition condition) {
    while (!condition()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

  const ScratchDirectory scratch;
  std::atomic<int> toSend;
  oc::CaptureThread capture{{}, testing::scriptedLibrary()};
  oc::FrameQueue queue;
};

TEST_F(LiveRecordingTest, IsAValidFileWithALog) {
  open(2);
  RecordingWish wish;
  wish.observer = "Observer";
  wish.telescope = "Telescope";
  wish.target = "Jupiter";
  wish.filter = "R";
  LiveRecording recording(scratch.path(), wish, capture.state(), {"One", "Two"}, std::move(queue));
  waitFor([&] { return recording.progress().frames >= 2; });
  EXPECT_FALSE(recording.hasEnded());
  EXPECT_FALSE(recording.isLimitReached());
  EXPECT_FALSE(recording.timeLeft());
  recording.close(capture.state());
  EXPECT_TRUE(recording.hasEnded());
  const RecordingProgress progress = recording.progress(1);
  EXPECT_EQ(progress.frames, 2);
  EXPECT_EQ(progress.bytes, 16);
  EXPECT_EQ(progress.droppedFrames, 0);
  EXPECT_GE(progress.seconds, 0);
  ASSERT_TRUE(progress.freeBytes);
  EXPECT_GT(*progress.freeBytes, 0);
  EXPECT_NEAR(progress.secondsToFull.value_or(0), static_cast<double>(*progress.freeBytes) / 8, 1);
  EXPECT_FALSE(recording.progress().secondsToFull);  // the rate is not known
  EXPECT_FALSE(progress.secondsToLimit);
  EXPECT_EQ(progress.file.substr(progress.file.size() - 15), "Camera- one.ser");

  const SerFile file(scratch.file(progress.file));
  EXPECT_EQ(file.frameCount, 2);
  EXPECT_EQ(file.colorId, 9);
  EXPECT_EQ(file.instrument, "Camera: one");
  EXPECT_EQ(file.observer, "Observer");
  EXPECT_EQ(file.telescope, "Telescope");
  EXPECT_EQ(file.frames.at(1), (std::vector<std::uint8_t>{1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(file.timeStamps.size(), 2U);
  EXPECT_EQ(file.unreadBytes, 0);

  const std::string log =
      testing::contentOf(scratch.file(progress.file.substr(0, progress.file.size() - 4) + ".txt"));
  const std::pair<const char*, std::string> facts[] = {
      {"program", "live_view " ORVANE_VERSION},
      {"file", progress.file},
      {"camera", "Camera: one"},
      {"sdk", "One, Two"},
      {"observer", "Observer"},
      {"telescope", "Telescope"},
      {"target", "Jupiter"},
      {"filter", "R"},
      {"exposure_us", "3000"},
      {"gain", "5"},
      {"frames", "2"},
      {"dropped_frames", "0"},
      {"failed_reads", "0"},
      {"error", ""},
  };
  for (const auto& [key, value] : facts) {
    EXPECT_EQ(logged(log, key), value) << key;
  }
  EXPECT_LT(logged(log, "start_utc"), logged(log, "end_utc"));
}

TEST_F(LiveRecordingTest, ANameIsNotUsedTwice) {
  open(3);
  std::ofstream(scratch.file("Mars_R.txt")) << "of another recording";
  RecordingWish wish;
  wish.nameTemplate = "{target}_{filter}";
  wish.target = "Mars";
  wish.filter = "R";
  LiveRecording recording(scratch.path(), wish, capture.state(), {}, std::move(queue));
  EXPECT_EQ(recording.progress().file, "Mars_R_2.ser");
  recording.close(capture.state());
}

TEST_F(LiveRecordingTest, EndsAfterItsFrames) {
  open(10, 3);
  RecordingWish wish;
  wish.limit.frames = 3;
  LiveRecording recording(scratch.path(), wish, capture.state(), {}, std::move(queue));
  waitFor([&] { return recording.hasEnded(); });
  EXPECT_TRUE(recording.isLimitReached());
  EXPECT_EQ(recording.progress(2).secondsToLimit, 0);
  recording.close(capture.state());
  EXPECT_EQ(recording.progress().frames, 3);
}

TEST_F(LiveRecordingTest, EndsAfterItsTime) {
  open(1);
  RecordingWish wish;
  wish.limit.microseconds = 20000;
  LiveRecording recording(scratch.path(), wish, capture.state(), {}, std::move(queue));
  EXPECT_LE(recording.timeLeft(), std::chrono::milliseconds(20));
  EXPECT_LE(recording.progress().secondsToLimit.value_or(1), 0.02);
  waitFor([&] { return recording.isLimitReached(); });
  EXPECT_GE(recording.progress().seconds, 0.02);
  EXPECT_EQ(recording.progress().secondsToLimit, 0);
  recording.close(capture.state());
}

// The recording itself is kept.
TEST_F(LiveRecordingTest, ALogThatCannotBeWrittenIsAFailure) {
  open(1);
  RecordingWish wish;
  wish.nameTemplate = "a";
  LiveRecording recording(scratch.path(), wish, capture.state(), {}, std::move(queue));
  waitFor([&] { return recording.progress().frames == 1; });
  std::filesystem::create_directory(scratch.file("a.txt"));
  EXPECT_EQ(
      testing::failureOf([&] { recording.close(capture.state()); }),
      "Cannot create " + inQuotes(testing::utf8(scratch.file("a.txt"))) + ": it exists already");
  EXPECT_EQ(SerFile(scratch.file("a.ser")).frameCount, 1);
}

}  // namespace

}  // namespace orvane::host
