// What is remembered from one start to the next.
#include "live_view/live_settings.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "failure.hpp"
#include "scratch_directory.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using testing::failureOf;
using testing::ScratchDirectory;

RememberedSettings exampleSettings() {
  RememberedSettings settings;
  settings.sdkDirectory = "C:\\SDKs\\m\u00fcller";
  settings.recordings = "/n\u00e4chte";
  settings.camera = "Colour One";
  oc::Settings camera;
  camera.bin = 2;
  camera.format = PixelFormat::Raw16;
  camera.exposureUs = 2'000'000'000;
  camera.gain = -3;
  camera.offset = 7;
  settings.cameras["Colour One"] = camera;
  settings.cameras["Mono \"Two\""] = {};
  settings.window = WindowPlace{-5, 10, 1280, 800, true};
  return settings;
}

TEST(LiveSettings, AreReadAsTheyWereWritten) {
  const ScratchDirectory scratch;
  const std::filesystem::path file = scratch.file("a") / "b" / "live_view.json";
  writeSettings(file, exampleSettings());
  writeSettings(file, exampleSettings());  // replaces it
  const RememberedSettings read = readSettings(file);
  EXPECT_EQ(read.sdkDirectory, exampleSettings().sdkDirectory);
  EXPECT_EQ(read.recordings, "/n\u00e4chte");
  EXPECT_EQ(read.camera, "Colour One");
  ASSERT_EQ(read.cameras.size(), 2U);
  const oc::Settings& camera = read.cameras.at("Colour One");
  EXPECT_EQ(camera.bin, 2);
  EXPECT_EQ(camera.format, PixelFormat::Raw16);
  EXPECT_EQ(camera.exposureUs, 2'000'000'000);
  EXPECT_EQ(camera.gain, -3);
  EXPECT_EQ(camera.offset, 7);
  EXPECT_EQ(read.window, exampleSettings().window);
}

TEST(LiveSettings, NothingIsRememberedAtTheFirstStart) {
  const ScratchDirectory scratch;
  EXPECT_EQ(readSettings(scratch.file("none.json")).sdkDirectory, "");
  EXPECT_FALSE(readSettings({}).window);
  EXPECT_TRUE(readSettings({}).cameras.empty());
}

TEST(LiveSettings, ADamagedFileIsTold) {
  const ScratchDirectory scratch;
  const std::filesystem::path file = scratch.file("live_view.json");
  for (const char* const content :
       {"", "{", "[]", "7", R"({"sdkDirectory": 3})", R"({"cameras": []})",
        R"({"cameras": {"a": 1}})", R"({"cameras": {"a": {"format": "raw99"}}})",
        R"({"cameras": {"a": {"exposureUs": 0}}})", R"({"cameras": {"a": {"exposureUs": 1e9}}})",
        R"({"cameras": {"a": {"gain": 99999999999}}})", R"({"window": {"width": 0}})",
        R"({"window": {"left": 2000000}})", R"({"window": {"left": "x"}})",
        "{\"camera\": \"\xff\"}"}) {
    std::ofstream(file, std::ios::binary) << content;
    EXPECT_EQ(failureOf([&] { readSettings(file); }),
              "The settings in " + inQuotes(testing::utf8(file)) +
                  " are damaged, and the usual ones are used.")
        << content;
  }
  std::ofstream(file, std::ios::binary) << R"({"camera": "a", "cameras": {"a": {}}, "new": 1})";
  EXPECT_EQ(readSettings(file).cameras.at("a").exposureUs, oc::Settings().exposureUs);
}

TEST(LiveSettings, TheFileIsInTheProfile) {
#ifdef _WIN32
  const std::vector<const char*> variables{"APPDATA"};
  constexpr const char* directory = "Orvane";
#else
  const std::vector<const char*> variables{"XDG_DATA_HOME", "HOME"};
  constexpr const char* directory = "orvane";
#endif
  std::vector<std::string> before;
  before.reserve(variables.size());
  for (const char* const variable : variables) {
    before.push_back(environmentVariable(variable));
  }
  setEnvironmentVariable(variables.front(), "profile");
  EXPECT_EQ(settingsFile(), std::filesystem::path("profile") / directory / "live_view.json");
  for (const char* const variable : variables) {
    setEnvironmentVariable(variable, "");
  }
  EXPECT_EQ(settingsFile(), std::filesystem::path());
  for (std::size_t number = 0; number < variables.size(); ++number) {
    setEnvironmentVariable(variables[number], before[number]);
  }
}

TEST(Remember, OnlyWhatWorked) {
  RememberedSettings settings = exampleSettings();
  LiveState state;
  state.sdkDirectory = "elsewhere";
  state.recordings = "there";
  state.capture.camera.name = "New";
  remember(settings, state);
  EXPECT_EQ(settings.sdkDirectory, exampleSettings().sdkDirectory);
  EXPECT_EQ(settings.recordings, "there");
  EXPECT_EQ(settings.camera, "Colour One");

  state.sdks = {"ASICamera2"};
  state.phase = LivePhase::Streaming;
  state.capture.opening = 1;
  state.capture.settings.exposureUs = 77;
  remember(settings, state);
  EXPECT_EQ(settings.sdkDirectory, "elsewhere");
  EXPECT_EQ(settings.camera, "New");
  EXPECT_EQ(settings.cameras.at("New").exposureUs, 77);
  EXPECT_EQ(settings.cameras.size(), 3U);
}

TEST(FillIn, TheDirectoryBesideTheProgramComesBeforeTheOneOfBefore) {
  const ScratchDirectory scratch;
  RememberedSettings settings;
  settings.sdkDirectory = testing::utf8(scratch.file("before"));
  const auto chosen = [&](const std::string& given) {
    LiveOptions options;
    options.sdkDirectory = given;
    fillIn(options, settings, scratch.path());
    return options.sdkDirectory;
  };
  EXPECT_EQ(chosen(""), "");  // it is not there
  std::filesystem::create_directory(scratch.file("before"));
  EXPECT_EQ(chosen(""), settings.sdkDirectory);
  std::filesystem::create_directory(scratch.file("sdk"));
  EXPECT_EQ(chosen(""), testing::utf8(scratch.path() / "sdk"));
  EXPECT_EQ(chosen("given"), "given");
}

TEST(FillIn, TheCommandLineComesFirst) {
  LiveOptions options;
  fillIn(options, exampleSettings(), {});
  EXPECT_EQ(utf8FromPath(options.recordings), "/n\u00e4chte");
  EXPECT_EQ(options.lastCamera, "Colour One");
  EXPECT_EQ(options.knownSettings.size(), 2U);
  options.recordings = "given";
  fillIn(options, exampleSettings(), {});
  EXPECT_EQ(options.recordings, "given");
}

}  // namespace

}  // namespace orvane::host
