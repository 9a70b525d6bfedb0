// The path of a frame: the SDK writes into the host's buffer, and the library changes nothing
// there.
#include <gtest/gtest.h>

#include "api/state.hpp"
#include "doubles/scripted_asi_sdk.hpp"
#include "orvane_desktop_camera.h"

namespace orvane {
namespace {

struct Call {
  int cameraId;
  unsigned char* buffer;
  long length;
  int waitMs;
};
Call lastCall;

TEST(FramePath, SdkWritesStraightIntoTheHostsBuffer) {
  scripted::platform() = {};
  state = LibraryState{};
  scripted::Library& sdk = scripted::platform().libraries["sdk/ASICamera2"];
  scripted::addWorkingAsiSdk(sdk);
  sdk.add(ASIGetVideoData, [](int cameraId, unsigned char* buffer, long length, int waitMs) {
    lastCall = {cameraId, buffer, length, waitMs};
    buffer[0] = 1;
    buffer[1] = 2;
    buffer[2] = 3;
    return 0;
  });
  oc_library_dir("sdk");
  ASSERT_EQ(oc_scan(), 1);
  ASSERT_EQ(oc_open(0, 64, 48, 1, 0, 1000, 1, 1), 1);
  std::vector<std::uint8_t> frame(64 * 48 + 10, 0xEE);
  EXPECT_EQ(oc_read(frame.data(), static_cast<int>(frame.size()), -1), 64 * 48);
  EXPECT_EQ(lastCall.cameraId, 5);
  EXPECT_EQ(lastCall.buffer, frame.data());
  EXPECT_EQ(lastCall.length, 64 * 48 + 10);
  EXPECT_EQ(lastCall.waitMs, -1);
  EXPECT_EQ(frame[0], 1);
  EXPECT_EQ(frame[2], 3);
  EXPECT_EQ(frame[3], 0xEE) << "bytes that the SDK did not write must stay unchanged";
}

}  // namespace
}  // namespace orvane
