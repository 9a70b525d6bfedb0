// SDK functions that throw. Standard exceptions become return values. Others leave the exports that
// let them pass; the remaining exports swallow them.
#include <gtest/gtest.h>

#include <cmath>
#include <new>
#include <stdexcept>

#include "api/state.hpp"
#include "doubles/scripted_asi_sdk.hpp"
#include "orvane_desktop_camera.h"

namespace orvane {
namespace {

class ForeignException : public ::testing::Test {
 protected:
  void SetUp() override {
    scripted::platform() = {};
    state = LibraryState{};
    scripted::addWorkingAsiSdk(sdk());
    oc_library_dir("sdk");
    ASSERT_EQ(oc_scan(), 1);
  }

  static scripted::Library& sdk() { return scripted::platform().libraries["sdk/ASICamera2"]; }

  static int open() { return oc_open(0, 64, 48, 1, 0, 1000, 1, 1); }

  std::uint8_t frame[64 * 48] = {};
};

TEST_F(ForeignException, StandardExceptionsBecomeTheErrorText) {
  ASSERT_EQ(open(), 1);
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
  ASSERT_EQ(open(), 1);
  sdk().add(ASIGetVideoData, [](int, unsigned char*, long, int) -> int { throw 7; });
  EXPECT_THROW(oc_read(frame, sizeof frame, 0), int);
  sdk().add(ASISetControlValue, [](int, int, long, int) -> int { throw 7; });
  EXPECT_THROW(oc_apply(1000, 1, 1), int);
  EXPECT_THROW(open(), int);
  EXPECT_STREQ(oc_error(), "");
}

TEST_F(ForeignException, HalfOpenCameraReportsTemperatureAndIsClosedWithoutAStop) {
  sdk().add(ASIStartVideoCapture, [](int) -> int { throw 7; });
  EXPECT_THROW(open(), int);
  EXPECT_EQ(state.active.openIndex, 0);
  EXPECT_FALSE(state.active.streaming);
  EXPECT_EQ(oc_temperature(), -10.5);
  EXPECT_EQ(oc_scan(), -1) << "a half-open camera counts as open";
  scripted::platform().passed.clear();
  oc_close();
  EXPECT_EQ(scripted::platform().lookups(), std::vector<std::string>{"ASICloseCamera"});
  EXPECT_EQ(state.active.openIndex, -1);
}

TEST_F(ForeignException, CloseAndTemperatureSwallowAll) {
  ASSERT_EQ(open(), 1);
  sdk().add(ASIGetControlValue, [](int, int, long*, int*) -> int { throw 7; });
  EXPECT_TRUE(std::isnan(oc_temperature()));
  sdk().add(ASIStopVideoCapture, [](int) -> int { throw 7; });
  sdk().add(ASICloseCamera, [](int) -> int { throw std::runtime_error("x"); });
  scripted::platform().passed.clear();
  oc_close();
  EXPECT_EQ(scripted::platform().lookups(),
            (std::vector<std::string>{"ASIStopVideoCapture", "ASICloseCamera"}));
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
  EXPECT_EQ(scripted::platform().lookups().back(), "ASICloseCamera");
}

}  // namespace
}  // namespace orvane
