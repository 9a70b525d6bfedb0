// The recorder's thread, with a scripted camera.
#include "session/ser_recorder.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <numeric>
#include <optional>

#include "cpp_face/scripted_library.hpp"
#include "failure.hpp"
#include "formats/ser_time.hpp"
#include "scratch_directory.hpp"
#include "ser_file.hpp"

namespace orvane::host {

namespace {

using orvane::testing::ScratchDirectory;
using orvane::testing::script;
using orvane::testing::SerFile;

constexpr std::chrono::milliseconds longTime{20000};
const SerDescription smallFrames{{4, 2, PixelFormat::Raw8, BayerPattern::Grbg}, "", "", "", 0, 0};

class SerRecorderTest : public ::testing::Test {
 protected:
  // The camera sends `toSend_` frames. Each byte of frame n is n.
  SerRecorderTest() {
    script().read = [this](std::uint8_t* buffer, int size) -> int {
      if (sent_ == toSend_) {
        return atEnd_;
      }
      std::memset(buffer, sent_++, static_cast<std::size_t>(size));
      return size;
    };
    capture_.emplace(oc::CaptureOptions{.failures = 1}, testing::scriptedLibrary());
  }

  oc::FrameQueue send(int frames, std::size_t capacity, std::uint64_t most = 0) {
    oc::FrameQueue queue = capture_->frames(oc::Delivery::Every, capacity, most);
    toSend_ = frames;
    capture_->open(oc::parseCameraInfo(0, testing::infoText(0, "a")), {.exposureUs = 1}).get();
    return queue;
  }

  void waitForFrames() const {
    const auto count = static_cast<std::uint64_t>(toSend_.load());
    while (capture_->state().frames < count) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.file("recording.ser");
  std::atomic<int> toSend_{0};
  std::atomic<int> sent_{0};
  std::atomic<int> atEnd_{0};  // what the camera answers then
  std::optional<oc::CaptureThread> capture_;
};

TEST(RecordingCapacity, IsAtLeastThreeFramesAndTheOneInWork) {
  EXPECT_EQ(recordingCapacity(1, 1000), 4U);
  EXPECT_EQ(recordingCapacity(10'500, 1000), 11U);
}

TEST_F(SerRecorderTest, ChangesCopiesOfFramesThatOthersUse) {
  FrameCorrection correction;
  correction.region = Region{1, 1, 2, 1};
  for (const bool sharesFrames : {true, false}) {
    const std::filesystem::path file = scratch.file(sharesFrames ? "shared.ser" : "own.ser");
    std::atomic<bool> hasSent = false;
    script().read = [&](std::uint8_t* buffer, int size) -> int {
      if (hasSent.exchange(true)) {
        return 0;
      }
      std::iota(buffer, buffer + size, std::uint8_t{1});
      return size;
    };
    oc::FrameQueue queue = send(0, 4);
    SerRecorder recorder(file, {{2, 1, PixelFormat::Raw8, BayerPattern::None}, "", "", "", 0, 0},
                         correction, std::move(queue), {.sharesFrames = sharesFrames});
    while (recorder.writtenFrames() < 1) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    recorder.stop();
    ASSERT_TRUE(recorder.waitForEnd(longTime));
    recorder.requireSuccess();
    EXPECT_EQ(SerFile(file).frames.front(), (std::vector<std::uint8_t>{6, 7}));
    const oc::Frame& last = recorder.lastFrame();
    EXPECT_EQ(last.data()[0], sharesFrames ? 1 : 6);
    capture_->close().get();
  }
}

TEST_F(SerRecorderTest, TheTimesGoOnByTheSteadyClock) {
  // So many that the two clocks are not read at once for all of them.
  constexpr int count = 5000;
  oc::FrameQueue watched = capture_->frames(oc::Delivery::Every, count);
  SerRecorder recorder(path, smallFrames, {}, send(count, count), {.sharesFrames = true});
  waitForFrames();
  recorder.stop();
  ASSERT_TRUE(recorder.waitForEnd(longTime));
  const SerFile file(path);
  ASSERT_EQ(file.timeStamps.size(), std::size_t{count});
  const oc::Frame first = watched.next(longTime);
  for (std::size_t number = 1; number < count; ++number) {
    const std::chrono::nanoseconds after = watched.next(longTime).arrival() - first.arrival();
    const std::int64_t ticks = file.timeStamps[number] - file.timeStamps.front();
    EXPECT_LE(std::abs(ticks - after.count() / 100), 1) << number;
  }
}

TEST_F(SerRecorderTest, WritesWhatItTakesAndCountsWhatItDrops) {
  constexpr int count = 60;
  const auto before = serTicks(std::chrono::system_clock::now());
  oc::FrameQueue queue = send(count, recordingCapacity(1, 8));
  const oc::Frame held = queue.next(longTime);  // keeps one place of the queue
  waitForFrames();
  SerRecorder recorder(path, smallFrames, {}, std::move(queue));
  EXPECT_EQ(recorder.queue().capacity(), 4U);
  recorder.stop();
  ASSERT_TRUE(recorder.waitForEnd(longTime));
  recorder.requireSuccess();
  EXPECT_EQ(recorder.acceptedFrames(), 3);
  EXPECT_EQ(recorder.writtenFrames(), 3);
  EXPECT_EQ(recorder.queue().dropped(), 56U);
  EXPECT_EQ(recorder.droppedFrames(), 0);  // none since the recording began

  const SerFile file(path);
  ASSERT_EQ(file.frames.size(), 3U);
  for (std::size_t frame = 0; frame < 3; ++frame) {
    EXPECT_EQ(file.frames[frame],
              std::vector<std::uint8_t>(8, static_cast<std::uint8_t>(frame + 1)));
    EXPECT_GE(file.timeStamps.at(frame), before);
  }
  EXPECT_EQ(recorder.lastFrame().number(), 3U);
}

TEST_F(SerRecorderTest, CountsWhatIsDroppedWhileItRecords) {
  oc::FrameQueue queue = send(0, 1);
  std::optional<oc::Frame> held;
  toSend_ = 1;
  held = queue.next(longTime);
  SerRecorder recorder(path, smallFrames, {}, std::move(queue));
  toSend_ = 11;
  waitForFrames();
  EXPECT_EQ(recorder.droppedFrames(), 10);
  held.reset();
  toSend_ = 12;
  waitForFrames();
  recorder.stop();
  ASSERT_TRUE(recorder.waitForEnd(longTime));
  EXPECT_EQ(recorder.acceptedFrames(), 1);
  EXPECT_EQ(recorder.droppedFrames(), 10);
  EXPECT_EQ(SerFile(path).frames.at(0).at(0), 11);
}

TEST_F(SerRecorderTest, EndsByItselfWithTheFramesThatWereAskedFor) {
  constexpr int count = 40;
  SerRecorder recorder(path, smallFrames, {}, send(2 * count, count + 1, count));
  ASSERT_TRUE(recorder.waitForEnd(longTime));
  recorder.requireSuccess();
  EXPECT_EQ(recorder.droppedFrames(), 0);
  const SerFile file(path);
  ASSERT_EQ(file.frameCount, count);
  for (std::size_t frame = 0; frame < count; ++frame) {
    EXPECT_EQ(file.frames.at(frame).at(0), frame);
  }
}

TEST_F(SerRecorderTest, CorrectsFrames) {
  script().read = [](std::uint8_t* buffer, int size) {
    std::memset(buffer, 1, static_cast<std::size_t>(size / 2));
    std::memset(buffer + size / 2, 2, static_cast<std::size_t>(size / 2));
    return size;
  };
  SerRecorder recorder(path, smallFrames, {true, false, {}}, send(1, 4, 1));
  ASSERT_TRUE(recorder.waitForEnd(longTime));
  EXPECT_EQ(SerFile(path).frames.at(0), (std::vector<std::uint8_t>{2, 2, 2, 2, 1, 1, 1, 1}));
}

TEST_F(SerRecorderTest, TheDestructorFinishesTheFile) {
  {
    const SerRecorder recorder(path, smallFrames, {}, send(2, 4));
    waitForFrames();
  }
  const SerFile file(path);
  EXPECT_EQ(file.frameCount, 2);
  EXPECT_EQ(file.timeStamps.size(), 2U);
  EXPECT_EQ(file.unreadBytes, 0);
}

TEST_F(SerRecorderTest, TellsWhatFailedAndKeepsTheFramesBefore) {
  atEnd_ = 7;  // the frame has a byte less
  SerRecorder recorder(path, smallFrames, {}, send(1, 4));
  ASSERT_TRUE(recorder.waitForEnd(longTime));
  EXPECT_THROW(recorder.requireSuccess(), std::runtime_error);
  EXPECT_EQ(recorder.writtenFrames(), 1);
  EXPECT_EQ(SerFile(path).frameCount, 1);
}

TEST_F(SerRecorderTest, ALostCameraEndsItAfterTheFramesBefore) {
  script().error = "ASIGetVideoData: 5";
  atEnd_ = -1;
  SerRecorder recorder(path, smallFrames, {}, send(3, 4));
  ASSERT_TRUE(recorder.waitForEnd(longTime));
  EXPECT_EQ(testing::failureOf<oc::Error>([&] { recorder.requireSuccess(); }),
            "ASIGetVideoData: 5");
  const SerFile file(path);
  EXPECT_EQ(file.frameCount, 3);
  EXPECT_EQ(file.timeStamps.size(), 3U);
}

}  // namespace

}  // namespace orvane::host
