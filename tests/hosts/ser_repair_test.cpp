// Recordings that were not finished: what is read of them, and what a repair makes of them.
#include "formats/ser_repair.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>

#include "formats/ser_writer.hpp"
#include "scratch_directory.hpp"
#include "ser_file.hpp"

namespace orvane::host {

namespace {

using orvane::testing::contentOf;
using orvane::testing::ScratchDirectory;
using orvane::testing::SerFile;
using Bytes = std::vector<std::uint8_t>;
using Times = std::vector<std::int64_t>;

constexpr std::int64_t firstTime = 638448448000000000;  // in the year 2024
constexpr std::size_t frameSize = 30;
constexpr std::size_t headerSize = 178;

SerDescription description() {
  SerDescription description;
  description.layout = {6, 5, PixelFormat::Raw8, BayerPattern::Grbg};
  description.observer = "Anna";
  description.startUtc = firstTime;
  return description;
}

Bytes frameOf(int number) {
  return Bytes(frameSize, static_cast<std::uint8_t>(number));
}

std::int64_t timeOf(int number) {
  return firstTime + 10000 * number;
}

std::string textOf(const Times& times) {
  std::string text;
  for (const std::int64_t time : times) {
    for (int byte = 0; byte < 8; ++byte) {
      text += static_cast<char>(static_cast<std::uint64_t>(time) >> (8 * byte) & 0xFFU);
    }
  }
  return text;
}

class SerRepairTest : public ::testing::Test {
 protected:
  // A recording of this many frames, finished.
  void record(int frames) const {
    SerWriter writer(path, description(), Existing::Replace);
    for (int frame = 0; frame < frames; ++frame) {
      writer.addFrame(frameOf(frame), timeOf(frame));
    }
  }

  // The files as a crash leaves them: `counted` of the frames are in the header.
  void crash(int counted, int frames) const {
    const auto copy = scratch.file("copy.ser");
    {
      SerWriter writer(copy, description(), Existing::Replace);
      for (int frame = 0; frame < frames; ++frame) {
        writer.addFrame(frameOf(frame), timeOf(frame));
        if (frame + 1 == counted) {
          writer.checkpoint();
        }
      }
      // Not copy_file(): Windows would ask for a file that nobody writes.
      rewrite(path, contentOf(copy));
      rewrite(journal(), contentOf(timeJournalOf(copy)));
    }
    std::filesystem::remove(copy);
  }

  static void rewrite(const std::filesystem::path& file, const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
  }

  void append(const std::string& bytes) const {
    std::ofstream(path, std::ios::binary | std::ios::app) << bytes;
  }

  void cutTo(std::size_t bytes) const { std::filesystem::resize_file(path, bytes); }

  void setCount(int frames) const {
    std::string content = contentOf(path);
    content[38] = static_cast<char>(frames);
    rewrite(path, content);
  }

  SerRepairFacts repair() const {
    const SerRepair recording(path);
    EXPECT_TRUE(recording.isNeeded());
    recording.write(repaired, Existing::Replace, [](std::int64_t, std::int64_t) {});
    return recording.facts();
  }

  // The repaired file has these frames, and the header of the old one but for their number.
  void expectRepaired(int frames, const Times& times) const {
    const SerFile file(repaired);
    ASSERT_EQ(file.frameCount, frames);
    for (int frame = 0; frame < frames; ++frame) {
      EXPECT_EQ(file.frames[static_cast<std::size_t>(frame)], frameOf(frame));
    }
    EXPECT_EQ(file.timeStamps, times);
    EXPECT_EQ(file.unreadBytes, 0);
    std::string header = contentOf(path).substr(0, headerSize);
    header[38] = static_cast<char>(frames);
    EXPECT_EQ(contentOf(repaired).substr(0, headerSize), header);
  }

  Times timesOf(int frames) const {
    Times times;
    for (int frame = 0; frame < frames; ++frame) {
      times.push_back(timeOf(frame));
    }
    return times;
  }

  std::filesystem::path journal() const { return timeJournalOf(path); }

  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.file("caf\u00e9.ser");
  const std::filesystem::path repaired = scratch.file("repaired.ser");
};

TEST_F(SerRepairTest, ARecordingAppearsWithItsFirstFrame) {
  SerWriter writer(path, description());
  EXPECT_FALSE(std::filesystem::exists(path));
  writer.addFrame(frameOf(0), timeOf(0));
  EXPECT_EQ(SerFile(path).frameCount, 1);
  EXPECT_EQ(contentOf(journal()), textOf({timeOf(0)}));
  writer.addFrame(frameOf(1), timeOf(1));
  EXPECT_EQ(contentOf(journal()), textOf({timeOf(0), timeOf(1)}));
  writer.close();
  EXPECT_FALSE(std::filesystem::exists(journal()));
  EXPECT_EQ(SerFile(path).timeStamps, timesOf(2));
}

TEST_F(SerRepairTest, WithoutAFrameAnOldRecordingStays) {
  rewrite(path, "old");
  rewrite(journal(), "times");
  SerWriter(path, description(), Existing::Replace).close();
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(contentOf(journal()), "times");
  const std::filesystem::directory_iterator files(scratch.path());
  EXPECT_EQ(std::distance(begin(files), end(files)), 2);
}

TEST_F(SerRepairTest, AJournalThatCannotBeWrittenIsNoFailure) {
  std::filesystem::create_directories(journal() / "in the way");
  record(3);
  EXPECT_EQ(SerFile(path).timeStamps, timesOf(3));
  EXPECT_TRUE(std::filesystem::is_directory(journal()));
}

TEST_F(SerRepairTest, AFileThatIsCutOffIsReadAsFarAsItGoes) {
  record(5);
  cutTo(headerSize + 3 * frameSize + 7);
  const SerReader reader(path);
  EXPECT_EQ(reader.facts().frames, 3);
  EXPECT_EQ(reader.facts().promisedFrames, 5);
  EXPECT_EQ(reader.facts().framesBehind, 0);
  EXPECT_EQ(reader.facts().unusedBytes, 7);
  EXPECT_TRUE(reader.facts().timeStamps.empty());
  EXPECT_TRUE(reader.facts().isDamaged());
  Bytes frame(frameSize);
  reader.readFrame(2, frame);
  EXPECT_EQ(frame, frameOf(2));
  EXPECT_THROW(reader.readFrame(3, frame), std::runtime_error);

  EXPECT_EQ(repair().cutBytes, 7);
  expectRepaired(3, {});
}

TEST_F(SerRepairTest, FramesBehindTheCountedOnesAreNoTimeStamps) {
  // Dark frames look like numbers of the size of times.
  crash(2, 9);
  std::string content = contentOf(path);
  std::fill(content.begin() + headerSize, content.end(), '\x08');
  rewrite(path, content);
  const SerReader reader(path);
  EXPECT_EQ(reader.facts().frames, 2);
  EXPECT_EQ(reader.facts().promisedFrames, 2);
  EXPECT_EQ(reader.facts().framesBehind, 7);
  EXPECT_EQ(reader.facts().unusedBytes, 0);
  EXPECT_TRUE(reader.facts().timeStamps.empty());
}

TEST_F(SerRepairTest, FramesAndTimeStampsBehindTheCountedOnes) {
  record(9);
  setCount(2);
  const SerReader reader(path);
  EXPECT_EQ(reader.facts().frames, 2);
  EXPECT_EQ(reader.facts().framesBehind, 7);
  EXPECT_EQ(reader.facts().timeStamps, timesOf(2));
  EXPECT_EQ(reader.trailer(), timesOf(9));
  EXPECT_EQ(repair().timedFrames, 9);
  expectRepaired(9, timesOf(9));
}

TEST_F(SerRepairTest, AHeaderThatCountsTooMany) {
  record(4);
  setCount(60);
  EXPECT_EQ(SerReader(path).facts().frames, 4);
  EXPECT_EQ(SerReader(path).facts().timeStamps, timesOf(4));
  const SerRepairFacts facts = repair();
  EXPECT_EQ(facts.promisedFrames, 60);
  EXPECT_EQ(facts.frames, 4);
  expectRepaired(4, timesOf(4));
}

TEST_F(SerRepairTest, ACrashCostsNothing) {
  crash(2, 9);
  const std::string before = contentOf(path);
  const SerRepairFacts facts = repair();
  EXPECT_EQ(facts.promisedFrames, 2);
  EXPECT_EQ(facts.frames, 9);
  EXPECT_EQ(facts.timedFrames, 9);
  EXPECT_EQ(facts.cutBytes, 0);
  expectRepaired(9, timesOf(9));
  EXPECT_EQ(contentOf(path), before);
  EXPECT_EQ(contentOf(journal()), textOf(timesOf(9)));
}

TEST_F(SerRepairTest, ACrashInTheMiddleOfAFrame) {
  crash(1, 3);
  cutTo(headerSize + 2 * frameSize + 29);  // the journal has the third frame's time
  EXPECT_EQ(repair().cutBytes, 29);
  expectRepaired(2, timesOf(2));
}

TEST_F(SerRepairTest, TimesThatAreUnknown) {
  crash(4, 4);
  // The first as a power failure leaves it, the third of another recording, the last one not whole.
  Times times = timesOf(4);
  times[0] = 0;
  times[2] = firstTime - 1000 * std::int64_t{24 * 60 * 60} * 10'000'000;
  rewrite(journal(), textOf(times).substr(0, 31));
  const SerRepairFacts facts = repair();
  EXPECT_EQ(facts.frames, 4);
  EXPECT_EQ(facts.timedFrames, 1);
  expectRepaired(4, {0, timeOf(1), 0, 0});
}

TEST_F(SerRepairTest, WithoutAnyTimeThereIsNoTrailer) {
  crash(1, 4);
  std::filesystem::remove(journal());
  EXPECT_EQ(repair().timedFrames, 0);
  expectRepaired(4, {});
}

TEST_F(SerRepairTest, ATrailerThatIsCutOff) {
  record(5);
  cutTo(headerSize + 5 * frameSize + 2 * 8 + 3);
  EXPECT_EQ(SerReader(path).facts().framesBehind, 0);
  const SerRepairFacts facts = repair();
  EXPECT_EQ(facts.frames, 5);
  EXPECT_EQ(facts.timedFrames, 2);
  expectRepaired(5, {timeOf(0), timeOf(1), 0, 0, 0});
}

TEST_F(SerRepairTest, AFullDiskAtTheEndLeavesTheTimesInTheJournal) {
  crash(5, 5);
  EXPECT_FALSE(SerReader(path).facts().isDamaged());
  EXPECT_EQ(repair().timedFrames, 5);
  expectRepaired(5, timesOf(5));
}

TEST_F(SerRepairTest, AWholeFileNeedsNone) {
  record(5);
  EXPECT_FALSE(SerRepair(path).isNeeded());
  append("data of another program");
  EXPECT_FALSE(SerRepair(path).isNeeded());
  // Time stamps are not required.
  record(5);
  cutTo(headerSize + 5 * frameSize);
  EXPECT_FALSE(SerRepair(path).isNeeded());
}

TEST_F(SerRepairTest, AnUnfinishedRepairLeavesNothing) {
  crash(2, 9);
  const SerRepair recording(path);
  EXPECT_THROW(recording.write(repaired, Existing::Refuse,
                               [](std::int64_t, std::int64_t) { throw std::runtime_error(""); }),
               std::runtime_error);
  EXPECT_FALSE(std::filesystem::exists(repaired));
  EXPECT_FALSE(std::filesystem::exists(temporaryName(repaired)));
}

}  // namespace

}  // namespace orvane::host
