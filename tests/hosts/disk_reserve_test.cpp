// The free space that a recording leaves.
#include "oc_capture/disk_reserve.hpp"

#include <gtest/gtest.h>

namespace orvane::host {

namespace {

constexpr std::int64_t megabyte = 1'000'000;

TEST(DiskReserve, LeavesRoomForTheFramesThatWait) {
  // 500 MB are to stay; a preview and a settings log take 16 MB at most.
  const auto isReached = [](std::int64_t freeMegabytes, std::int64_t waiting) {
    DiskReserve reserve(500 * megabyte, 10 * megabyte);
    reserve.isReached(1'000'000 * megabyte, waiting, 0);  // so that no frame is new
    return reserve.isReached(freeMegabytes * megabyte, waiting, 0);
  };
  EXPECT_FALSE(isReached(500 + 16 + 11, 0));
  EXPECT_TRUE(isReached(500 + 16 + 9, 0));
  EXPECT_FALSE(isReached(500 + 16 + 61, 5));
  EXPECT_TRUE(isReached(500 + 16 + 59, 5));
}

TEST(DiskReserve, LeavesRoomForTheFramesUntilTheNextCall) {
  DiskReserve reserve(500 * megabyte, 10 * megabyte);
  EXPECT_FALSE(reserve.isReached(600 * megabyte, 0, 0));
  // Four frames have come and are written. Twice as many may come until the recording ends.
  EXPECT_TRUE(reserve.isReached(600 * megabyte, 4, 4));
  EXPECT_FALSE(reserve.isReached(600 * megabyte, 4, 4));
}

TEST(DiskReserve, LeavesRoomForTheTimeStamps) {
  constexpr std::int64_t frames = 10'000'000;  // 80 MB of time stamps
  DiskReserve reserve(500 * megabyte, 1000);
  reserve.isReached(1'000'000 * megabyte, frames, frames);
  EXPECT_TRUE(reserve.isReached((500 + 16 + 79) * megabyte, frames, frames));
  EXPECT_FALSE(reserve.isReached((500 + 16 + 81) * megabyte, frames, frames));
}

}  // namespace

}  // namespace orvane::host
