// "oc_capture ... --scene", run as a program: simulated cameras that look at a recording.
#include <fstream>
#include <nlohmann/json.hpp>

#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

class OcCaptureScene : public OcCaptureTest {
 protected:
  // Records a small region in 16 bits, as the recording shows it where nothing changes it.
  ProgramResult recordInto(const std::filesystem::path& file, const CommandLine& more,
                           const std::string& simulator = stoppedClock) const {
    return runWithSdks("record",
                       {"--camera 0 --format raw16 --width 320 --height 240 --exposure 20ms",
                        "--offset 0 --overwrite --out", file, more},
                       simulator);
  }

  const std::filesystem::path first = scratch.file("first.ser");
};

TEST_F(OcCaptureScene, RecordingOfARecordingIsTheSame) {
  sdks.add("ASICamera2");
  const auto scene = scratch.file("caf\u00e9 \U0001F52D first.ser");
  expectSuccess(recordInto(scene, {"--frames 3 --gain 20"}));
  expectSuccess(recordInto(recording(), {"--frames 7 --gain 50 --scene", scene}));
  const SerFile played(scene);
  const SerFile file(recording());
  EXPECT_EQ(file.colorId, played.colorId);
  ASSERT_EQ(file.frames.size(), 7U);
  for (std::size_t number = 0; number < 7; ++number) {
    EXPECT_TRUE(file.frames[number] == played.frames[number % 3]) << "frame " << number;
  }
  // The synthetic scene is another one at that gain.
  expectSuccess(recordInto(recording(), {"--frames 1 --gain 50"}));
  EXPECT_FALSE(SerFile(recording()).frames[0] == played.frames[0]);
}

// The SDKs that do not wait run by their clocks: frames may be missed, but all are the recording's.
class OcCaptureSceneOfEachMaker : public OcCaptureScene,
                                  public ::testing::WithParamInterface<const char*> {};

TEST_P(OcCaptureSceneOfEachMaker, ShowsTheRecordingsFrames) {
  sdks.add(GetParam());
  expectSuccess(recordInto(first, {"--frames 2"}, "seed 5"));
  // In the middle of its gain range a camera shows a recording as it is.
  const auto camera = nlohmann::json::parse(runWithSdks("list", {"--json"}).out)["cameras"][0];
  const int gain = (camera["minGain"].get<int>() + camera["maxGain"].get<int>()) / 2;
  expectSuccess(
      recordInto(recording(), {"--frames 4 --gain", std::to_string(gain), "--scene", first}, ""));
  const SerFile played(first);
  for (const Bytes& frame : SerFile(recording()).frames) {
    EXPECT_TRUE(frame == played.frames[0] || frame == played.frames[1]);
  }
}

TEST_P(OcCaptureSceneOfEachMaker, IsShownUnchangedByDefault) {
  sdks.add(GetParam());
  expectSuccess(recordInto(first, {"--frames 1"}, "seed 5"));
  const Bytes played = SerFile(first).frames.at(0);
  const auto shown = [&](const char* settings) {
    expectSuccess(runWithSdks("record",
                              {"--camera 0 --format raw16 --width 320 --height 240 --frames 1",
                               "--overwrite --scene", first, "--out", recording(), settings},
                              ""));
    return SerFile(recording()).frames.at(0);
  };
  EXPECT_TRUE(shown("") == played);
  for (const char* settings : {"--exposure 10ms", "--gain 100", "--offset 20"}) {
    EXPECT_FALSE(shown(settings) == played) << settings;
  }
}

INSTANTIATE_TEST_SUITE_P(Makers, OcCaptureSceneOfEachMaker,
                         ::testing::Values("ASICamera2", "PlayerOneCamera", "qhyccd", "toupcam"),
                         [](const auto& test) { return test.param; });

TEST_F(OcCaptureScene, OtherCommandsToTheSimulatorStay) {
  sdks.add("ASICamera2");
  expectSuccess(recordInto(first, {"--frames 1"}));
  const auto log = scratch.file("calls");
  expectSuccess(recordInto(recording(), {"--frames 1 --scene", first},
                           "clock stopped; sdk toupcam; seed 7; sdk ASICamera2; log " + utf8(log)));
  EXPECT_PRED_FORMAT2(IsSubstring, "ASIStartVideoCapture", contentOf(log));
}

// A file that cannot be shown is refused before any SDK is loaded.
TEST_F(OcCaptureScene, FileThatIsNoRecording) {
  sdks.add("ASICamera2");
  const auto damaged = scratch.file("damaged.ser");
  const auto log = scratch.file("calls");
  std::ofstream(damaged, std::ios::binary) << "LUCAM-RECORDER and no more";
  for (const char* command :
       {"list", "doctor --scan", "record --camera 0 --frames 1 --out a.ser"}) {
    expectFailure(run({command, "--sdk", sdks.path(), "--scene", damaged}, "log " + utf8(log)), 2,
                  "\"" + utf8(damaged) + "\" is no SER file.");
    EXPECT_FALSE(std::filesystem::exists(log)) << command;
  }
}

TEST_F(OcCaptureScene, RecordingWithoutAFrame) {
  sdks.add("ASICamera2");
  expectSuccess(recordInto(first, {"--frames 1"}));
  std::filesystem::resize_file(first, 178 + 320 * 240);
  expectFailure(runWithSdks("list", {"--scene", first}), 2,
                "\"" + utf8(first) + "\" has no whole frame.");
}

TEST_F(OcCaptureScene, FileThatIsNotThereOrADirectory) {
  const auto missing = scratch.file("missing.ser");
  expectFailure(runWithSdks("list", {"--scene", missing}), 2,
                "Cannot read \"" + utf8(missing) + "\": No such file or directory");
  const ProgramResult directory = runWithSdks("list", {"--scene", scratch.path()});
  EXPECT_EQ(directory.status, 2);
  EXPECT_PRED_FORMAT2(IsSubstring, "Cannot read \"" + utf8(scratch.path()) + "\": ", directory.err);
}

TEST_F(OcCaptureScene, FileWithASemicolon) {
  const auto file = scratch.file("a;b.ser");
  std::ofstream(file, std::ios::binary) << "any";
  expectFailure(runWithSdks("list", {"--scene", file}), 2,
                "--scene cannot take a file with a semicolon in its path: \"" + utf8(file) + "\".");
}

}  // namespace

}  // namespace orvane::testing
