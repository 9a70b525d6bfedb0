// The exports on a scripted SDK of ZWO: the path of a frame, functions that are missing, and
// functions that throw.
#include <gtest/gtest.h>

#include <cmath>
#include <new>
#include <stdexcept>

#include "api/state.hpp"
#include "doubles/scripted_asi_sdk.hpp"
#include "orvane_desktop_camera.h"

namespace orvane {
namespace {

class ScriptedAsi : public ::testing::Test {
 protected:
  void SetUp() override {
    scripted::platform() = {};
    state = LibraryState{};
    scripted::addWorkingAsiSdk(sdk());
    oc_library_dir("sdk");
  }

  static scripted::Library& sdk() { return scripted::platform().libraries["sdk/ASICamera2"]; }

  static void remove(const char* function) {
    ASSERT_EQ(sdk().functions.erase(function), 1U) << function;
  }

  static int open() { return oc_open(0, 64, 48, 1, 0, 1000, 1, 1); }

  static void scanAndOpen() {
    ASSERT_EQ(oc_scan(), 1);
    ASSERT_EQ(open(), 1);
    scripted::platform().passed.clear();
  }

  static std::vector<std::string> lookups() { return scripted::platform().lookups(); }

  std::uint8_t frame[64 * 48] = {};
};

using Exports = ScriptedAsi;
using MissingFunction = ScriptedAsi;
using ForeignException = ScriptedAsi;

TEST_F(Exports, WorkOnTheCompleteSdk) {
  scanAndOpen();
  EXPECT_EQ(oc_read(frame, sizeof frame, 0), 64 * 48);
  EXPECT_EQ(oc_apply(1000, 1, 1), 1);
  EXPECT_EQ(oc_temperature(), -10.5);
  oc_close();
  EXPECT_STREQ(oc_error(), "");
}

TEST_F(Exports, LookAFunctionUpForEveryCall) {
  scanAndOpen();
  for (int i = 0; i < 3; ++i) {
    EXPECT_GT(oc_read(frame, sizeof frame, 0), 0);
  }
  EXPECT_EQ(lookups(), std::vector<std::string>(3, "ASIGetVideoData"));
}

TEST_F(Exports, RefuseABinOfZeroEvenWhenItIsListed) {
  CameraInfo camera;
  camera.maxWidth = 64;
  camera.maxHeight = 64;
  camera.bins = {0};
  state.catalogue.push_back(camera);
  EXPECT_EQ(oc_open(0, 1, 1, 0, 0, 1, 0, 0), 0);
  EXPECT_STREQ(oc_error(), "Unsupported bin or format");
  EXPECT_EQ(state.active.openIndex, -1);
}

struct Call {
  int cameraId;
  unsigned char* buffer;
  long length;
  int waitMs;
};
Call lastCall;

TEST_F(Exports, LetTheSdkWriteIntoTheHostsBuffer) {
  sdk().add(ASIGetVideoData, [](int cameraId, unsigned char* buffer, long length, int waitMs) {
    lastCall = {cameraId, buffer, length, waitMs};
    buffer[0] = 1;
    buffer[1] = 2;
    buffer[2] = 3;
    return 0;
  });
  scanAndOpen();
  std::vector<std::uint8_t> larger(64 * 48 + 10, 0xEE);
  EXPECT_EQ(oc_read(larger.data(), static_cast<int>(larger.size()), -1), 64 * 48);
  EXPECT_EQ(lastCall.cameraId, 5);
  EXPECT_EQ(lastCall.buffer, larger.data());
  EXPECT_EQ(lastCall.length, 64 * 48 + 10);
  EXPECT_EQ(lastCall.waitMs, -1);
  EXPECT_EQ(larger[0], 1);
  EXPECT_EQ(larger[2], 3);
  EXPECT_EQ(larger[3], 0xEE) << "bytes that the SDK did not write must stay unchanged";
}

TEST_F(MissingFunction, EndsTheScanOutsideTheGuard) {
  for (const std::string function :
       {"ASIGetNumOfConnectedCameras", "ASIGetCameraProperty", "ASIOpenCamera", "ASICloseCamera"}) {
    SetUp();
    remove(function.c_str());
    EXPECT_EQ(oc_scan(), 0) << function;
    EXPECT_EQ(oc_error(), "ASICamera2: missing " + function);
    EXPECT_STREQ(oc_libraries(), "ASICamera2");
  }
}

TEST_F(MissingFunction, InsideTheGuardOnlyLosesTheLimits) {
  for (const char* function : {"ASIInitCamera", "ASIGetNumOfControls", "ASIGetControlCaps"}) {
    SetUp();
    remove(function);
    EXPECT_EQ(oc_scan(), 1) << function;
    EXPECT_STREQ(oc_error(), "");
    EXPECT_EQ(state.catalogue[0].maxGain, 0);
    EXPECT_EQ(state.catalogue[0].maxExposureUs, 0);
    EXPECT_EQ(lookups().back(), "ASICloseCamera");
  }
}

TEST_F(MissingFunction, FailsTheOpenAndTheDeviceIsClosed) {
  for (const std::string function :
       {"ASIOpenCamera", "ASIInitCamera", "ASISetROIFormat", "ASISetStartPos", "ASIGetROIFormat",
        "ASISetControlValue", "ASIGetNumOfControls", "ASIGetControlCaps", "ASIStartVideoCapture"}) {
    SetUp();
    ASSERT_EQ(oc_scan(), 1);
    remove(function.c_str());
    scripted::platform().passed.clear();
    EXPECT_EQ(open(), 0) << function;
    EXPECT_EQ(oc_error(), "ASICamera2: missing " + function);
    EXPECT_EQ(state.active.openIndex, -1);
    EXPECT_FALSE(state.active.streaming);
    EXPECT_EQ(oc_buffer_size(), 0);
    EXPECT_EQ(lookups().back(), function == "ASIOpenCamera" ? function : "ASICloseCamera");
  }
}

TEST_F(MissingFunction, OfAStreamingCameraLeavesItStreaming) {
  scanAndOpen();
  remove("ASIGetControlValue");
  EXPECT_TRUE(std::isnan(oc_temperature()));
  EXPECT_STREQ(oc_error(), "");
  remove("ASIGetVideoData");
  EXPECT_EQ(oc_read(frame, sizeof frame, 0), -1);
  EXPECT_STREQ(oc_error(), "ASICamera2: missing ASIGetVideoData");
  remove("ASIGetControlCaps");
  EXPECT_EQ(oc_apply(1000, 1, 1), 0);
  EXPECT_STREQ(oc_error(), "ASICamera2: missing ASIGetControlCaps");
  EXPECT_TRUE(state.active.streaming);
}

TEST_F(MissingFunction, OfTheCloseDoesNotKeepTheCameraOpen) {
  for (const char* function : {"ASIStopVideoCapture", "ASICloseCamera"}) {
    SetUp();
    scanAndOpen();
    remove(function);
    oc_close();
    EXPECT_EQ(lookups(), (std::vector<std::string>{"ASIStopVideoCapture", "ASICloseCamera"}));
    EXPECT_STREQ(oc_error(), "");
    EXPECT_EQ(state.active.openIndex, -1);
    EXPECT_EQ(oc_buffer_size(), 0);
  }
}

// Standard exceptions of the SDK become return values. Others leave the exports that let them pass;
// the remaining exports swallow them.
TEST_F(ForeignException, StandardExceptionsBecomeTheErrorText) {
  scanAndOpen();
  sdk().add(ASIGetVideoData,
            [](int, unsigned char*, long, int) -> int { throw std::length_error("from the SDK"); });
  EXPECT_EQ(oc_read(frame, sizeof frame, 0), -1);
  EXPECT_STREQ(oc_error(), "from the SDK");
  sdk().add(ASISetControlValue, [](int, int, long, int) -> int { throw std::bad_alloc(); });
  EXPECT_EQ(oc_apply(1000, 1, 1), 0);
  EXPECT_STREQ(oc_error(), std::bad_alloc().what());
  EXPECT_EQ(open(), 0);
  EXPECT_STREQ(oc_error(), std::bad_alloc().what());
  EXPECT_EQ(state.active.openIndex, -1);
}

TEST_F(ForeignException, OtherExceptionsLeaveReadApplyAndOpenWithoutAMessage) {
  scanAndOpen();
  sdk().add(ASIGetVideoData, [](int, unsigned char*, long, int) -> int { throw 7; });
  EXPECT_THROW(oc_read(frame, sizeof frame, 0), int);
  sdk().add(ASISetControlValue, [](int, int, long, int) -> int { throw 7; });
  EXPECT_THROW(oc_apply(1000, 1, 1), int);
  EXPECT_THROW(open(), int);
  EXPECT_STREQ(oc_error(), "");
}

TEST_F(ForeignException, HalfOpenCameraReportsTemperatureAndIsClosedWithoutAStop) {
  ASSERT_EQ(oc_scan(), 1);
  sdk().add(ASIStartVideoCapture, [](int) -> int { throw 7; });
  EXPECT_THROW(open(), int);
  EXPECT_EQ(state.active.openIndex, 0);
  EXPECT_FALSE(state.active.streaming);
  EXPECT_EQ(oc_temperature(), -10.5);
  EXPECT_EQ(oc_scan(), -1) << "a half-open camera counts as open";
  scripted::platform().passed.clear();
  oc_close();
  EXPECT_EQ(lookups(), std::vector<std::string>{"ASICloseCamera"});
  EXPECT_EQ(state.active.openIndex, -1);
}

TEST_F(ForeignException, CloseAndTemperatureSwallowAll) {
  scanAndOpen();
  sdk().add(ASIGetControlValue, [](int, int, long*, int*) -> int { throw 7; });
  EXPECT_TRUE(std::isnan(oc_temperature()));
  sdk().add(ASIStopVideoCapture, [](int) -> int { throw 7; });
  sdk().add(ASICloseCamera, [](int) -> int { throw std::runtime_error("x"); });
  scripted::platform().passed.clear();
  oc_close();
  EXPECT_EQ(lookups(), (std::vector<std::string>{"ASIStopVideoCapture", "ASICloseCamera"}));
  EXPECT_STREQ(oc_error(), "");
  EXPECT_EQ(state.active.openIndex, -1);
  EXPECT_FALSE(state.active.streaming);
}

TEST_F(ForeignException, ScanKeepsTheMessageOfStandardExceptionsAndPassesOthers) {
  sdk().add(ASIGetCameraProperty,
            [](ASI_CAMERA_INFO*, int) -> int { throw std::logic_error("odd"); });
  EXPECT_EQ(oc_scan(), 0);
  EXPECT_STREQ(oc_error(), "odd");
  sdk().add(ASIGetCameraProperty, [](ASI_CAMERA_INFO*, int) -> int { throw 7; });
  EXPECT_THROW(oc_scan(), int);
}

TEST_F(ForeignException, DiscoveryGuardSwallowsAllAndClosesTheCamera) {
  sdk().add(ASIInitCamera, [](int) -> int { throw 7; });
  EXPECT_EQ(oc_scan(), 1);
  EXPECT_STREQ(oc_error(), "");
  EXPECT_EQ(lookups().back(), "ASICloseCamera");
}

}  // namespace
}  // namespace orvane
