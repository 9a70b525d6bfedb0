// ZWO's SDK with one function missing at a time: the results and messages of each export.
#include <gtest/gtest.h>

#include <cmath>

#include "api/state.hpp"
#include "doubles/scripted_asi_sdk.hpp"
#include "orvane_desktop_camera.h"

namespace orvane {
namespace {

class MissingAsiFunction : public ::testing::Test {
 protected:
  void SetUp() override {
    scripted::platform() = {};
    state = LibraryState{};
    scripted::addWorkingAsiSdk(scripted::platform().libraries["sdk/ASICamera2"]);
    oc_library_dir("sdk");
  }

  static void remove(const char* function) {
    auto& functions = scripted::platform().libraries["sdk/ASICamera2"].functions;
    ASSERT_EQ(functions.erase(function), 1U) << function;
  }

  static int open() { return oc_open(0, 64, 48, 1, 0, 1000, 1, 1); }

  static std::string error() { return oc_error(); }

  std::uint8_t frame[64 * 48] = {};
};

TEST_F(MissingAsiFunction, NoneMissingEverythingWorks) {
  ASSERT_EQ(oc_scan(), 1);
  EXPECT_EQ(error(), "");
  ASSERT_EQ(open(), 1);
  EXPECT_EQ(oc_read(frame, sizeof frame, 0), 64 * 48);
  EXPECT_EQ(oc_apply(1000, 1, 1), 1);
  EXPECT_EQ(oc_temperature(), -10.5);
  oc_close();
  EXPECT_EQ(error(), "");
}

TEST_F(MissingAsiFunction, DiscoveryEndsWithAMessageForTheFunctionsOutsideTheGuard) {
  for (const char* function :
       {"ASIGetNumOfConnectedCameras", "ASIGetCameraProperty", "ASIOpenCamera"}) {
    SetUp();
    remove(function);
    EXPECT_EQ(oc_scan(), 0) << function;
    EXPECT_EQ(error(), std::string("ASICamera2: missing ") + function);
    EXPECT_STREQ(oc_libraries(), "ASICamera2");
  }
}

TEST_F(MissingAsiFunction, DiscoveryDropsTheRecordWhenTheCloseIsMissing) {
  remove("ASICloseCamera");
  EXPECT_EQ(oc_scan(), 0);
  EXPECT_EQ(error(), "ASICamera2: missing ASICloseCamera");
}

TEST_F(MissingAsiFunction, DiscoveryIsSilentForTheFunctionsInsideTheGuard) {
  for (const char* function : {"ASIInitCamera", "ASIGetNumOfControls", "ASIGetControlCaps"}) {
    SetUp();
    remove(function);
    EXPECT_EQ(oc_scan(), 1) << function;
    EXPECT_EQ(error(), "");
    EXPECT_EQ(state.catalogue[0].maxGain, 0);
    EXPECT_EQ(state.catalogue[0].maxExposureUs, 0);
    EXPECT_EQ(scripted::platform().lookups().back(), "ASICloseCamera");
  }
}

TEST_F(MissingAsiFunction, OpenFailsWithTheMessageAndClosesTheDevice) {
  for (const char* function :
       {"ASIOpenCamera", "ASIInitCamera", "ASISetROIFormat", "ASISetStartPos", "ASIGetROIFormat",
        "ASISetControlValue", "ASIGetNumOfControls", "ASIGetControlCaps", "ASIStartVideoCapture"}) {
    SetUp();
    ASSERT_EQ(oc_scan(), 1);
    remove(function);
    scripted::platform().passed.clear();
    EXPECT_EQ(open(), 0) << function;
    EXPECT_EQ(error(), std::string("ASICamera2: missing ") + function);
    EXPECT_EQ(state.active.openIndex, -1);
    EXPECT_FALSE(state.active.streaming);
    EXPECT_EQ(oc_buffer_size(), 0);
    const bool wasOpened = std::string(function) != "ASIOpenCamera";
    EXPECT_EQ(scripted::platform().lookups().back(),
              wasOpened ? "ASICloseCamera" : "ASIOpenCamera");
  }
}

TEST_F(MissingAsiFunction, ReadFailsAndLeavesTheCameraStreaming) {
  ASSERT_EQ(oc_scan(), 1);
  ASSERT_EQ(open(), 1);
  remove("ASIGetVideoData");
  EXPECT_EQ(oc_read(frame, sizeof frame, 0), -1);
  EXPECT_EQ(error(), "ASICamera2: missing ASIGetVideoData");
  EXPECT_TRUE(state.active.streaming);
}

TEST_F(MissingAsiFunction, ApplyFailsAfterSettingWhatItCan) {
  ASSERT_EQ(oc_scan(), 1);
  ASSERT_EQ(open(), 1);
  remove("ASIGetControlCaps");
  EXPECT_EQ(oc_apply(1000, 1, 1), 0);
  EXPECT_EQ(error(), "ASICamera2: missing ASIGetControlCaps");
  EXPECT_TRUE(state.active.streaming);
}

TEST_F(MissingAsiFunction, TemperatureIsNanWithoutAMessage) {
  ASSERT_EQ(oc_scan(), 1);
  ASSERT_EQ(open(), 1);
  remove("ASIGetControlValue");
  EXPECT_TRUE(std::isnan(oc_temperature()));
  EXPECT_EQ(error(), "");
}

TEST_F(MissingAsiFunction, CloseResetsTheStateWhateverIsMissing) {
  for (const char* function : {"ASIStopVideoCapture", "ASICloseCamera"}) {
    SetUp();
    ASSERT_EQ(oc_scan(), 1);
    ASSERT_EQ(open(), 1);
    remove(function);
    scripted::platform().passed.clear();
    oc_close();
    EXPECT_EQ(scripted::platform().lookups(),
              (std::vector<std::string>{"ASIStopVideoCapture", "ASICloseCamera"}));
    EXPECT_EQ(error(), "");
    EXPECT_EQ(state.active.openIndex, -1);
    EXPECT_EQ(oc_buffer_size(), 0);
  }
}

TEST_F(MissingAsiFunction, EveryCallLooksItsFunctionUpAgain) {
  ASSERT_EQ(oc_scan(), 1);
  ASSERT_EQ(open(), 1);
  scripted::platform().passed.clear();
  for (int i = 0; i < 3; ++i) {
    EXPECT_GT(oc_read(frame, sizeof frame, 0), 0);
  }
  EXPECT_EQ(scripted::platform().lookups(), std::vector<std::string>(3, "ASIGetVideoData"));
}

}  // namespace
}  // namespace orvane
