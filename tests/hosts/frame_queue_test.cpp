// Frames on their way from one thread to another.
#include "session/frame_queue.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <set>
#include <thread>

namespace orvane::host {

namespace {

BufferedFrame frameNumber(int number) {
  return {{static_cast<std::uint8_t>(number), 0, 0, 0}, 1, number};
}

TEST(FrameQueue, KeepsTheOrderAndDropsWhatHasNoRoom) {
  FrameQueue queue(4, 2);
  for (int number = 0; number < 2; ++number) {
    BufferedFrame frame = frameNumber(number);
    EXPECT_TRUE(queue.push(frame));
    EXPECT_EQ(frame.buffer.size(), 4U);
  }
  BufferedFrame refused = frameNumber(2);
  EXPECT_FALSE(queue.push(refused));
  EXPECT_EQ(refused.buffer.at(0), 2);
  EXPECT_EQ(refused.time, 2);
  EXPECT_EQ(queue.mostWaiting(), 2U);

  queue.close();
  BufferedFrame taken;
  for (int number = 0; number < 2; ++number) {
    ASSERT_TRUE(queue.pop(taken));
    EXPECT_EQ(taken.time, number);
    EXPECT_EQ(taken.buffer.at(0), number);
  }
  EXPECT_FALSE(queue.pop(taken));
  EXPECT_EQ(taken.time, 1);
}

TEST(FrameQueue, UsesItsBuffersAgain) {
  constexpr std::size_t capacity = 3;
  FrameQueue queue(1000, capacity);
  std::set<const std::uint8_t*> buffers;
  BufferedFrame in{std::vector<std::uint8_t>(1000), 0, 0};
  BufferedFrame out;
  for (int number = 0; number < 100; ++number) {
    buffers.insert(in.buffer.data());
    ASSERT_TRUE(queue.push(in));
    if (number % 3 == 2) {  // three wait
      for (std::size_t waiting = 0; waiting < capacity; ++waiting) {
        ASSERT_TRUE(queue.pop(out));
      }
    }
  }
  EXPECT_LE(buffers.size(), capacity + 2);
}

TEST(FrameQueue, WaitsForRoomAsLongAsThereIsNone) {
  constexpr std::chrono::milliseconds noTime{0};
  constexpr std::chrono::hours longer{1};
  FrameQueue queue(4, 1);
  EXPECT_TRUE(queue.waitForRoom(longer));
  BufferedFrame in = frameNumber(0);
  ASSERT_TRUE(queue.push(in));
  EXPECT_FALSE(queue.waitForRoom(noTime));

  BufferedFrame out;
  std::thread reader([&] { queue.pop(out); });
  EXPECT_TRUE(queue.waitForRoom(longer));
  reader.join();
  EXPECT_EQ(out.time, 0);
}

TEST(FrameQueue, HandsFramesFromThreadToThread) {
  constexpr int count = 20000;
  FrameQueue queue(4, 8);
  int next = 0;
  std::thread reader([&] {
    BufferedFrame frame;
    while (queue.pop(frame)) {
      next += frame.time == next ? 1 : 0;
    }
  });
  BufferedFrame frame{std::vector<std::uint8_t>(4), 4, 0};
  for (int number = 0; number < count; ++number) {
    frame.time = number;
    while (!queue.push(frame)) {
      std::this_thread::yield();
    }
  }
  queue.close();
  reader.join();
  EXPECT_EQ(next, count);
  EXPECT_LE(queue.mostWaiting(), queue.capacity());
}

}  // namespace

}  // namespace orvane::host
