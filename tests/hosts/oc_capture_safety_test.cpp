// That oc_capture loses nothing that was recorded, and tells when frames are missing.
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>

#include "oc_capture_test.hpp"
#include "session/causes.hpp"

namespace orvane::testing {

namespace {

using nlohmann::ordered_json;

class OcCaptureSafety : public OcCaptureAsiTest {
 protected:
  ProgramResult recordSmall(const CommandLine& more,
                            const std::string& simulator = stoppedClock) const {
    return record({"--width 64 --height 48", more}, simulator);
  }

  static void writeOld(const std::filesystem::path& file) { std::ofstream(file) << "old"; }

  std::size_t filesHere() const {
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(scratch.path())) {
      const std::string name = utf8(entry.path().filename());
      files += name != "stdout" && name != "stderr" ? 1 : 0;
    }
    return files;
  }
};

TEST_F(OcCaptureSafety, AFailedRecordingLeavesTheOldOneAndNothingElse) {
  writeOld(recording());
  writeOld(preview());
  const std::string silent = "clock stopped; force ASIGetVideoData 1 -1 11";
  EXPECT_EQ(recordSmall({"--overwrite --seconds 0.1"}, silent).status, 1);
  EXPECT_EQ(contentOf(recording()), "old");
  EXPECT_EQ(contentOf(preview()), "old");
  EXPECT_EQ(filesHere(), 2U);
}

TEST_F(OcCaptureSafety, ARecordingWithoutAFrameDoesNotBlockTheRetry) {
  const std::string silent = "clock stopped; force ASIGetVideoData 1 -1 11";
  const ProgramResult result = recordSmall({"--seconds 0.1 --json --quiet"}, silent);
  EXPECT_EQ(result.status, 1);
  expectMembers(ordered_json::parse(result.out), {{"file", nullptr}, {"frames", 0}});
  EXPECT_EQ(filesHere(), 0U);
  expectSuccess(recordSmall({"--frames 2"}));
  EXPECT_EQ(filesHere(), 3U);
}

TEST_F(OcCaptureSafety, APictureIsReplacedOnlyByAWholeOne) {
  const auto picture = scratch.file("a.png");
  writeOld(picture);
  const CommandLine arguments{"--camera 0 --width 64 --height 48 --overwrite --out", picture};
  EXPECT_EQ(runWithSdks("snap", arguments, "clock stopped; force ASIGetVideoData 1 -1 5").status,
            1);
  EXPECT_EQ(contentOf(picture), "old");
  expectSuccess(runWithSdks("snap", arguments));
  EXPECT_TRUE(isPng(picture));
  EXPECT_EQ(filesHere(), 1U);
}

#ifndef _WIN32

TEST_F(OcCaptureSafety, AFullDiskLeavesTheOldFiles) {
  for (const std::string name : {"a.png", "a.fits", "a.ser"}) {
    const auto file = scratch.file(name);
    writeOld(file);
    ProgramStart limited =
        start({name == "a.ser" ? "record --frames 5 --no-preview" : "snap",
               "--camera 0 --width 64 --height 48 --overwrite --sdk", sdks.path(), "--out", file});
    limited.largestFile = 500;
    const ProgramResult result = runProgram(limited);
    EXPECT_EQ(result.status, 1);
    EXPECT_PRED_FORMAT2(IsSubstring, "Cannot write \"" + utf8(file) + "\": File too large",
                        result.err);
    EXPECT_EQ(contentOf(file), "old");
  }
  EXPECT_EQ(filesHere(), 3U);
}

#endif

TEST_F(OcCaptureSafety, ThePreviewReplacesNothing) {
  writeOld(scratch.file("recording.png"));
  expectSuccess(recordSmall({"--frames 2"}));
  EXPECT_EQ(contentOf(scratch.file("recording.png")), "old");
  EXPECT_TRUE(isPng(preview()));

  std::filesystem::remove(recording());
  writeOld(preview());
  expectFailure(
      recordSmall({"--frames 2"}), 2,
      "\"" + utf8(preview()) + "\" exists already; name another file or add --overwrite.");
  EXPECT_FALSE(std::filesystem::exists(recording()));
  const ProgramResult result = expectSuccess(recordSmall({"--frames 2 --no-preview --no-log"}));
  EXPECT_PRED_FORMAT2(IsNotSubstring, "preview", result.out);
  EXPECT_EQ(contentOf(preview()), "old");
  expectSuccess(recordSmall({"--frames 2 --overwrite"}));
  EXPECT_TRUE(isPng(preview()));
}

TEST_F(OcCaptureSafety, APreviewThatFailsDoesNotHideTheRecording) {
  std::filesystem::create_directory(preview());
  const ProgramResult result = recordSmall({"--frames 2 --overwrite --json --quiet"});
  EXPECT_EQ(result.status, 1);
  const auto document = ordered_json::parse(result.out);
  expectMembers(document, {{"file", utf8(recording())}, {"frames", 2}, {"preview", nullptr}});
  EXPECT_EQ(result.err, "oc_capture: " + document["error"].get<std::string>() + "\n");
  EXPECT_PRED_FORMAT2(IsSubstring, "Cannot create \"" + utf8(preview()) + "\": ", result.err);
}

const std::string toldFailure = host::explained("ASIGetVideoData: 5") + " Reading goes on.\n";

TEST_F(OcCaptureSafety, ASingleFailedReadDoesNotEndARecording) {
  const std::string failing =
      "clock stopped; force ASIGetVideoData 4 1 5; force ASIGetVideoData 7 2 5";
  const ProgramResult result = expectSuccess(recordSmall({"--frames 10"}, failing));
  const std::size_t told = result.err.find(toldFailure);
  ASSERT_NE(told, std::string::npos) << result.err;
  EXPECT_EQ(result.err.find(toldFailure, told + 1), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("\nASIGetVideoData: 5. Reading goes on.\n", told), std::string::npos)
      << result.err;
  EXPECT_PRED_FORMAT2(IsSubstring, "\n3 reads failed, and reading went on.\n", result.out);
  EXPECT_EQ(SerFile(recording()).frameCount, 10);

  const ProgramResult asJson =
      expectSuccess(recordSmall({"--frames 10 --overwrite --json --quiet"}, failing));
  EXPECT_EQ(asJson.err, "");
  expectMembers(ordered_json::parse(asJson.out), {{"frames", 10}, {"failedReads", 3}});
}

TEST_F(OcCaptureSafety, TheOtherCommandsReadOnToo) {
  const std::string failing = "clock stopped; force ASIGetVideoData 1 2 5";
  const auto failedReads = [&](const char* command, const CommandLine& more) {
    const ProgramResult result = expectSuccess(
        runWithSdks(command, {"--camera 0 --width 64 --height 48 --json", more}, failing));
    EXPECT_PRED_FORMAT2(IsSubstring, toldFailure, result.err);
    return ordered_json::parse(result.out);
  };
  EXPECT_EQ(failedReads("snap", {"--out", scratch.file("a.png")})["failedReads"], 2);
  EXPECT_EQ(failedReads("watch", {"--frames 2"})["failedReads"], 2);
  EXPECT_EQ(failedReads("bench", {"--format raw8 --seconds 0.2"})["measurements"][0]["failedReads"],
            2);
}

TEST_F(OcCaptureSafety, AGapIsToldAndCounted) {
  // 600 answers that no frame is ready, with a pause of 1 ms after each.
  const ProgramResult result = expectSuccess(
      recordSmall({"--frames 40 --exposure 20ms"}, "seed 5; force ASIGetVideoData 21 600 11"));
  EXPECT_TRUE(std::regex_search(result.err,
                                std::regex("(^|\n)No frame for [0-9.]+ m?s after frame 19\\.\n")))
      << result.err;
  EXPECT_TRUE(std::regex_search(
      result.out,
      std::regex("\nGaps: [0-9]+, in which about [0-9]+ frames are missing; the longest, [0-9.]+ "
                 "ms, after frame 19\\.\n")))
      << result.out;

  const ProgramResult quiet =
      expectSuccess(recordSmall({"--frames 40 --exposure 20ms --overwrite --quiet --json"},
                                "seed 5; force ASIGetVideoData 21 600 11"));
  EXPECT_EQ(quiet.err, "");
  const auto document = ordered_json::parse(quiet.out);
  EXPECT_GE(document["gaps"], 1);
  EXPECT_GE(document["missedFrames"], 5);
  EXPECT_GT(document["longestGapSeconds"], 0.5);
  EXPECT_EQ(document["longestGapAfterFrame"], 19);
  const auto played = ordered_json::parse(run({"play --json", recording()}).out);
  EXPECT_EQ(played["timing"]["longestGapAfterFrame"], 19);
}

TEST_F(OcCaptureSafety, OnlyTwentyGapsAreTold) {
  // Two failed reads after each four frames, with a pause of 50 ms after each.
  std::string failing = "seed 5";
  for (int call = 10; call < 10 + 25 * 6; call += 6) {
    failing += "; force ASIGetVideoData " + std::to_string(call) + " 2 5";
  }
  const ProgramResult result = expectSuccess(recordSmall({"--frames 110 --exposure 5ms"}, failing));
  const std::regex line("(^|\n)No frame for ");
  const std::sregex_iterator found(result.err.begin(), result.err.end(), line);
  EXPECT_EQ(std::distance(found, std::sregex_iterator()), 20) << result.err;
  EXPECT_PRED_FORMAT2(IsSubstring, "\nFurther gaps are only counted.\n", result.err);
}

TEST_F(OcCaptureSafety, ThreeGoodFramesHaveNoGap) {
  const ProgramResult result = expectSuccess(
      recordSmall({"--frames 3 --json --quiet"}, "seed 5; force ASIGetVideoData 2 4 5"));
  expectMembers(ordered_json::parse(result.out), {{"gaps", 0}, {"longestGapAfterFrame", nullptr}});
}

TEST_F(OcCaptureSafety, TheRateIsThatOfTheFrames) {
  const ProgramResult result =
      expectSuccess(recordSmall({"--seconds 1.1 --exposure 200ms --json --quiet"}, "seed 5"));
  const auto document = ordered_json::parse(result.out);
  const SerFile file(recording());
  const double seconds =
      static_cast<double>(file.timeStamps.back() - file.timeStamps.front()) / 1e7;
  EXPECT_NEAR(document["framesPerSecond"].get<double>(), (file.frameCount - 1) / seconds, 0.1);
}

}  // namespace

}  // namespace orvane::testing
