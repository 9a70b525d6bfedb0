// oc_capture's options: that each one in the help is taken, and what those for recordings do.
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

using nlohmann::ordered_json;

class OcCaptureOptions : public OcCaptureTest {
 protected:
  OcCaptureOptions() { sdks.add("ASICamera2"); }

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

  // "--scene" with a recording.
  std::vector<std::string> sceneArguments() const {
    const std::string file = utf8(scratch.file("scene.ser"));
    EXPECT_EQ(run({"record", "--sdk", sdks.utf8(), "--camera", "0", "--frames", "1", "--out", file})
                  .status,
              0);
    return {"--scene", file};
  }

  // Runs the command with each of these sets of arguments; together they must hold each option.
  void expectAllTaken(const std::string& command,
                      const std::vector<std::vector<std::string>>& argumentSets) const {
    std::set<std::string> left = optionsInHelp(command);
    EXPECT_GE(left.size(), 3U);
    const std::vector<std::string> scene =
        left.count("--scene") > 0 ? sceneArguments() : std::vector<std::string>();
    for (std::vector<std::string> arguments : argumentSets) {
      arguments.insert(arguments.begin(), command);
      arguments.insert(arguments.end(), scene.begin(), scene.end());
      const ProgramResult result = run(arguments);
      EXPECT_EQ(result.status, 0) << result.err;
      for (const std::string& argument : arguments) {
        left.erase(argument);
      }
    }
    EXPECT_EQ(left, std::set<std::string>());
  }

  std::vector<std::string> cameraArguments(const std::string& format) const {
    return {"--sdk",  sdks.utf8(), "--camera", "ASI120",   "--width",   "64",         "--height",
            "48",     "--bin",     "1",        "--format", format,      "--exposure", "5ms",
            "--gain", "30",        "--offset", "5",        "--discard", "1",          "--flip"};
  }

  static std::vector<std::string> joined(std::vector<std::string> first,
                                         const std::vector<std::string>& more) {
    first.insert(first.end(), more.begin(), more.end());
    return first;
  }

  std::string png() const { return utf8(scratch.file("out.png")); }

  // A recording of 64 x 48 pixels, 5 ms, gain 40.
  ProgramResult record(const std::vector<std::string>& more) const {
    return run(joined(recordArguments({"--width", "64", "--height", "48", "--exposure", "5ms",
                                       "--gain", "40", "--frames", "4"}),
                      more));
  }
};

TEST_F(OcCaptureOptions, ListTakesAll) {
  expectAllTaken("list", {{"--sdk", sdks.utf8(), "--json", "--quiet"}});
}

TEST_F(OcCaptureOptions, RecordTakesAll) {
  const std::vector<std::string> out{"--out",  utf8(recording()), "--overwrite", "--memory",
                                     "1",      "--observer",      "Anna",        "--telescope",
                                     "80/480", "--quiet",         "--json"};
  expectAllTaken(
      "record",
      {joined(joined(cameraArguments("raw16"), out), {"--bayer", "BGGR", "--frames", "2"}),
       joined(joined(cameraArguments("rgb24"), out), {"--swap-rb", "--seconds", "0.1"})});
}

TEST_F(OcCaptureOptions, SnapTakesAll) {
  const std::vector<std::string> out{"--out",       png(),    "--overwrite", "--observer", "Anna",
                                     "--telescope", "80/480", "--quiet",     "--json"};
  expectAllTaken("snap", {joined(joined(cameraArguments("raw8"), out), {"--bayer", "none"}),
                          joined(joined(cameraArguments("rgb24"), out), {"--swap-rb"})});
}

TEST_F(OcCaptureOptions, WatchTakesAll) {
  const std::vector<std::string> out{"--out", png(), "--overwrite", "--quiet", "--json"};
  expectAllTaken(
      "watch", {joined(joined(cameraArguments("raw8"), out), {"--bayer", "GRBG", "--frames", "2"}),
                joined(joined(cameraArguments("rgb24"), out), {"--swap-rb", "--seconds", "0.1"})});
}

TEST_F(OcCaptureOptions, BenchTakesAll) {
  const std::vector<std::string> out{"--out", png(),     "--overwrite", "--seconds",
                                     "0.1",   "--quiet", "--json"};
  expectAllTaken("bench", {joined(joined(cameraArguments("raw8"), out), {"--bayer", "GBRG"}),
                           joined(joined(cameraArguments("rgb24"), out), {"--swap-rb"})});
}

TEST_F(OcCaptureOptions, PlayTakesAll) {
  ASSERT_EQ(record({"--quiet"}).status, 0);
  const auto colours = scratch.file("colours.ser");
  ASSERT_EQ(run({"record", "--sdk", sdks.utf8(), "--camera", "0", "--format", "rgb24", "--frames",
                 "1", "--out", utf8(colours)})
                .status,
            0);
  const std::vector<std::string> out{"--out", png(), "--overwrite", "--quiet", "--json", "--flip"};
  expectAllTaken("play", {joined(out, {"--bayer", "GBRG", utf8(recording())}),
                          joined(out, {"--swap-rb", utf8(colours)})});
}

TEST_F(OcCaptureOptions, DoctorTakesAll) {
  expectAllTaken("doctor", {{"--sdk", sdks.utf8(), "--json", "--scan"}});
}

TEST_F(OcCaptureOptions, HelpHasAnExampleForEachCommand) {
  for (const char* command : {"list", "record", "snap", "bench", "watch", "play", "doctor"}) {
    const std::string help = run({command, "--help"}).out;
    EXPECT_NE(help.find("Examples:\n  oc_capture " + std::string(command) + " "), std::string::npos)
        << help;
    EXPECT_NE(help.find("Exit status: 0 done"), std::string::npos);
  }
}

TEST_F(OcCaptureOptions, DiscardedFramesAreNotRecorded) {
  ASSERT_EQ(record({"--discard", "3"}).status, 0);
  const SerFile file(recording());
  const ReferenceCamera reference(sdks, "ASICamera2", 64, 48, 1, 0, 5000, 40, 10);
  ASSERT_EQ(file.frames.size(), 4U);
  for (int number = 0; number < 4; ++number) {
    EXPECT_TRUE(file.frames[static_cast<std::size_t>(number)] == reference.frame(number + 3))
        << number;
  }
}

TEST_F(OcCaptureOptions, FlippedFramesHaveTheirBayerPatternTurned) {
  ASSERT_EQ(record({"--flip"}).status, 0);
  const SerFile file(recording());
  EXPECT_EQ(file.colorId, 11);  // GRBG, its rows exchanged: BGGR
  const ReferenceCamera reference(sdks, "ASICamera2", 64, 48, 1, 0, 5000, 40, 10);
  const Bytes frame = reference.frame(0);
  for (std::size_t at = 0; at < frame.size(); ++at) {
    ASSERT_EQ(file.frames.at(0).at(at), frame[(47 - at / 64) * 64 + at % 64]);
  }
}

TEST_F(OcCaptureOptions, RedAndBlueAreExchanged) {
  ASSERT_EQ(record({"--swap-rb", "--format", "rgb24"}).status, 0);
  const SerFile file(recording());
  const ReferenceCamera reference(sdks, "ASICamera2", 64, 48, 1, 2, 5000, 40, 10);
  const Bytes frame = reference.frame(0);
  for (std::size_t at = 0; at < frame.size(); ++at) {
    ASSERT_EQ(file.frames.at(0).at(at), frame[at - at % 3 + 2 - at % 3]);
  }
}

TEST_F(OcCaptureOptions, AnotherBayerPatternIsWritten) {
  ASSERT_EQ(record({"--bayer", "bggr"}).status, 0);
  EXPECT_EQ(SerFile(recording()).colorId, 11);
  ASSERT_EQ(record({"--bayer", "none", "--overwrite"}).status, 0);
  EXPECT_EQ(SerFile(recording()).colorId, 0);
}

TEST_F(OcCaptureOptions, QuietWritesNothing) {
  const ProgramResult result = record({"--quiet"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "");
  EXPECT_TRUE(std::filesystem::exists(preview()));
  const ProgramResult list = run({"list", "--quiet", "--sdk", sdks.utf8()});
  EXPECT_EQ(list.status, 0);
  EXPECT_EQ(list.out, "");
}

TEST_F(OcCaptureOptions, JsonTellsAboutTheRecording) {
  const ProgramResult result = record({"--json", "--memory", "2"});
  ASSERT_EQ(result.status, 0) << result.err;
  const auto document = ordered_json::parse(result.out);
  EXPECT_EQ(document["file"], utf8(recording()));
  EXPECT_EQ(document["preview"], utf8(preview()));
  EXPECT_EQ(document["camera"], "ZWO ASI120MC-S");
  EXPECT_EQ(document["width"], 64);
  EXPECT_EQ(document["height"], 48);
  EXPECT_EQ(document["format"], "raw8");
  EXPECT_EQ(document["bayer"], "GRBG");
  EXPECT_EQ(document["frames"], 4);
  EXPECT_EQ(document["droppedFrames"], 0);
  EXPECT_EQ(document["silentWaits"], 0);
  EXPECT_GT(document["seconds"], 0);
  EXPECT_GE(document["secondsUntilWritten"], document["seconds"]);
  EXPECT_EQ(document["framesThatMayWait"], 2000000 / (64 * 48));
  EXPECT_LE(document["mostFramesWaiting"], 4);
  EXPECT_GT(document["peakMemoryBytes"], 0);
  EXPECT_EQ(document["error"], "");
}

TEST_F(OcCaptureOptions, JsonTellsAboutAFailureToo) {
  const ProgramResult result =
      run(recordArguments({"--width", "64", "--height", "48", "--json", "--quiet"}),
          "clock stopped; seed 5; force ASIGetVideoData 6 -1 5");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "5 frames are in \"" + utf8(recording()) +
                            "\", which is a valid recording.\noc_capture: ASIGetVideoData: 5\n");
  const auto document = ordered_json::parse(result.out);
  EXPECT_EQ(document["frames"], 5);
  EXPECT_TRUE(document["preview"].is_null());
  EXPECT_EQ(document["error"], "ASIGetVideoData: 5");
}

}  // namespace

}  // namespace orvane::testing
