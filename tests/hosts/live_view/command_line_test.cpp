// The command line of the live view.
#include "live_view/command_line.hpp"

#include <gtest/gtest.h>

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

TEST(LiveCommandLine, TheSdkDirectoryIsEnough) {
  const auto options = std::get<LiveOptions>(parseLiveCommandLine({"--sdk", "/opt/sdk"}));
  EXPECT_EQ(options.sdkDirectory, "/opt/sdk");
  EXPECT_EQ(options.camera, "");
  EXPECT_EQ(options.recordings, std::filesystem::path("."));
}

TEST(LiveCommandLine, CameraAndRecordings) {
  const auto options = std::get<LiveOptions>(
      parseLiveCommandLine({"--camera", "ASI 290", "--recordings", "n\u00e4chte", "--sdk", "sdk"}));
  EXPECT_EQ(options.camera, "ASI 290");
  EXPECT_EQ(utf8FromPath(options.recordings), "n\u00e4chte");
}

TEST(LiveCommandLine, Help) {
  const auto help = std::get<std::string>(parseLiveCommandLine({"--help"}));
  EXPECT_NE(help.find("--sdk"), std::string::npos);
  EXPECT_NE(help.find("F1 shows the keys."), std::string::npos);
}

TEST(LiveCommandLine, MistakesGetOneSentence) {
  EXPECT_EQ(refusal({}), "--sdk is required.");
  EXPECT_EQ(refusal({"--sdk"}), "--sdk needs one value.");
  EXPECT_EQ(refusal({"--sdk", "a", "b"}), "The following argument was not expected: b.");
}

}  // namespace

}  // namespace orvane::host
