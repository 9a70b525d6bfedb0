// The files of oc_capture's recordings and pictures: the settings log, names from a template,
// sequences, and the end before the disk is full.
#include <chrono>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <thread>

#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

using nlohmann::ordered_json;

class OcCaptureFiles : public OcCaptureAsiTest {
 protected:
  static constexpr const char* small = "--camera 0 --width 64 --height 48";

  ProgramResult recordSmall(const CommandLine& more,
                            const std::string& simulator = stoppedClock) const {
    return record({"--width 64 --height 48 --exposure 5ms --frames 2", more}, simulator);
  }

  // With a template: "--out" is the scratch directory.
  ProgramResult recordNamed(const CommandLine& more) const {
    return runWithSdks("record", {small, "--frames 2", more, "--out", scratch.path()});
  }

  std::filesystem::path log() const { return scratch.file("recording.txt"); }

  bool exists(const std::string& name) const { return std::filesystem::exists(scratch.file(name)); }

  void write(const std::string& name) const { std::ofstream(scratch.file(name)) << "old"; }

  static std::map<std::string, std::string> valuesOf(const std::filesystem::path& file) {
    std::map<std::string, std::string> values;
    std::istringstream lines(contentOf(file));
    for (std::string line; std::getline(lines, line);) {
      const std::size_t end = line.find('=');
      values[line.substr(0, end)] = line.substr(end + 1);
    }
    return values;
  }

  // The time of a SER time stamp as the log states it.
  static std::string utcOf(std::int64_t ticks) {
    const std::chrono::sys_time<std::chrono::microseconds> time(
        std::chrono::microseconds((ticks - 621355968000000000) / 10));
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    const auto padded = [](std::int64_t number, std::size_t digits) {
      const std::string text = std::to_string(number);
      return std::string(digits - text.size(), '0') + text;
    };
    return padded(static_cast<int>(date.year()), 4) + "-" +
           padded(static_cast<unsigned>(date.month()), 2) + "-" +
           padded(static_cast<unsigned>(date.day()), 2) + "T" + padded(clock.hours().count(), 2) +
           ":" + padded(clock.minutes().count(), 2) + ":" + padded(clock.seconds().count(), 2) +
           "." + padded(clock.subseconds().count(), 6) + "Z";
  }
};

using OcCaptureLog = OcCaptureFiles;

TEST_F(OcCaptureLog, StandsBesideTheRecording) {
  const ProgramResult result = expectSuccess(record(
      {"--region 101,203,64x48 --frames 3 --exposure 5ms --gain 40 --offset 7",
       R"(--target "Jupiter and Io" --filter IR685 --observer Anna)", "--telescope 80/480"}));
  EXPECT_PRED_FORMAT2(IsSubstring, "; settings \"" + utf8(log()) + "\".\n", result.out);
  const SerFile file(recording());
  auto values = valuesOf(log());
  const std::map<std::string, std::string> expected{
      {"program", std::string("oc_capture ") + ORVANE_LIBRARY_VERSION},
      {"file", "recording.ser"},
      {"camera", "ZWO ASI120MC-S"},
      {"sdk", "ASICamera2"},
      {"observer", "Anna"},
      {"telescope", "80/480"},
      {"target", "Jupiter and Io"},
      {"filter", "IR685"},
      {"width", "64"},
      {"height", "48"},
      {"region", "101,203,64x48"},
      {"bin", "1"},
      {"format", "raw8"},
      {"bit_depth", "12"},
      {"bayer_pattern", "GBRG"},
      {"exposure_us", "5000"},
      {"gain", "40"},
      {"offset", "7"},
      {"start_utc", utcOf(file.timeStamps.front() - 50'000)},
      {"end_utc", utcOf(file.timeStamps.back())},
      {"frames", "3"},
      {"dropped_frames", "0"},
      {"gaps", "0"},
      {"failed_reads", "0"},
      {"error", ""}};
  for (const auto& [key, value] : expected) {
    EXPECT_EQ(values[key], value) << key;
  }
  for (const char* key : {"temperature_start_c", "temperature_end_c"}) {
    EXPECT_TRUE(std::regex_match(values[key], std::regex("-?[0-9]+\\.[0-9]"))) << values[key];
  }
  EXPECT_GE(values["middle_utc"], values["start_utc"]);
  EXPECT_LE(values["middle_utc"], values["end_utc"]);
}

TEST_F(OcCaptureLog, TellsWhyARecordingEndedEarly) {
  const ProgramResult result = record({"--width 64 --height 48 --json --quiet"},
                                      stoppedClock + std::string("; force ASIGetVideoData 6 -1 5"));
  EXPECT_EQ(result.status, 1);
  auto values = valuesOf(log());
  EXPECT_EQ(values["frames"], "5");
  EXPECT_EQ(values["error"], "ASIGetVideoData: 5");
  EXPECT_NE(values["temperature_end_c"], "");
  EXPECT_EQ(ordered_json::parse(result.out)["log"], utf8(log()));
}

TEST_F(OcCaptureLog, ReplacesNothingUnasked) {
  write("recording.txt");
  expectFailure(recordSmall({}), 2,
                "\"" + utf8(log()) + "\" exists already; name another file or add --overwrite.");
  EXPECT_FALSE(std::filesystem::exists(recording()));
  const ProgramResult without = expectSuccess(recordSmall({"--no-log --json"}));
  EXPECT_TRUE(ordered_json::parse(without.out)["log"].is_null());
  EXPECT_EQ(contentOf(log()), "old");
  expectSuccess(recordSmall({"--overwrite"}));
  EXPECT_EQ(valuesOf(log())["frames"], "2");
}

TEST_F(OcCaptureLog, ThatFailsDoesNotHideTheRecording) {
  std::filesystem::create_directory(log());
  const ProgramResult result = recordSmall({"--overwrite"});
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.out.starts_with("Recorded 2 frames ")) << result.out;
  EXPECT_PRED_FORMAT2(IsSubstring,
                      "oc_capture: Cannot create \"" + utf8(log()) + "\": ", result.err);
  EXPECT_TRUE(isPng(preview()));
}

using OcCaptureName = OcCaptureFiles;

TEST_F(OcCaptureName, IsMadeFromATemplate) {
  const ProgramResult result = expectSuccess(
      recordNamed({"--name {target}_{filter}_{camera} --target Jupiter --quiet --json"}));
  const std::string name = "Jupiter_ZWO ASI120MC-S";
  EXPECT_EQ(ordered_json::parse(result.out)["file"], utf8(scratch.file(name + ".ser")));
  EXPECT_EQ(SerFile(scratch.file(name + ".ser")).frameCount, 2);
  EXPECT_TRUE(isPng(scratch.file(name + "-preview.png")));
  auto values = valuesOf(scratch.file(name + ".txt"));
  EXPECT_EQ(values["file"], name + ".ser");
  EXPECT_EQ(values["target"], "Jupiter");
}

TEST_F(OcCaptureName, HasTheTimeOfTheStart) {
  expectSuccess(recordNamed({"--name {date}_{time}"}));
  int recordings = 0;
  for (const auto& entry : std::filesystem::directory_iterator(scratch.path())) {
    if (entry.path().extension() == ".ser") {
      expectMatch(utf8(entry.path().filename()), R"(20\d\d-\d\d-\d\d_\d\d-\d\d-\d\d\.ser)");
      ++recordings;
    }
  }
  EXPECT_EQ(recordings, 1);
}

TEST_F(OcCaptureName, InUseGetsANumber) {
  const CommandLine arguments{"--name {target} --target M31"};
  expectSuccess(recordNamed(arguments));
  expectSuccess(recordNamed(arguments));
  EXPECT_TRUE(exists("M31_2.ser"));
  write("M31_3.txt");
  write("M31_4-preview.png");
  write("M31_5.ser.orvane-part");
  expectSuccess(recordNamed(arguments));
  EXPECT_FALSE(exists("M31_3.ser") || exists("M31_4.ser") || exists("M31_5.ser"));
  EXPECT_TRUE(exists("M31_6.ser"));
  expectSuccess(recordNamed({arguments, "--overwrite --format raw16"}));
  EXPECT_EQ(SerFile(scratch.file("M31.ser")).depth, 16);
  EXPECT_FALSE(exists("M31_7.ser"));
}

TEST_F(OcCaptureName, OfAPictureHasTheKindThatWasAskedFor) {
  const CommandLine arguments{small, "--name {target}_{filter} --target M31 --filter L", "--out",
                              scratch.path()};
  expectSuccess(runWithSdks("snap", arguments));
  EXPECT_TRUE(isPng(scratch.file("M31_L.png")));
  expectSuccess(runWithSdks("snap", {arguments, "--as fits"}));
  const std::string fits = contentOf(scratch.file("M31_L.fits"));
  EXPECT_PRED_FORMAT2(IsSubstring, "OBJECT  = 'M31     '", fits);
  EXPECT_PRED_FORMAT2(IsSubstring, "FILTER  = 'L       '", fits);
  expectSuccess(runWithSdks("snap", {arguments, "--as png"}));
  EXPECT_TRUE(isPng(scratch.file("M31_L_2.png")));
}

TEST_F(OcCaptureName, IsCheckedBeforeTheCameraIsOpened) {
  const auto missing = scratch.file("missing");
  expectFailure(runWithSdks("record", {small, "--name {camera} --out", missing}), 2,
                "There is no directory \"" + utf8(missing) + "\".");
  expectFailure(recordNamed({"--name {planet}"}), 2,
                "--name has no field {planet}; there are {date}, {time}, {target}, {filter}, "
                "{camera}, {observer}.");
  expectFailure(runWithSdks("snap", {small, "--as fits --out", scratch.file("a.fits")}), 2,
                "--as needs --name; without it the ending of --out says the same.");
}

using OcCaptureSequence = OcCaptureFiles;

TEST_F(OcCaptureSequence, StartsAsPlannedAndDoesNotDrift) {
  const ProgramResult result = expectSuccess(
      record({"--width 64 --height 48 --seconds 0.3 --count 3 --every 1s --json --quiet"}));
  const auto document = ordered_json::parse(result.out);
  expectMembers(
      document,
      {{"count", 3}, {"done", 3}, {"intervalSeconds", 1.0}, {"ending", nullptr}, {"error", ""}});
  ASSERT_EQ(document["runs"].size(), 3U);
  for (int run = 1; run <= 3; ++run) {
    const auto& entry = document["runs"][static_cast<std::size_t>(run - 1)];
    EXPECT_EQ(entry["run"], run);
    EXPECT_GE(entry["startedAfterSeconds"], run - 1);
    EXPECT_LT(entry["startedAfterSeconds"], run - 0.5);
    const auto file = scratch.file("recording-00" + std::to_string(run) + ".ser");
    EXPECT_EQ(entry["file"], utf8(file));
    EXPECT_EQ(entry["frames"], SerFile(file).frameCount);
    EXPECT_TRUE(exists("recording-00" + std::to_string(run) + ".txt"));
  }
  EXPECT_FALSE(std::filesystem::exists(recording()));
}

TEST_F(OcCaptureSequence, TellsWhenARunTookTooLong) {
  const ProgramResult result =
      expectSuccess(record({"--width 64 --height 48 --seconds 0.4 --count 2 --every 100ms"}));
  EXPECT_TRUE(std::regex_search(
      result.err, std::regex("(^|\n)The recording took [0-9.]+ s longer than the interval; the "
                             "next one starts at once\\.\n")))
      << result.err;
  expectMatch(result.out,
              R"((Recorded [^\n]*\n(Gaps: [^\n]*\n)?){2}2 of 2 recordings are done\.\n)");
}

TEST_F(OcCaptureSequence, WithoutAnIntervalGoesOnAtOnce) {
  const ProgramResult result = expectSuccess(recordSmall({"--count 2 --json"}));
  EXPECT_PRED_FORMAT2(IsNotSubstring, "longer than the interval", result.err);
  const auto document = ordered_json::parse(result.out);
  EXPECT_TRUE(document["intervalSeconds"].is_null());
  EXPECT_EQ(document["done"], 2);
}

TEST_F(OcCaptureSequence, NumbersTheNamesOfATemplate) {
  expectSuccess(recordNamed({"--name {target} --target M31 --count 2 --overwrite"}));
  EXPECT_TRUE(exists("M31.ser") && exists("M31_2.ser"));
}

TEST_F(OcCaptureSequence, TakesPictures) {
  const ProgramResult result = expectSuccess(
      runWithSdks("snap", {small, "--count 2 --every 10ms --out", scratch.file("sky.png")}));
  EXPECT_TRUE(isPng(scratch.file("sky-001.png")) && isPng(scratch.file("sky-002.png")));
  EXPECT_TRUE(result.out.ends_with("\n2 of 2 pictures are done.\n")) << result.out;
}

TEST_F(OcCaptureSequence, ReplacesNothingUnasked) {
  write("recording-002.ser");
  expectFailure(recordSmall({"--count 2"}), 2,
                "\"" + utf8(scratch.file("recording-002.ser")) +
                    "\" exists already; name another file or add --overwrite.");
  EXPECT_FALSE(exists("recording-001.ser"));
}

TEST_F(OcCaptureSequence, EndsWithAFailure) {
  // The scan opens each of the four cameras once.
  const ProgramResult result = recordSmall(
      {"--count 3 --json --quiet"}, stoppedClock + std::string("; force ASIOpenCamera 6 1 16"));
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.err.starts_with("oc_capture: ASIOpenCamera: 16. ")) << result.err;
  expectMembers(ordered_json::parse(result.out), {{"done", 1}, {"error", "ASIOpenCamera: 16"}});
  EXPECT_EQ(SerFile(scratch.file("recording-001.ser")).frameCount, 2);
  EXPECT_FALSE(exists("recording-003.ser"));
}

TEST_F(OcCaptureSequence, CtrlCEndsItWell) {
  ProgramStart interruptible = start({"record", small, "--frames 2 --count 5 --every 100s --sdk",
                                      sdks.path(), "--out", recording()});
  interruptible.mayBeInterrupted = true;
  Program program(interruptible);
  while (program.isRunning() && !exists("recording-001-preview.png")) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  program.interrupt();
  const ProgramResult result = expectSuccess(program.wait());
  EXPECT_TRUE(result.out.ends_with("\nStopped after 1 of 5 recordings.\n")) << result.out;
  EXPECT_EQ(SerFile(scratch.file("recording-001.ser")).frameCount, 2);
}

TEST_F(OcCaptureSequence, NeedsACount) {
  expectFailure(recordSmall({"--every 10s"}), 2, "--every needs --count.");
}

using OcCaptureStopBelow = OcCaptureFiles;

TEST_F(OcCaptureStopBelow, IsRefusedAtTheStart) {
  const ProgramResult result = recordSmall({"--stop-below 999TB"});
  EXPECT_EQ(result.status, 2);
  expectMatch(result.err,
              "oc_capture: Only [0-9.]+ [MGT]B are free for \".*\", which is less than "
              "--stop-below 999 TB\\.\n");
  EXPECT_FALSE(std::filesystem::exists(recording()));
}

TEST_F(OcCaptureStopBelow, EndsTheRecordingAndTheSequence) {
  const auto free = std::filesystem::space(scratch.path()).available / 1'000'000;
  const std::string limit = std::to_string(free - 300) + "MB";
  // Frames of 2.4 MB, 50 a second: far more than 300 MB if nothing ended it. Less would be used up
  // by other tests that run at the same time.
  const ProgramResult result =
      expectSuccess(record({"--format raw16 --seconds 60 --count 3 --stop-below", limit}));
  EXPECT_PRED_FORMAT2(IsSubstring, "\nIt ended before less than ", result.out);
  EXPECT_TRUE(result.out.ends_with("\nStopped by --stop-below after 1 of 3 recordings.\n"))
      << result.out;
  const SerFile file(scratch.file("recording-001.ser"));
  EXPECT_EQ(file.timeStamps.size(), file.frames.size());
  EXPECT_FALSE(exists("recording-002.ser"));
  std::filesystem::remove(scratch.file("recording-001.ser"));  // it is large
}

TEST_F(OcCaptureFiles, FramesAndSecondsCanBeGivenTogether) {
  expectSuccess(record({"--width 64 --height 48 --frames 3 --seconds 100"}));
  EXPECT_EQ(SerFile(recording()).frameCount, 3);
  expectSuccess(record({"--width 64 --height 48 --frames 1000000 --seconds 0.2 --overwrite"}));
  EXPECT_LT(SerFile(recording()).frameCount, 1000000);
}

TEST_F(OcCaptureFiles, TheProgramTellsItsVersion) {
  EXPECT_EQ(expectSuccess(run({"--version"})).out,
            std::string("oc_capture ") + ORVANE_LIBRARY_VERSION + "\n");
}

}  // namespace

}  // namespace orvane::testing
