// The samples in C and C++, run as programs.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "doubles/sdk_directory.hpp"
#include "program.hpp"
#include "scratch_directory.hpp"

namespace orvane::testing {
namespace {

class CSamples : public ::testing::Test {
 protected:
  ProgramResult run(const std::string& sample, const std::vector<std::string>& arguments,
                    const std::string& simulator = "") {
    return runProgram({.file = ORVANE_SAMPLES_DIR "/" + sample + ORVANE_PROGRAM_SUFFIX,
                       .arguments = arguments,
                       .simulator = simulator,
                       .outputDirectory = scratch_.path()});
  }

  ScratchDirectory scratch_;
  SdkDirectory sdks_;
};

TEST_F(CSamples, EachTellsItsUsage) {
  EXPECT_EQ(run("list", {}).err, "usage: list SDK-DIRECTORY\n");
  EXPECT_EQ(run("snap", {"x"}).err, "usage: snap SDK-DIRECTORY FILE.pgm\n");
  EXPECT_EQ(run("live", {"x"}).err, "usage: live SDK-DIRECTORY SECONDS\n");
  EXPECT_EQ(run("change_settings", {}).err, "usage: change_settings SDK-DIRECTORY\n");
  EXPECT_EQ(run("load_at_run_time", {"x"}).err,
            "usage: load_at_run_time LIBRARY-FILE SDK-DIRECTORY\n");
  EXPECT_EQ(run("capture", {"x"}).err, "usage: capture SDK-DIRECTORY SECONDS\n");
  EXPECT_EQ(run("list", {}).status, 2);
}

TEST_F(CSamples, ListShowsCamerasAndWhatFailed) {
  sdks_.add("ASICamera2");
  sdks_.add("toupcam");
  const ProgramResult all = run("list", {sdks_.utf8()});
  EXPECT_EQ(all.status, 0) << all.err;
  EXPECT_EQ(all.out.rfind("SDKs: ASICamera2, toupcam\nCameras: 8\n{\"id\":0,", 0), 0U) << all.out;

  const ProgramResult some =
      run("list", {sdks_.utf8()}, "sdk ASICamera2; force ASIGetCameraProperty 2 1 4");
  EXPECT_EQ(some.status, 0);
  EXPECT_NE(some.out.find("Some cameras are missing: "), std::string::npos) << some.out;
}

TEST_F(CSamples, ListWithoutSdksFails) {
  const ProgramResult none = run("list", {sdks_.utf8()});
  EXPECT_EQ(none.out, "SDKs: none\nCameras: 0\n");
  EXPECT_EQ(none.status, 1);
}

TEST_F(CSamples, ListAndCaptureReadADirectoryWithAccents) {
  const SdkDirectory accents("sdk \xc3\xa9\xc3\xb6");
  accents.add("qhyccd");
  const ProgramResult found = run("list", {accents.utf8()});
  EXPECT_EQ(found.out.rfind("SDKs: qhyccd\nCameras: 4\n", 0), 0U) << found.out;
  EXPECT_EQ(run("capture", {accents.utf8(), "0"}).status, 0);
}

TEST_F(CSamples, SnapWritesAPicture) {
  sdks_.add("PlayerOneCamera");
  const std::filesystem::path picture = scratch_.file("picture.pgm");
  const ProgramResult taken = run("snap", {sdks_.utf8(), utf8(picture)});
  EXPECT_EQ(taken.status, 0) << taken.err;
  EXPECT_EQ(taken.out, utf8(picture) + ": 640 x 480\n");
  const std::string content = contentOf(picture);
  EXPECT_EQ(content.rfind("P5\n640 480\n255\n", 0), 0U);
  EXPECT_EQ(content.size(), 15U + 640U * 480U);
}

TEST_F(CSamples, SnapTellsWhatWentWrong) {
  sdks_.add("ASICamera2");
  const std::filesystem::path picture = scratch_.file("picture.pgm");
  const auto failure = [&](const std::string& simulator) {
    const ProgramResult result = run("snap", {sdks_.utf8(), utf8(picture)}, simulator);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    return result.err;
  };
  EXPECT_EQ(failure("force ASIGetNumOfConnectedCameras 1 1 0"), "No camera found. \n");
  EXPECT_EQ(failure("force ASIStartVideoCapture 1 1 16"),
            "Cannot open the camera: ASIStartVideoCapture: 16\n");
  EXPECT_EQ(failure("force ASIGetVideoData 1 1 4"), "Reading failed: ASIGetVideoData: 4\n");
  EXPECT_EQ(failure("force ASIGetVideoData 1 -1 11"), "No frame came in time.\n");
  EXPECT_FALSE(std::filesystem::exists(picture));
}

TEST_F(CSamples, LiveCountsFramesOfEveryMaker) {
  for (const char* name : sdkNames) {
    const SdkDirectory one(name);
    one.add(name);
    const ProgramResult result = run("live", {one.utf8(), "0"});
    EXPECT_EQ(result.status, 0) << name << ": " << result.err;
    EXPECT_GT(std::stol(result.out), 0) << result.out;
    EXPECT_NE(result.out.find(" frames of 640 x 480, sensor at "), std::string::npos);
  }
}

TEST_F(CSamples, LiveStopsWhenTheCameraIsUnplugged) {
  sdks_.add("ASICamera2");
  const ProgramResult result = run("live", {sdks_.utf8(), "30"}, "unplug 0 ASIGetVideoData 5");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out.rfind("4 frames of 640 x 480", 0), 0U) << result.out;
  EXPECT_EQ(result.err.rfind("Reading failed: ASIGetVideoData: ", 0), 0U) << result.err;
}

TEST_F(CSamples, ChangedSettingsShowInTheFrames) {
  sdks_.add("ASICamera2");
  const ProgramResult result = run("change_settings", {sdks_.utf8()});
  EXPECT_EQ(result.status, 0) << result.err;
  std::vector<double> means;
  for (std::size_t at = 0; (at = result.out.find("mean ", at)) != std::string::npos;) {
    means.push_back(std::stod(result.out.substr(at += 5)));
  }
  ASSERT_EQ(means.size(), 5U) << result.out;
  EXPECT_GT(means[4], means[0]) << result.out;

  const ProgramResult refused =
      run("change_settings", {sdks_.utf8()}, "force ASISetControlValue 6 1 2");
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err.rfind("Cannot change the settings: ASI ", 0), 0U) << refused.err;
}

TEST_F(CSamples, TheLibraryCanBeLoadedAtRunTime) {
  sdks_.add("toupcam");
  const ProgramResult result = run("load_at_run_time", {ORVANE_LIBRARY_FILE, sdks_.utf8()});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.rfind("SDKs: toupcam\n{\"id\":0,", 0), 0U) << result.out;

  const std::string nowhere = utf8(scratch_.file("nowhere"));
  const ProgramResult without = run("load_at_run_time", {nowhere, sdks_.utf8()});
  EXPECT_EQ(without.status, 1);
  EXPECT_EQ(without.err, "Cannot load " + nowhere + "\nGoing on without cameras.\n");
}

TEST_F(CSamples, CaptureCountsFramesOnASecondThread) {
  sdks_.add("ASICamera2");
  const ProgramResult result = run("capture", {sdks_.utf8(), "1"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_GT(std::stol(result.out), 1) << result.out;
  const std::regex numbers(" frames of 1280 x 960, [0-9.]+ a second, [0-9]+ dropped");
  EXPECT_TRUE(std::regex_search(result.out, numbers)) << result.out;
}

TEST_F(CSamples, CaptureTellsWhatWentWrong) {
  EXPECT_EQ(run("capture", {sdks_.utf8(), "0"}).err, "No camera found. \n");
  sdks_.add("ASICamera2");
  const ProgramResult refused =
      run("capture", {sdks_.utf8(), "0"}, "force ASIStartVideoCapture 1 1 16");
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err, "ASIStartVideoCapture: 16\n");
  const ProgramResult lost = run("capture", {sdks_.utf8(), "30"}, "unplug 0 ASIGetVideoData 5");
  EXPECT_EQ(lost.status, 1);
  EXPECT_EQ(lost.out.rfind("4 frames of 1280 x 960", 0), 0U) << lost.out;
  EXPECT_EQ(lost.err, "The camera is lost: ASIGetVideoData: 5\n");
}

}  // namespace
}  // namespace orvane::testing
