// What the tests of oc_capture share: starting it, and the frames that it should have recorded.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "doubles/sdk_directory.hpp"
#include "doubles/simulated_sdk.hpp"
#include "program.hpp"
#include "scratch_directory.hpp"
#include "ser_file.hpp"
#include "support/library_under_test.hpp"

namespace orvane::testing {

using Bytes = std::vector<std::uint8_t>;
using ::testing::IsNotSubstring;
using ::testing::IsSubstring;

/// A part of a command line: words separated by spaces in a literal ("" is an empty word), one word
/// in a string or a path, or several parts.
struct Part {
  Part(const char* literal);
  Part(const std::string& word) : words{word} {}
  Part(const std::filesystem::path& file) : words{utf8(file)} {}
  Part(const std::vector<Part>& parts);

  std::vector<std::string> words;
};

using CommandLine = std::vector<Part>;

/// A directory of simulated SDKs, empty at first, and a place for recordings.
class OcCaptureTest : public ::testing::Test {
 protected:
  static constexpr const char* stoppedClock = "clock stopped; seed 5";

  /// How oc_capture is started with these arguments and simulator commands.
  ProgramStart start(const CommandLine& arguments,
                     const std::string& simulator = stoppedClock) const {
    return {ORVANE_OC_CAPTURE_FILE, Part(arguments).words, simulator, scratch.path()};
  }

  ProgramResult run(const CommandLine& arguments,
                    const std::string& simulator = stoppedClock) const {
    return runProgram(start(arguments, simulator));
  }

  /// Runs a command with "--sdk".
  ProgramResult runWithSdks(const char* command, const CommandLine& more,
                            const std::string& simulator = stoppedClock) const {
    return run({command, "--sdk", sdks.path(), more}, simulator);
  }

  /// Records from a camera, the first if not given, into recording().
  ProgramResult record(const CommandLine& more, const std::string& simulator = stoppedClock,
                       const char* camera = "0") const {
    return runWithSdks("record", {"--camera", camera, "--out", recording(), more}, simulator);
  }

  std::filesystem::path recording() const { return scratch.file("recording.ser"); }
  std::filesystem::path preview() const { return scratch.file("recording-preview.png"); }

  const SdkDirectory sdks;
  const ScratchDirectory scratch;
};

/// The same with ZWO's simulated SDK in the directory. Its first camera is an ASI120MC-S.
class OcCaptureAsiTest : public OcCaptureTest {
 protected:
  OcCaptureAsiTest() { sdks.add("ASICamera2"); }
};

/// What to do about this directory if it has no SDK.
std::string cureOfNoSdk(const SdkDirectory& sdks);

/// Expects exit status 0. Returns the result.
ProgramResult expectSuccess(const ProgramResult& result);

/// What the program writes to standard error when it fails: a message, with its cause and cure.
std::string errorText(const std::string& message);

/// Expects this exit status and this message, and no other output.
void expectFailure(const ProgramResult& result, int status, const std::string& message);

/// Expects a text that matches the regular expression as a whole.
void expectMatch(const std::string& text, const std::string& pattern);

/// Expects these members, among others.
void expectMembers(const nlohmann::ordered_json& document, const nlohmann::ordered_json& expected);

bool isPng(const std::filesystem::path& file);

/// The camera with the simulator's seed 5, opened in this process, to know what its frames are.
class ReferenceCamera {
 public:
  /// The SDK's first camera, with oc_open()'s arguments.
  ReferenceCamera(const SdkDirectory& sdks, const std::string& baseName, int width, int height,
                  int bin, int format, std::int64_t exposureUs, int gain, int offset);
  ~ReferenceCamera();
  ReferenceCamera(const ReferenceCamera&) = delete;
  ReferenceCamera& operator=(const ReferenceCamera&) = delete;

  /// Frame `number` as the library delivers it.
  Bytes frame(int number) const;

 private:
  SimulatedSdk sdk_;
  LibraryUnderTest oc_;
  bool swapsRedAndBlue_;
  std::size_t frameSize_;
};

/// Expects this number of frames in a recording: the camera's, from `first` on.
void expectFrames(const SerFile& file, const ReferenceCamera& camera, int count, int first = 0);

}  // namespace orvane::testing
