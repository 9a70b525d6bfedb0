// What the tests of the C++ face share: the linked library with simulated SDKs beside it.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "doubles/sdk_directory.hpp"
#include "doubles/simulated_sdk.hpp"
#include "library/family_test.hpp"
#include "orvane_desktop_camera.hpp"

namespace orvane::testing {

using namespace std::chrono_literals;  // NOLINT(google-build-using-namespace): for tests alone

/// A directory with ZWO's SDK, whose clock is stopped: every call for a frame gets one at once.
/// Control the SDK only while the library is not called: set faults up before a camera is opened.
class FaceTest : public ::testing::Test {
 protected:
  FaceTest() : sdk((directory.add("ASICamera2"), directory.file("ASICamera2"))) {}

  /// The first camera, and its settings in frames of 64 x 32 pixels.
  oc::CameraInfo first() { return oc::scan(directory.utf8()).cameras.at(0); }
  static oc::Settings small() { return {.width = 64, .height = 32, .exposureUs = 1000}; }

  SdkDirectory directory;
  SimulatedSdk sdk;
};

/// Waits up to half a minute.
template <class Condition>
bool comesTrue(const Condition& condition) {
  const auto end = std::chrono::steady_clock::now() + 30s;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::sleep_for(1ms);
  }
  return true;
}

/// The text of the oc::Error that this throws.
template <class Action>
std::string errorOf(const Action& action) {
  try {
    action();
  } catch (const oc::Error& error) {
    return error.what();
  }
  return "no error";
}

}  // namespace orvane::testing
