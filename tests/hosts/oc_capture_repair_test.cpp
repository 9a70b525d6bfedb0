// "oc_capture repair", run as a program, on recordings of programs that were killed.
#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

constexpr std::size_t headerSize = 178;
constexpr std::size_t frameSize = 64 * 48;

class OcCaptureRepair : public OcCaptureAsiTest {
 protected:
  void recordSmall() const {
    expectSuccess(record({"--width 64 --height 48 --frames 6 --no-preview"}));
  }

  ProgramResult repair(const CommandLine& more = {}) const {
    return run({"repair", recording(), more});
  }

  // Waits until the recording has this many bytes.
  void waitForBytes(Program& program, std::uintmax_t bytes) const {
    const auto size = [&] {
      std::error_code error;
      const std::uintmax_t now = std::filesystem::file_size(recording(), error);
      return error ? 0 : now;
    };
    while (program.isRunning() && size() < bytes) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }

  ProgramStart longRecording(const CommandLine& more = {}) const {
    ProgramStart start =
        this->start({"record --camera 0 --width 64 --height 48 --exposure 5ms",
                     "--seconds 120 --sdk", sdks.path(), "--out", recording(), more},
                    "seed 5");
    start.outputDirectory = scratch.file("long");
    std::filesystem::create_directory(start.outputDirectory);
    return start;
  }

  std::string name() const { return "\"" + utf8(recording()) + "\""; }
  std::filesystem::path journal() const { return scratch.file("recording.ser.orvane-times"); }
  std::filesystem::path repaired() const { return scratch.file("recording-repaired.ser"); }
};

TEST_F(OcCaptureRepair, RecoversARecordingWhoseProgramWasKilled) {
  Program program(longRecording());
  waitForBytes(program, headerSize + 20 * frameSize);
  program.kill();
  EXPECT_NE(program.wait().status, 0);

  const std::string killed = contentOf(recording());
  const std::string times = contentOf(journal());
  const std::size_t frames = (killed.size() - headerSize) / frameSize;
  EXPECT_GE(frames, 20U);
  const ProgramResult result = expectSuccess(repair({"--json"}));
  expectMembers(nlohmann::ordered_json::parse(result.out),
                {{"file", utf8(recording())},
                 {"repaired", utf8(repaired())},
                 {"frames", frames},
                 {"timedFrames", frames},
                 {"cutBytes", killed.size() - headerSize - frames * frameSize}});

  const SerFile file(repaired());
  EXPECT_EQ(file.frames.size(), frames);
  EXPECT_EQ(file.timeStamps.size(), frames);
  EXPECT_EQ(file.unreadBytes, 0);
  EXPECT_TRUE(std::is_sorted(file.timeStamps.begin(), file.timeStamps.end()));
  EXPECT_GE(file.timeStamps.front(), file.startUtc);
  EXPECT_EQ(contentOf(repaired()).substr(headerSize, frames * frameSize),
            killed.substr(headerSize, frames * frameSize));
  EXPECT_EQ(contentOf(recording()), killed);
  EXPECT_EQ(contentOf(journal()), times);
  expectFailure(run({"repair", repaired()}), 2,
                "\"" + utf8(repaired()) + "\" is whole; there is nothing to repair.");

  // Nothing that the killed program has left is in the way.
  expectSuccess(record({"--width 64 --height 48 --frames 2 --overwrite"}));
  EXPECT_FALSE(std::filesystem::exists(journal()));
}

TEST_F(OcCaptureRepair, AFileThatIsBeingRecordedIsLeftAlone) {
  Program program(longRecording());
  waitForBytes(program, headerSize + 2 * frameSize);
  expectFailure(repair(), 2, name() + " is being recorded by another program.");
  const ProgramResult second =
      record({"--width 64 --height 48 --frames 2 --overwrite --quiet"}, stoppedClock);
  EXPECT_EQ(second.status, 1);
  EXPECT_EQ(second.err,
            "oc_capture: Cannot create " + name() + ": another program is writing it\n");
  EXPECT_EQ(run({"repair", recording(), "--overwrite --out", recording()}).status, 2);
  EXPECT_TRUE(program.isRunning());
  program.kill();
  program.wait();
}

TEST_F(OcCaptureRepair, TellsWhatItHasDone) {
  recordSmall();
  std::filesystem::resize_file(recording(), headerSize + 4 * frameSize + 5);
  const auto other = scratch.file("new.ser");
  const ProgramResult result = expectSuccess(repair({"--out", other}));
  EXPECT_EQ(result.out, "\"" + utf8(other) + "\" has 4 frames; the header of " + name() +
                            " counts 6.\n"
                            "No frame's time is known, so there are no time stamps.\n"
                            "5 bytes of a frame that was cut off are left out.\n");
  EXPECT_EQ(SerFile(other).frameCount, 4);
  expectFailure(repair({"--out", other}), 2,
                "\"" + utf8(other) + "\" exists already; name another file or add --overwrite.");
  EXPECT_EQ(expectSuccess(repair({"--quiet --overwrite --out", other})).out, "");

  // Two times are known.
  const std::int64_t start = SerFile(other).startUtc;
  std::ofstream(journal(), std::ios::binary)
      .write(reinterpret_cast<const char*>(&start), sizeof start)
      .write(reinterpret_cast<const char*>(&start), sizeof start);
  EXPECT_PRED_FORMAT2(
      IsSubstring, "The times of 2 frames are known; the other 2 have the time 0.\n", repair().out);
  EXPECT_EQ(SerFile(repaired()).timeStamps, (std::vector<std::int64_t>{start, start, 0, 0}));
}

TEST_F(OcCaptureRepair, RefusesWhatItCannotRepair) {
  expectFailure(repair(), 2, "There is no file " + name() + ".");
  recordSmall();
  expectFailure(repair(), 2, name() + " is whole; there is nothing to repair.");
  std::filesystem::resize_file(recording(), headerSize + 5);
  expectFailure(repair(), 2, name() + " holds no whole frame; there is nothing to save.");
  expectFailure(repair({"--overwrite --out", recording()}), 2,
                "--out needs another file than " + name() + ", which stays.");
  std::ofstream(recording()) << "no recording";
  expectFailure(repair(), 1, name() + " is no SER file.");
  EXPECT_FALSE(std::filesystem::exists(repaired()));
}

TEST_F(OcCaptureRepair, PlayNamesTheCommand) {
  recordSmall();
  const auto damage = [&] {
    return nlohmann::ordered_json::parse(expectSuccess(run({"play --json", recording()})).out)
        .at("damage");
  };
  EXPECT_EQ(damage(), nullptr);
  std::filesystem::resize_file(recording(), headerSize + 4 * frameSize + 5);
  const std::string text = damage();
  EXPECT_PRED_FORMAT2(IsSubstring,
                      "it is cut off, its header counts 6 frames; to repair it: ", text);
  EXPECT_PRED_FORMAT2(IsSubstring, "oc_capture repair ", text);
  EXPECT_PRED_FORMAT2(IsSubstring, "4 frames of 64 x 48", run({"play", recording()}).out);
  std::string content = contentOf(recording());
  content[38] = 4;
  std::ofstream(recording(), std::ios::binary) << content.substr(0, headerSize + 4 * frameSize);
  EXPECT_EQ(damage(), nullptr);
  std::ofstream(journal()) << "12345678";
  EXPECT_PRED_FORMAT2(IsSubstring, "its time stamps are still in ", damage().get<std::string>());
}

}  // namespace

}  // namespace orvane::testing
