// The command line of the live view.
#include "live_view/command_line.hpp"

#include <gtest/gtest.h>

#include "documents.hpp"
#include "session/file_names.hpp"
#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

std::string refusal(const std::vector<std::string>& arguments) {
  try {
    parseLiveCommandLine(arguments);
  } catch (const UsageError& error) {
    return error.what();
  }
  return "";
}

TEST(LiveCommandLine, NothingIsNeeded) {
  const auto options = std::get<LiveOptions>(parseLiveCommandLine({}));
  EXPECT_EQ(options.sdkDirectory, "");
  EXPECT_TRUE(options.keepsSettings);
  EXPECT_FALSE(std::get<LiveOptions>(parseLiveCommandLine({"--no-settings"})).keepsSettings);
}

TEST(LiveCommandLine, TheSdkDirectoryIsEnough) {
  const auto options = std::get<LiveOptions>(parseLiveCommandLine({"--sdk", "/opt/sdk"}));
  EXPECT_EQ(options.sdkDirectory, "/opt/sdk");
  EXPECT_EQ(options.camera, "");
  EXPECT_EQ(options.recordings, std::filesystem::path());
}

TEST(LiveCommandLine, CameraAndRecordings) {
  const auto options = std::get<LiveOptions>(
      parseLiveCommandLine({"--camera", "ASI 290", "--recordings", "n\u00e4chte", "--sdk", "sdk"}));
  EXPECT_EQ(options.camera, "ASI 290");
  EXPECT_EQ(utf8FromPath(options.recordings), "n\u00e4chte");
}

TEST(LiveCommandLine, WhatRecordingsAreLike) {
  const auto options = std::get<LiveOptions>(parseLiveCommandLine(
      {"--name", "{target}_{time}", "--target", "M 42", "--filter", "H\u03b1", "--observer", "A",
       "--telescope", "B", "--frames", "500", "--seconds", "1.5"}));
  const RecordingWish& recording = options.recording;
  EXPECT_EQ(recording.nameTemplate, "{target}_{time}");
  EXPECT_EQ(recording.target, "M 42");
  EXPECT_EQ(recording.filter, "H\u03b1");
  EXPECT_EQ(recording.observer, "A");
  EXPECT_EQ(recording.telescope, "B");
  EXPECT_EQ(recording.limit, (RecordingLimit{500, 1500000}));
  const auto usual = std::get<LiveOptions>(parseLiveCommandLine({}));
  EXPECT_EQ(usual.recording.nameTemplate, usualNameTemplate);
  EXPECT_EQ(usual.recording.limit, RecordingLimit());
}

TEST(LiveCommandLine, TheCommandForObserversIsTaken) {
  std::vector<std::string> directories;
  for (const testing::ShownCommand& command :
       testing::shownCommands(testing::documentText("observers.md"), testing::observersPrompt)) {
    if (command.program == "live_view") {
      const auto options = std::get<LiveOptions>(parseLiveCommandLine(command.arguments));
      directories.push_back(options.sdkDirectory);
    }
  }
  EXPECT_EQ(directories, std::vector<std::string>{"..\\simulated-sdks"});
}

TEST(LiveCommandLine, Help) {
  const auto help = std::get<std::string>(parseLiveCommandLine({"--help"}));
  EXPECT_NE(help.find("--sdk"), std::string::npos);
  EXPECT_NE(help.find("F1 shows the keys."), std::string::npos);
  EXPECT_EQ(std::get<std::string>(parseLiveCommandLine({"--version"})),
            "live_view " ORVANE_VERSION);
}

TEST(LiveCommandLine, MistakesGetOneSentence) {
  EXPECT_EQ(refusal({"--frames", "0"}),
            "--frames needs a whole number from 1 to 2147483647, not \"0\".");
  EXPECT_EQ(refusal({"--seconds", "0"}),
            "--seconds needs a number of seconds above 0, such as 30 or 1.5, not \"0\".");
  EXPECT_EQ(refusal({"--name", "{moon}"}),
            "--name has no field {moon}; there are " + nameFields() + ".");
  EXPECT_EQ(refusal({"--sdk"}), "--sdk needs one value.");
  EXPECT_EQ(refusal({"--sdk", "a", "b"}), "The following argument was not expected: b.");
}

}  // namespace

}  // namespace orvane::host
