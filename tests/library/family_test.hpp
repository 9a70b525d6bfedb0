// Shared by the tests of all camera families: the library and one SDK with one small camera.
#pragma once

#include <algorithm>
#include <utility>

#include "library/library_test.hpp"

namespace orvane::testing {

/// A small colour camera of 320 x 202 pixels with every feature. The caller sets the maker's own
/// codes.
inline SimCamera smallCamera() {
  SimCamera camera{};
  setText(camera.name, "small");
  setText(camera.key, "small-0123");
  camera.id = 7;  // not the enumeration index
  camera.width = 320;
  camera.height = 202;
  camera.pixelSizeUm = 3.75;
  camera.bitDepth = 12;
  camera.isColor = 1;
  camera.isUsb3Camera = 1;
  camera.isUsb3Host = 1;
  camera.bins[0] = 1;
  camera.bins[1] = 2;
  const std::int32_t formats[8] = {0, 1, 2, 3, -1, -1, -1, -1};
  std::memcpy(camera.formats, formats, sizeof formats);
  camera.gainMin = 0;
  camera.gainMax = 100;
  camera.exposureMinUs = 32;
  camera.exposureMaxUs = 1000000000;
  camera.offsetMin = 0;
  camera.offsetMax = 20;
  camera.hasTemperature = 1;
  return camera;
}

/// The same for the SDK of this family, with the Bayer pattern RGGB.
inline SimCamera smallCamera(const SdkFamily& family) {
  SimCamera camera = smallCamera();
  camera.bayerPattern = family.rggb;
  return camera;
}

/// A call to fail, and the label under which the library reports the failure.
struct FailingCall {
  const char* function;
  const char* label;
};

/// The library and one maker's SDK.
class FamilyTest : public LibraryTest {
 protected:
  FamilyTest(const std::string& baseName, const SimCamera& shown)
      : small(shown), sdk(install(baseName)) {
    sdk.setCameras({small});
  }

  /// Opens the only camera with exposure 20 ms, gain 10 (or the given one) and offset 5.
  int open(int width, int height, int bin = 1, int format = 0) {
    return oc.open(0, width, height, bin, format, 20000, gain, 5);
  }

  /// Scans, opens the small camera with its full size, and empties the log.
  void openSmall(int format = 0, int bin = 1) {
    ASSERT_EQ(oc.scan(), 1) << error();
    ASSERT_EQ(open(small.width, small.height, bin, format), 1) << error();
    sdk.takeLog();
  }

  /// Replaces the camera, scans, and empties the log.
  void rescanWith(const SimCamera& camera) {
    sdk.setCameras({camera});
    ASSERT_EQ(oc.scan(), 1) << error();
    sdk.takeLog();
  }

  /// Checks a failed open: result, message and state are right, and nothing is left open.
  void expectOpenFailed(int result, const std::string& message) {
    EXPECT_EQ(result, 0);
    EXPECT_EQ(error(), message);
    EXPECT_EQ(oc.buffer_size(), 0);
    expectClean(sdk);
  }

  /// Fails each call of an open in turn. Each open must fail under the label of the call, make no
  /// later call except the one that closes, and leave nothing open.
  void expectOpenFailsAtEachOf(const std::vector<FailingCall>& calls, std::int64_t result,
                               const std::string& printed, const std::string& lastCall) {
    for (const auto& [function, label] : calls) {
      sdk.clear_faults();
      sdk.takeLog();
      sdk.forceResult(function, result);
      expectOpenFailed(open(small.width, small.height), std::string(label) + ": " + printed);
      const std::string log = sdk.takeLog();
      const std::string end = std::string(function) + "(";
      const std::size_t failing = log.find(end);
      ASSERT_NE(failing, std::string::npos) << function << " is not called";
      const std::size_t next = log.find('\n', failing) + 1;
      EXPECT_EQ(log.substr(next), lastCall) << "after " << function;
    }
    sdk.clear_faults();
  }

  /// The bytes that the SDK delivers for frame `number` of the open stream.
  std::vector<std::uint8_t> sdkFrame(int number, int size) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    EXPECT_EQ(sdk.render_frame(number, bytes.data(), size), size);
    return bytes;
  }

  SimCamera small;
  int gain = 10;
  SimulatedSdk sdk;
};

}  // namespace orvane::testing
