// What the tests of oc_capture share: starting it, and the frames that it should have recorded.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
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

/// A directory of simulated SDKs, empty at first, and a place for recordings.
class OcCaptureTest : public ::testing::Test {
 protected:
  /// How oc_capture is started with these arguments and simulator commands.
  ProgramStart start(const std::vector<std::string>& arguments,
                     const std::string& simulator = "clock stopped; seed 5") const {
    return {ORVANE_OC_CAPTURE_FILE, arguments, simulator, scratch.path()};
  }

  ProgramResult run(const std::vector<std::string>& arguments,
                    const std::string& simulator = "clock stopped; seed 5") const {
    return runProgram(start(arguments, simulator));
  }

  /// The arguments that record from a camera into recording(), and these.
  std::vector<std::string> recordArguments(const std::vector<std::string>& more,
                                           const std::string& camera = "0") const {
    std::vector<std::string> arguments{"record", "--sdk", sdks.utf8(),      "--camera",
                                       camera,   "--out", utf8(recording())};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  std::filesystem::path recording() const { return scratch.file("recording.ser"); }
  std::filesystem::path preview() const { return scratch.file("recording.png"); }

  const SdkDirectory sdks;
  const ScratchDirectory scratch;
};

/// The camera with the simulator's seed 5, opened in this process, to know what its frames are.
class ReferenceCamera {
 public:
  /// The SDK's first camera, with oc_open()'s arguments.
  ReferenceCamera(const SdkDirectory& sdks, const std::string& baseName, int width, int height,
                  int bin, int format, std::int64_t exposureUs, int gain, int offset);
  ~ReferenceCamera();
  ReferenceCamera(const ReferenceCamera&) = delete;
  ReferenceCamera& operator=(const ReferenceCamera&) = delete;

  /// Frame `number` as the library hands it on.
  Bytes frame(int number) const;

 private:
  SimulatedSdk sdk_;
  LibraryUnderTest oc_;
  bool swapsRedAndBlue_;
  std::size_t frameSize_;
};

}  // namespace orvane::testing
