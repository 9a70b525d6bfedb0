// Simulated SDKs with commands in the environment, in a program: wrong commands, and the examples
// of docs/simulators.md.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <map>
#include <regex>
#include <sstream>
#include <thread>

#include "documents.hpp"
#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

class OcCaptureSimulator : public OcCaptureTest {
 protected:
  OcCaptureSimulator() {
    for (const char* const name : sdkNames) {
      sdks.add(name);
    }
  }

  static std::string document() { return documentText("simulators.md"); }

  // The groups of each part of the text that matches.
  static std::vector<std::vector<std::string>> matches(const std::string& text,
                                                       const char* pattern) {
    const std::regex expression(pattern);
    std::vector<std::vector<std::string>> found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
         ++match) {
      found.emplace_back(match->begin(), match->end());
    }
    return found;
  }
};

TEST_F(OcCaptureSimulator, AnErrorThatConcernsAllIsToldOnceAndNoSdkWorks) {
  const std::string told =
      "ORVANE_SIMULATOR: \"focre ASIOpenCamera 1 -1 16\": unknown command \"focre\"\n";
  const ProgramResult result = runWithSdks("list", {}, "seed 5; focre ASIOpenCamera 1 -1 16");
  EXPECT_EQ(result.err, told);
  for (const char* camera : {"ZWO", "Mars-C", "QHY5III482C", "SkyRaiderDS6.3"}) {
    EXPECT_PRED_FORMAT2(IsNotSubstring, camera, result.out);
  }
  EXPECT_PRED_FORMAT2(IsSubstring, "unknown SDK \"qhycdc\"",
                      runWithSdks("list", {}, "sdk qhycdc; seed 5").err);
}

TEST_F(OcCaptureSimulator, AnErrorInACommandForOneSdkStopsThatOneOnly) {
  const std::string command = "output ASIGetCameraProperty PixelSise 1 -1 3";
  const ProgramResult result = runWithSdks("list", {}, "sdk ASICamera2; " + command);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err.find("ORVANE_SIMULATOR: \"" + command +
                            "\": unknown output \"PixelSise\" of ASIGetCameraProperty, which has "
                            "result CameraID "),
            0U)
      << result.err;
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
  EXPECT_PRED_FORMAT2(IsNotSubstring, "ZWO", result.out);
  for (const char* camera : {"Mars-C", "QHY5III482C", "SkyRaiderDS6.3"}) {
    EXPECT_PRED_FORMAT2(IsSubstring, camera, result.out);
  }
}

TEST_F(OcCaptureSimulator, AFunctionOfOneSdkNeedsNoNameOfTheSdk) {
  const ProgramResult result = runWithSdks("list", {}, "force Toupcam_EnumV2 1 -1 0");
  EXPECT_EQ(result.err, "");
  EXPECT_PRED_FORMAT2(IsSubstring, "ZWO ASI120MC-S", result.out);
  EXPECT_PRED_FORMAT2(IsNotSubstring, "SkyRaiderDS6.3", result.out);
}

// What a stopped SDK is to the library: a file that does not load, or an SDK without cameras.
TEST_F(OcCaptureSimulator, AStoppedSdkIsNotLoadedOrHasNoCameras) {
  const std::string json =
      runWithSdks("doctor", {"--scan --json"}, "sdk toupcam; force Toupcam_Opne 1 1 0").out;
#ifdef _WIN32
  EXPECT_PRED_FORMAT2(IsSubstring, "\"ASICamera2, PlayerOneCamera, qhyccd\"", json);
#else
  EXPECT_PRED_FORMAT2(IsSubstring, "\"" + joinedSdkNames() + "\"", json);
#endif
  EXPECT_PRED_FORMAT2(IsNotSubstring, "SkyRaider", json);
}

TEST_F(OcCaptureSimulator, ACallThatHangsDoesNotReturn) {
  const std::filesystem::path log = scratch.file("calls");
  const auto called = [&log] {
    return std::filesystem::exists(log) && contentOf(log).ends_with("ASIOpenCamera(0) hangs\n");
  };
  const Program program(start({"list", "--sdk", sdks.path()},
                              "sdk ASICamera2; log " + utf8(log) + "; hang ASIOpenCamera 1"));
  while (!called() && program.isRunning()) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_TRUE(program.isRunning());
  program.kill();
  EXPECT_EQ(program.wait().out, "");
  EXPECT_TRUE(called()) << contentOf(log);
}

TEST_F(OcCaptureSimulator, ACallThatCrashesEndsTheProcess) {
  const std::filesystem::path log = scratch.file("calls");
  const ProgramResult result =
      runWithSdks("list", {}, "log " + utf8(log) + "; crash ASIOpenCamera 2");
#ifdef _WIN32
  constexpr std::uint32_t accessViolation = 0xC0000005;
  EXPECT_EQ(result.status, static_cast<int>(accessViolation));
#elif !defined(__SANITIZE_ADDRESS__)
  EXPECT_EQ(result.status, -SIGSEGV);
#endif
  EXPECT_EQ(result.out, "");
  EXPECT_TRUE(contentOf(log).ends_with("ASIOpenCamera(1) crashes\n")) << contentOf(log);
}

// Every command in the table, with values for its parameters.
TEST_F(OcCaptureSimulator, TheDocumentedCommandsAreAccepted) {
  const SimulatedSdk sdk(sdks.file("ASICamera2"));
  expectSuccess(record({"--frames 1 --width 64 --height 48"}));
  const std::map<std::string, std::string> values{{"NAME", "ASICamera2"},
                                                  {"FUNCTION", "ASIGetCameraProperty"},
                                                  {"OUTPUT", "PixelSize"},
                                                  {"NTH", "1"},
                                                  {"TIMES", "-1"},
                                                  {"RESULT", "16"},
                                                  {"VALUE", "2.5"},
                                                  {"KIND", "standard"},
                                                  {"[TEXT]", "usb lost"},
                                                  {"INDEX", "0"},
                                                  {"N", "7"},
                                                  {"MODEL", "ZWO ASI120MM"},
                                                  {"[silently]", "silently"},
                                                  {"FRAMES", "3"},
                                                  {"CONTROL", "9"},
                                                  {"FILE", utf8(recording())}};
  std::size_t count = 0;
  for (const auto& row : matches(document(), "\n\\| (`[a-z][^|]*`) \\|")) {
    for (const auto& form : matches(row[1], "`([^`]+)`")) {
      std::istringstream words(form[1]);
      std::string command;
      for (std::string word; words >> word;) {
        const auto value = values.find(word);
        command += (command.empty() ? "" : " ") + (value == values.end() ? word : value->second);
      }
      if (command.starts_with("log ")) {
        command = "log " + utf8(scratch.file("calls"));
      }
      EXPECT_EQ(sdk.command(command.c_str()), 1) << command;
      ++count;
    }
  }
  EXPECT_EQ(count, 21U);
}

// Every example with a program says what the document shows.
TEST_F(OcCaptureSimulator, TheDocumentedExamplesRunAsShown) {
  std::size_t count = 0;
  for (const auto& example :
       matches(document(), "\\$ ORVANE_SIMULATOR='([^']*)' \\\\\n +oc_capture (.*)\n([^`]*)```")) {
    const std::string& simulator = example[1];
    const std::string name = matches(example[2], "--out (\\w+\\.ser)").at(0)[1];
    const std::string out = utf8(scratch.file(name));
    const std::string arguments =
        replaced(replaced(example[2], "--sdk DIR", ""), "--out " + name, "");
    const std::string expected = replaced(example[3], "\"" + name + "\"", "\"" + out + "\"");
    const ProgramResult result =
        run({arguments.c_str(), "--overwrite --sdk", sdks.path(), "--out", out}, simulator);
    // The document leaves out the lines that tell how far a recording is.
    EXPECT_EQ(std::regex_replace(result.err, std::regex("[^\n]* fps, [^\n]*\n"), ""), expected)
        << simulator;
    EXPECT_EQ(result.status, 1) << simulator;
    ++count;
  }
  EXPECT_EQ(count, 6U);
}

// The example of a scene names a file that only its reader has.
TEST_F(OcCaptureSimulator, TheDocumentedSceneIsAccepted) {
  expectSuccess(record({"--frames 1 --width 64 --height 48"}));
  const auto scenes = matches(document(), "ORVANE_SIMULATOR=\"([^\"]*)\"");
  EXPECT_EQ(scenes.size(), 1U);
  for (const auto& scene : scenes) {
    const std::string command = replaced(scene[1], "/home/me/jupiter.ser", utf8(recording()));
    EXPECT_PRED_FORMAT2(IsSubstring, utf8(recording()), command);
    const ProgramResult result = runWithSdks("list", {}, command);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
  }
}

}  // namespace

}  // namespace orvane::testing
