// A live view's surroundings: a directory with a simulated SDK that shows two small cameras, and
// one for recordings.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "doubles/sdk_directory.hpp"
#include "doubles/simulated_sdk.hpp"
#include "live_view/live_session.hpp"
#include "scratch_directory.hpp"
#include "ser_file.hpp"

namespace orvane::testing {

class LiveTest : public ::testing::Test {
 protected:
  LiveTest() : sdk(install()) { sdk.setCameras({colourCamera(), monoCamera()}); }

  static SimCamera colourCamera() {
    SimCamera camera{};
    std::strcpy(camera.name, "Colour One");  // NOLINT: there is room
    camera.id = 3;
    camera.width = 320;
    camera.height = 200;
    camera.pixelSizeUm = 3.75;
    camera.bitDepth = 12;
    camera.isColor = 1;
    camera.bayerPattern = 0;
    camera.isUsb3Camera = 1;
    camera.isUsb3Host = 1;
    camera.bins[0] = 1;
    camera.bins[1] = 2;
    camera.formats[0] = 0;  // raw 8
    camera.formats[1] = 2;  // raw 16
    camera.formats[2] = -1;
    camera.gainMax = 300;
    camera.exposureMinUs = 32;
    camera.exposureMaxUs = 60000000;
    camera.offsetMax = 80;
    camera.hasTemperature = 1;
    return camera;
  }

  static SimCamera monoCamera() {
    SimCamera camera = colourCamera();
    std::strcpy(camera.name, "Mono Two");  // NOLINT: there is room
    camera.id = 4;
    camera.isColor = 0;
    return camera;
  }

  // Waits until something holds; false when it does not within half a minute.
  template <class Condition>
  static bool comesTrue(Condition condition) {
    for (int attempt = 0; attempt < 3000; ++attempt) {
      if (condition()) {
        return true;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }

  host::LiveOptions options(const std::string& camera = "Colour") const {
    return {sdks.utf8(), camera, scratch.path()};
  }

  std::vector<std::filesystem::path> recordings() const {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(scratch.path())) {
      files.push_back(entry.path());
    }
    return files;
  }

  ScratchDirectory scratch;
  SdkDirectory sdks;
  SimulatedSdk sdk;

 private:
  // The library loads the same file later and finds the cameras that a test has set.
  SimulatedSdk install() const {
    sdks.add("ASICamera2");
    return SimulatedSdk(sdks.file("ASICamera2"));
  }
};

}  // namespace orvane::testing
