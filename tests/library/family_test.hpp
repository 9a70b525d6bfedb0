// Shared by the tests of all camera families: the library and one SDK with one small camera.
#pragma once

#include <algorithm>
#include <utility>

#include "library/library_test.hpp"

namespace orvane::testing {

/// A small colour camera of 320 x 202 pixels with every feature. The caller sets the maker's own
/// codes.
inline SimCamera smallCamera() {
  SimCamera camera = colourCamera("small", "small-0123");
  camera.width = 320;
  camera.height = 202;
  return camera;
}

/// The same for the SDK of this family: with the Bayer pattern RGGB, and with gains that every
/// family accepts.
inline SimCamera smallCamera(const SdkFamily& family) {
  SimCamera camera = smallCamera();
  camera.bayerPattern = family.rggb;
  camera.gainMax = 1000;
  return camera;
}

/// The library and one maker's SDK.
class FamilyTest : public LibraryTest {
 protected:
  explicit FamilyTest(const std::string& baseName)
      : family(familyNamed(baseName)), small(smallCamera(family)), sdk(install(baseName)) {
    sdk.setCameras({small});
  }

  /// Scans, expects one camera, and empties the log.
  void scan() {
    ASSERT_EQ(oc.scan(), 1) << error();
    sdk.takeLog();
  }

  /// Replaces the camera by `small`, which the test has changed, and scans.
  void rescan() {
    sdk.setCameras({small});
    scan();
  }

  /// Opens the first camera with exposure 20 ms, gain 150 and offset 5.
  int open(int width = 320, int height = 202, int bin = 1, int format = 0) {
    return oc.open(0, width, height, bin, format, 20000, 150, 5);
  }

  /// Scans, opens the small camera with its full size, and empties the log.
  void openSmall(int format = 0) {
    ASSERT_NO_FATAL_FAILURE(scan());
    ASSERT_EQ(open(small.width, small.height, 1, format), 1) << error();
    sdk.takeLog();
  }

  /// Reads a frame after giving the SDK time to have one.
  int nextFrame() {
    sdk.advance_clock(100000);
    return readFrame();
  }

  /// A copy of the small camera with another name, key and id.
  SimCamera secondCamera() const {
    SimCamera camera = small;
    setText(camera.name, "second");
    setText(camera.key, "other");
    camera.id = 9;
    return camera;
  }

  /// Copies of the small camera with different keys.
  std::vector<SimCamera> manyCameras(std::size_t count) const {
    std::vector<SimCamera> many(count, small);
    for (std::size_t i = 0; i < count; ++i) {
      setText(many[i].key, "small-" + std::to_string(i));
    }
    return many;
  }

  /// Forces a result, and removes all earlier faults.
  void onlyResult(const char* function, std::int64_t result, int nth = 1, int times = -1) const {
    sdk.clear_faults();
    sdk.forceResult(function, result, nth, times);
  }

  /// Forces an output, and removes all earlier faults.
  void onlyOutput(const char* function, const char* output, double value) const {
    sdk.clear_faults();
    sdk.forceOutput(function, output, value);
  }

  /// These values of the first camera's description, separated by blanks.
  std::string values(const std::vector<std::string>& keys) const {
    std::string text;
    for (const std::string& key : keys) {
      text += (text.empty() ? "" : " ") + infoValue(0, key);
    }
    return text;
  }

  std::string limits() const { return values({"maxExposureUs", "minGain", "maxGain"}); }

  /// Checks a failed open: result, message and state are right, and nothing is left open.
  void expectOpenFailed(int result, const std::string& message) {
    EXPECT_EQ(result, 0);
    EXPECT_EQ(error(), message);
    EXPECT_EQ(oc.buffer_size(), 0);
    expectClean(sdk);
  }

  /// The bytes that the SDK delivers for frame `number` of the open stream.
  std::vector<std::uint8_t> rendered(int number) const {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(oc.buffer_size()));
    const int size = sdk.render_frame(number, bytes.data(), oc.buffer_size());
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
  }

  const SdkFamily& family;
  SimCamera small;
  SimulatedSdk sdk;
};

/// The library and ZWO's SDK.
class AsiTest : public FamilyTest {
 protected:
  AsiTest() : FamilyTest("ASICamera2") {}
};

}  // namespace orvane::testing
