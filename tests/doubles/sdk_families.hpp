// The four makers, as the torture tests need them: a small camera, the codes by which calls fail,
// and which functions answer with something else than a code.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <vector>

#include "simulator_control.h"

namespace orvane::testing {

struct TorturedFamily {
  const char* baseName;
  std::int32_t mosaic;
  int format;                            ///< for oc_open()
  std::vector<std::int64_t> codes;       ///< all that the maker lists for failures
  std::size_t codeStep;                  ///< where time is short, one in so many will do
  std::vector<const char*> handleCalls;  ///< fail with a null handle and in no other way
  const char* closeCall;
  bool waitsForFrames;  ///< the SDK does, so that the clock need not be moved
  int leastCalls;       ///< of the SDK in a session: below, something is amiss
  int leastFunctions;
};

inline std::ostream& operator<<(std::ostream& stream, const TorturedFamily& family) {
  return stream << family.baseName;
}

inline std::vector<std::int64_t> codesUpTo(std::int64_t last) {
  std::vector<std::int64_t> codes;
  for (std::int64_t code = 1; code <= last; ++code) {
    codes.push_back(code);
  }
  return codes;
}

inline std::vector<TorturedFamily> torturedFamilies() {
  std::vector<std::int64_t> qhyCodes = codesUpTo(9);
  qhyCodes.insert(qhyCodes.end(), {0x2000, 0x2001, 4294967293, 4294967294, 4294967295});
  const std::vector<std::int64_t> hresults = {-2147418113, -2147467263, -2147467262, -2147467261,
                                              -2147467259, -2147483638, -2147024891, -2147024882,
                                              -2147024809, -2147417842, -2147024865, -2147024726,
                                              -2147417825, -2147014845, -2147023673};
  return {
      {"ASICamera2", 0, 2, codesUpTo(22), 5, {}, "ASICloseCamera", true, 80, 15},
      {"PlayerOneCamera", 0, 1, codesUpTo(17), 4, {}, "POACloseCamera", false, 40, 17},
      {"qhyccd", 4, 1, qhyCodes, 13, {"OpenQHYCCD"}, "CloseQHYCCD", false, 55, 19},
      {"toupcam", 0x42474752, 1, hresults, 5, {"Toupcam_Open"}, "Toupcam_Close", false, 34, 17},
  };
}

/// A colour camera of 16 x 96 pixels: so narrow a sensor spares the simulator most of its sky. Its
/// names are too long for any string's own room.
inline SimCamera torturedCamera(std::int32_t mosaic) {
  SimCamera camera{};
  std::strcpy(camera.name, "a camera with a rather long name");
  std::strcpy(camera.key, "a-camera-with-a-rather-long-key-0123456789");
  camera.id = 7;
  camera.width = 16;
  camera.height = 96;
  camera.pixelSizeUm = 3.75;
  camera.bitDepth = 12;
  camera.isColor = 1;
  camera.mosaic = mosaic;
  camera.isUsb3Camera = 1;
  camera.isUsb3Host = 1;
  const std::int32_t bins[] = {1, 2, 3, 4};
  std::memcpy(camera.bins, bins, sizeof bins);
  const std::int32_t formats[8] = {0, 1, 2, 3, -1, -1, -1, -1};
  std::memcpy(camera.formats, formats, sizeof formats);
  camera.gainMax = 1000;
  camera.exposureMinUs = 32;
  camera.exposureMaxUs = 1e9;
  camera.offsetMax = 20;
  camera.hasTemperature = 1;
  return camera;
}

}  // namespace orvane::testing
