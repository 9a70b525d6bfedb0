// The exports on states and SDKs that no simulated SDK can show.
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <numeric>

#include "api/state.hpp"
#include "doubles/scripted_platform.hpp"
#include "orvane_desktop_camera.h"
#include "vendors/sdk/asi_sdk.hpp"
#include "vendors/sdk/playerone_sdk.hpp"
#include "vendors/vendor_family.hpp"

namespace orvane {
namespace {

class Exports : public ::testing::Test {
 protected:
  Exports() {
    scripted::platform() = {};
    state = LibraryState{};
  }

  // Makes a camera of 64 x 48 pixels stream. Its SDK has only the functions that the test adds.
  static scripted::Library& streamWith(Vendor vendor) {
    const char* const name = familyOf(vendor).baseName;
    scripted::Library& sdk = scripted::platform().libraries[name];
    loadVendorLibrary(libraryOf(vendor), name, "sdk");
    state.active.info.vendor = vendor;
    state.active.info.vendorIndex = 5;
    state.active.width = 64;
    state.active.height = 48;
    state.active.bufferSize = 64 * 48;
    state.active.streaming = true;
    return sdk;
  }
};

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

TEST_F(Exports, LetTheSdkWriteIntoTheHostsBuffer) {
  static std::vector<std::uint8_t> larger;
  larger.assign(64 * 48 + 10, 0xEE);
  streamWith(Vendor::Asi)
      .add(ASIGetVideoData, [](int cameraId, unsigned char* buffer, long length, int waitMs) {
        EXPECT_EQ(cameraId, 5);
        EXPECT_EQ(buffer, larger.data());
        EXPECT_EQ(length, 64 * 48 + 10);
        EXPECT_EQ(waitMs, -1);
        std::iota(buffer, buffer + 3, std::uint8_t{1});
        return 0;
      });
  EXPECT_EQ(oc_read(larger.data(), static_cast<int>(larger.size()), -1), 64 * 48);
  EXPECT_EQ(larger[0], 1);
  EXPECT_EQ(larger[2], 3);
  EXPECT_EQ(larger[3], 0xEE) << "bytes that the SDK did not write must stay unchanged";
}

TEST_F(Exports, ReportAnSdkThatRunsOutOfMemory) {
  streamWith(Vendor::Asi).add(ASISetControlValue, [](int, int, long, int) -> int {
    throw std::bad_alloc();
  });
  EXPECT_EQ(oc_apply(1000, 1, 1), 0);
  EXPECT_STREQ(oc_error(), std::bad_alloc().what());
}

// Player One's settings are passed by value in eight bytes. The library must initialise all of
// them.
TEST_F(Exports, PassPlayerOneSettingsWithoutUndefinedBytes) {
  static std::vector<std::uint64_t> sent;
  sent.clear();
  streamWith(Vendor::PlayerOne).add(POASetConfig, [](int, int, POAConfigValue value, int) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, &value, sizeof bytes);
    sent.push_back(bytes);
    return 0;
  });
  EXPECT_EQ(oc_apply(2147483647, -3, -1), 1);
  // On Windows a long has four bytes; the other four must be zero.
  const std::uint64_t mask = sizeof(long) == 4 ? 0xFFFFFFFFU : ~std::uint64_t{0};
  EXPECT_EQ(sent, (std::vector<std::uint64_t>{2147483647, ~std::uint64_t{2} & mask,
                                              ~std::uint64_t{0} & mask}));
}

}  // namespace
}  // namespace orvane
