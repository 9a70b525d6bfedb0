// Recording on a thread of its own.
#include "session/ser_recorder.hpp"

#include <gtest/gtest.h>

#include "scratch_directory.hpp"
#include "ser_file.hpp"

namespace orvane::host {

namespace {

using orvane::testing::ScratchDirectory;
using orvane::testing::SerFile;

constexpr int side = 1024;
constexpr std::size_t frameSize = std::size_t{side} * side;

class SerRecorderTest : public ::testing::Test {
 protected:
  SerDescription description() const {
    SerDescription description;
    description.layout = layout;
    return description;
  }

  // Offers frames as fast as possible; frame n begins with the byte n. Returns those taken.
  std::vector<int> offer(SerRecorder& recorder, int count) const {
    std::vector<int> taken;
    BufferedFrame frame{std::vector<std::uint8_t>(frameSize), frameSize, 0};
    for (int number = 0; number < count; ++number) {
      frame.buffer[0] = static_cast<std::uint8_t>(number);
      frame.size = frameSize;
      frame.time = number;
      if (recorder.take(frame)) {
        taken.push_back(number);
      }
    }
    return taken;
  }

  static void end(SerRecorder& recorder) {
    recorder.stop();
    while (!recorder.waitForEnd(std::chrono::milliseconds(100))) {
    }
  }

  const FrameLayout layout{side, side, PixelFormat::Raw8, BayerPattern::None};
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.file("recording.ser");
};

TEST_F(SerRecorderTest, WritesWhatItTakesAndCountsWhatItDrops) {
  constexpr int count = 60;
  SerRecorder recorder(path, description(), {layout, {}, frameSize, 1});
  EXPECT_EQ(recorder.queue().capacity(), 3U);  // however little memory is allowed
  const std::vector<int> taken = offer(recorder, count);
  end(recorder);
  recorder.requireSuccess();
  EXPECT_FALSE(recorder.hasFailed());
  EXPECT_EQ(recorder.droppedFrames(), count - static_cast<std::int64_t>(taken.size()));
  EXPECT_EQ(recorder.writtenFrames(), static_cast<std::int32_t>(taken.size()));

  const SerFile file(path);
  ASSERT_EQ(file.frames.size(), taken.size());
  for (std::size_t frame = 0; frame < taken.size(); ++frame) {
    EXPECT_EQ(file.frames[frame][0], taken[frame]);
    EXPECT_EQ(file.timeStamps.at(frame), taken[frame]);
  }
  EXPECT_EQ(recorder.lastFrame()[0], taken.back());
}

TEST_F(SerRecorderTest, DropsNothingThatHasRoomToWait) {
  constexpr int count = 40;
  SerRecorder recorder(path, description(),
                       {layout, {}, frameSize, std::int64_t{count} * std::int64_t{frameSize}});
  EXPECT_EQ(offer(recorder, count).size(), std::size_t{count});
  end(recorder);
  EXPECT_EQ(recorder.droppedFrames(), 0);
  EXPECT_EQ(SerFile(path).frameCount, count);
}

TEST_F(SerRecorderTest, FinishesTheFileWhereItGoesOutOfSight) {
  {
    SerRecorder recorder(path, description(), {layout, {}, frameSize, 1});
    EXPECT_EQ(offer(recorder, 2).size(), 2U);
  }
  const SerFile file(path);
  EXPECT_EQ(file.frameCount, 2);
  EXPECT_EQ(file.timeStamps.size(), 2U);
  EXPECT_EQ(file.unreadBytes, 0);
}

TEST_F(SerRecorderTest, TellsWhatFailedAndKeepsTheFramesBefore) {
  SerRecorder recorder(path, description(), {layout, {}, frameSize, 1});
  BufferedFrame whole{std::vector<std::uint8_t>(frameSize), frameSize, 1};
  BufferedFrame part{std::vector<std::uint8_t>(frameSize), frameSize - 1, 2};
  EXPECT_TRUE(recorder.take(whole));
  EXPECT_TRUE(recorder.take(part));
  end(recorder);
  EXPECT_TRUE(recorder.hasFailed());
  EXPECT_THROW(recorder.requireSuccess(), std::runtime_error);
  EXPECT_EQ(recorder.writtenFrames(), 1);
  EXPECT_EQ(SerFile(path).frameCount, 1);
}

}  // namespace

}  // namespace orvane::host
