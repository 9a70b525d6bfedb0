// Facts about the makers' SDKs that the tests need.
#include "doubles/sdk_families.hpp"

#include <cstring>
#include <stdexcept>

#include "sdk_check/sdk_functions.hpp"

namespace orvane::testing {

std::string joinedSdkNames() {
  std::string names;
  for (const char* name : sdkNames) {
    names += (names.empty() ? "" : ", ") + std::string(name);
  }
  return names;
}

const std::vector<std::string>& functionsOf(const std::string& baseName) {
  for (const host::Sdk& sdk : host::allSdks()) {
    if (sdk.baseName == baseName) {
      return sdk.functions;
    }
  }
  throw std::runtime_error("no SDK " + baseName);
}

SimCamera colourCamera(const char* name, const char* key) {
  SimCamera camera{};
  std::string(name).copy(camera.name, sizeof camera.name - 1);
  std::string(key).copy(camera.key, sizeof camera.key - 1);
  camera.id = 7;  // not the enumeration index
  camera.pixelSizeUm = 3.75;
  camera.bitDepth = 12;
  camera.isColor = 1;
  camera.isUsb3Camera = 1;
  camera.isUsb3Host = 1;
  camera.bins[0] = 1;
  camera.bins[1] = 2;
  const std::int32_t formats[8] = {0, 1, 2, 3, -1, -1, -1, -1};
  std::memcpy(camera.formats, formats, sizeof formats);
  camera.gainMax = 100;
  camera.exposureMinUs = 32;
  camera.exposureMaxUs = 1e9;
  camera.offsetMax = 20;
  camera.hasTemperature = 1;
  return camera;
}

SimCamera torturedCamera(const SdkFamily& family) {
  SimCamera camera = colourCamera("a camera with a rather long name",
                                  "a-camera-with-a-rather-long-key-0123456789");
  camera.width = 16;
  camera.height = 96;
  camera.bayerPattern = family.rggb;
  camera.bins[2] = 3;
  camera.bins[3] = 4;
  camera.gainMax = 1000;
  return camera;
}

}  // namespace orvane::testing
