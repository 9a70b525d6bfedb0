// What the tests of ZWO ASI cameras share.
#pragma once

#include <algorithm>

#include "library/library_test.hpp"

namespace orvane::testing {

/// A small colour camera with everything: the SDK's id 7 at enumeration index 0, mosaic RGGB.
inline SimCamera smallAsiCamera() {
  SimCamera camera{};
  setText(camera.name, "small");
  camera.id = 7;
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

/// The library with ZWO's SDK beside it, showing one small camera.
class AsiTest : public LibraryTest {
 protected:
  AsiTest() { sdk.setCameras({smallAsiCamera()}); }

  /// Scans, opens the small camera and empties the log: 320 x 202 pixels, 20 ms, gain 10, offset 5.
  void openSmall(int format = 0, int bin = 1) {
    ASSERT_EQ(oc.scan(), 1) << error();
    ASSERT_EQ(oc.open(0, 320, 202, bin, format, 20000, 10, 5), 1) << error();
    sdk.takeLog();
  }

  SimulatedSdk sdk = install("ASICamera2");
};

}  // namespace orvane::testing
