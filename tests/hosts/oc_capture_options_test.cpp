// oc_capture's options: that each one in the help is taken, and what those for recordings do.
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>

#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

using nlohmann::ordered_json;

class OcCaptureOptions : public OcCaptureAsiTest {
 protected:
  // The names of all commands, from the program's help.
  std::vector<std::string> commands() const {
    const std::string help = run({"--help"}).out;
    const std::size_t start = help.find("Subcommands:\n");
    std::istringstream rows(help.substr(start, help.find("\n\n", start) - start));
    std::vector<std::string> names;
    for (std::string row, name; std::getline(rows, row) && rows >> name;) {
      names.push_back(name);
    }
    EXPECT_FALSE(names.empty()) << help;
    return names;
  }

  std::set<std::string> optionsInHelp(const std::string& command) const {
    const std::string help = run({command, "--help"}).out;
    std::set<std::string> options;
    const std::regex option("\n  (-h,)?(--[a-z-]+)");
    for (std::sregex_iterator found(help.begin(), help.end(), option), end; found != end; ++found) {
      options.insert((*found)[2]);
    }
    options.erase("--help");
    return options;
  }

  // Runs the command with each of these sets of arguments; together they must hold each option.
  void expectAllTaken(const std::string& command,
                      const std::vector<CommandLine>& argumentSets) const {
    std::set<std::string> left = optionsInHelp(command);
    EXPECT_GE(left.size(), 3U);
    CommandLine scene;
    if (left.count("--scene") > 0) {
      const auto file = scratch.file("scene.ser");
      expectSuccess(runWithSdks("record", {"--camera 0 --frames 1 --out", file}));
      scene = {"--scene", file};
    }
    for (const CommandLine& arguments : argumentSets) {
      const CommandLine line{command, arguments, scene};
      const ProgramResult result = run(line);
      EXPECT_EQ(result.status, 0) << result.err;
      for (const std::string& argument : Part(line).words) {
        left.erase(argument);
      }
    }
    EXPECT_EQ(left, std::set<std::string>());
  }

  // The same for a command with a camera and these further arguments, with frames in raw and in
  // RGB.
  void expectAllTakenWithCamera(const std::string& command, const CommandLine& more,
                                const char* raw, const char* rgb,
                                const CommandLine& further) const {
    const CommandLine all{"--sdk", sdks.path(), "--camera ASI120 --width 64 --height 48 --bin 1",
                          "--exposure 5ms --gain 30 --offset 5 --discard 1 --flip", more};
    const CommandLine region{"--sdk", sdks.path(),
                             "--camera 0 --format raw8 --quiet --region 1,2,64x48", further};
    expectAllTaken(command,
                   {{all, "--format", raw}, {all, "--format rgb24 --swap-rb", rgb}, region});
  }

  const std::filesystem::path png = scratch.file("out.png");

  // Records four frames of 64 x 48 pixels, 5 ms, gain 40.
  ProgramResult recordSmall(const char* more) const {
    return record({"--width 64 --height 48 --exposure 5ms --gain 40 --frames 4", more});
  }

  // The recorded camera, with its frames in this format.
  ReferenceCamera reference(int format = 0) const {
    return {sdks, "ASICamera2", 64, 48, 1, format, 5000, 40, 10};
  }
};

TEST_F(OcCaptureOptions, ListTakesAll) {
  expectAllTaken("list", {{"--json --quiet --sdk", sdks.path()}, {"--cabinet --sdk", sdks.path()}});
}

TEST_F(OcCaptureOptions, RecordTakesAll) {
  expectAllTakenWithCamera(
      "record",
      {"--overwrite --memory 1 --observer Anna --telescope 80/480 --quiet --json --out",
       recording()},
      "raw16 --bayer BGGR --frames 2", "--seconds 0.1 --no-preview --no-log",
      {"--name {camera} --target M31 --filter L --count 2 --every 10ms --stop-below 1MB --frames 2",
       "--out", scratch.path()});
}

TEST_F(OcCaptureOptions, SnapTakesAll) {
  expectAllTakenWithCamera(
      "snap", {"--overwrite --observer Anna --telescope 80/480 --quiet --json --out", png},
      "raw8 --bayer none", "",
      {"--name {camera} --as fits --target M31 --filter L --count 2 --every 10ms --stop-below 1MB",
       "--out", scratch.path()});
}

TEST_F(OcCaptureOptions, WatchTakesAll) {
  expectAllTakenWithCamera("watch", {"--overwrite --quiet --json --out", png},
                           "raw8 --bayer GRBG --frames 2", "--seconds 0.1", {"--frames 1"});
}

TEST_F(OcCaptureOptions, BenchTakesAll) {
  expectAllTakenWithCamera("bench", {"--overwrite --seconds 0.1 --quiet --json --out", png},
                           "raw8 --bayer GBRG", "", {"--seconds 0.1"});
}

TEST_F(OcCaptureOptions, PlayTakesAll) {
  expectSuccess(recordSmall("--quiet"));
  const auto colours = scratch.file("colours.ser");
  expectSuccess(runWithSdks("record", {"--camera 0 --format rgb24 --frames 1 --out", colours}));
  const CommandLine all{"--overwrite --quiet --json --flip --out", png};
  expectAllTaken("play", {{all, "--bayer GBRG", recording()}, {all, "--swap-rb", colours}});
}

TEST_F(OcCaptureOptions, RepairTakesAll) {
  expectSuccess(recordSmall("--quiet"));
  std::filesystem::resize_file(recording(), 178 + 2 * 64 * 48);
  expectAllTaken("repair",
                 {{"--overwrite --quiet --json --out", scratch.file("new.ser"), recording()}});
}

TEST_F(OcCaptureOptions, DoctorTakesAll) {
  expectAllTaken("doctor", {{"--json --scan --sdk", sdks.path()}});
}

TEST_F(OcCaptureOptions, HelpHasAnExampleAndFitsIntoEightyColumns) {
  std::string all = run({"--help"}).out;
  for (const std::string& command : commands()) {
    const std::string help = run({command, "--help"}).out;
    EXPECT_PRED_FORMAT2(IsSubstring, "Examples:\n  oc_capture " + command + " ", help);
    all += help;
  }
  std::istringstream lines(all);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(line.starts_with("  oc_capture ") || line.size() <= 80) << line;
  }
}

TEST_F(OcCaptureOptions, HelpTellsTheExitStatusesOfEachCommand) {
  const std::string help = run({"--help"}).out;
  for (const std::string& name : commands()) {
    const std::size_t row = help.find("\n  " + name + " ", help.find("\nExit status "));
    ASSERT_NE(row, std::string::npos) << help;
    const std::string own = run({name, "--help"}).out;
    std::smatch texts;
    ASSERT_TRUE(std::regex_search(
        own, texts, std::regex("Exit status:\n  0  (.+)\n  1  (.+)\n  2  wrong arguments")))
        << own;
    const std::string line = help.substr(row + 1, help.find('\n', row + 1) - row - 1);
    EXPECT_PRED_FORMAT2(IsSubstring, " " + texts[1].str() + " ", line);
    EXPECT_TRUE(line.ends_with(" " + texts[2].str())) << line;
  }
}

TEST_F(OcCaptureOptions, DiscardedFramesAreNotRecorded) {
  expectSuccess(recordSmall("--discard 3"));
  expectFrames(SerFile(recording()), reference(), 4, 3);
}

TEST_F(OcCaptureOptions, FlippedFramesHaveTheirBayerPatternFlipped) {
  expectSuccess(recordSmall("--flip"));
  const SerFile file(recording());
  EXPECT_EQ(file.colorId, 11);  // GRBG with its rows swapped: BGGR
  const Bytes frame = reference().frame(0);
  for (std::size_t at = 0; at < frame.size(); ++at) {
    ASSERT_EQ(file.frames.at(0).at(at), frame[(47 - at / 64) * 64 + at % 64]);
  }
}

TEST_F(OcCaptureOptions, RedAndBlueAreSwapped) {
  expectSuccess(recordSmall("--swap-rb --format rgb24"));
  const SerFile file(recording());
  const Bytes frame = reference(2).frame(0);
  for (std::size_t at = 0; at < frame.size(); ++at) {
    ASSERT_EQ(file.frames.at(0).at(at), frame[at - at % 3 + 2 - at % 3]);
  }
}

TEST_F(OcCaptureOptions, AnotherBayerPatternIsWritten) {
  expectSuccess(recordSmall("--bayer bggr"));
  EXPECT_EQ(SerFile(recording()).colorId, 11);
  expectSuccess(recordSmall("--bayer none --overwrite"));
  EXPECT_EQ(SerFile(recording()).colorId, 0);
}

TEST_F(OcCaptureOptions, QuietWritesNothing) {
  const ProgramResult result = expectSuccess(recordSmall("--quiet"));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "");
  EXPECT_TRUE(std::filesystem::exists(preview()));
  const ProgramResult list = runWithSdks("list", {"--quiet"});
  EXPECT_EQ(list.status, 0);
  EXPECT_EQ(list.out, "");
}

TEST_F(OcCaptureOptions, JsonTellsAboutTheRecording) {
  const ProgramResult result = expectSuccess(recordSmall("--json --memory 2"));
  const auto document = ordered_json::parse(result.out);
  expectMembers(document, {{"file", utf8(recording())},
                           {"preview", utf8(preview())},
                           {"log", utf8(scratch.file("recording.txt"))},
                           {"region", nullptr},
                           {"camera", "ZWO ASI120MC-S"},
                           {"width", 64},
                           {"height", 48},
                           {"format", "raw8"},
                           {"bayer", "GRBG"},
                           {"frames", 4},
                           {"droppedFrames", 0},
                           {"silentWaits", 0},
                           {"stoppedBelow", false},
                           {"framesThatMayWait", 2000000 / (64 * 48)},
                           {"error", ""}});
  EXPECT_GT(document["seconds"], 0);
  EXPECT_GE(document["secondsUntilWritten"], document["seconds"]);
  EXPECT_LE(document["mostFramesWaiting"], 4);
  EXPECT_GT(document["peakMemoryBytes"], 0);
}

TEST_F(OcCaptureOptions, JsonTellsAboutAFailureToo) {
  const ProgramResult result = record({"--width 64 --height 48 --json --quiet"},
                                      "clock stopped; seed 5; force ASIGetVideoData 6 -1 5");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "5 frames are in \"" + utf8(recording()) +
                            "\", which is a valid recording.\n" + errorText("ASIGetVideoData: 5"));
  expectMembers(ordered_json::parse(result.out),
                {{"frames", 5}, {"preview", nullptr}, {"error", "ASIGetVideoData: 5"}});
}

}  // namespace

}  // namespace orvane::testing
