// The newest frame, handed from one thread to another.
#include "live_view/frame_exchange.hpp"

#include <gtest/gtest.h>

#include <set>
#include <thread>

namespace orvane::host {

namespace {

LiveFrame frameOf(std::uint8_t content) {
  LiveFrame frame;
  frame.buffer.assign(100, content);
  frame.size = 100;
  return frame;
}

TEST(FrameExchange, GivesEachFrameOnce) {
  FrameExchange exchange;
  LiveFrame taken;
  EXPECT_FALSE(exchange.take(taken));
  LiveFrame frame = frameOf(1);
  exchange.put(frame);
  ASSERT_TRUE(exchange.take(taken));
  EXPECT_EQ(taken.bytes().front(), 1);
  EXPECT_FALSE(exchange.take(taken));
  EXPECT_EQ(taken.bytes().front(), 1);
}

TEST(FrameExchange, OnlyTheNewestCounts) {
  FrameExchange exchange;
  LiveFrame first = frameOf(1);
  LiveFrame second = frameOf(2);
  exchange.put(first);
  exchange.put(second);
  LiveFrame taken;
  ASSERT_TRUE(exchange.take(taken));
  EXPECT_EQ(taken.bytes().front(), 2);
}

TEST(FrameExchange, GoesRoundWithThreeBuffers) {
  FrameExchange exchange;
  LiveFrame writer = frameOf(1);
  LiveFrame reader = frameOf(0);
  std::set<const std::uint8_t*> buffers;
  for (std::uint8_t number = 1; number < 20; ++number) {
    writer.buffer.resize(100);
    writer.size = 100;
    writer.buffer.assign(100, number);
    exchange.put(writer);
    ASSERT_TRUE(exchange.take(reader));
    EXPECT_EQ(reader.bytes().front(), number);
    buffers.insert(reader.buffer.data());
  }
  EXPECT_EQ(buffers.size(), 3U);
}

TEST(FrameExchange, NoFrameIsTornBetweenTwoThreads) {
  FrameExchange exchange;
  std::thread writer([&] {
    LiveFrame frame;
    for (int number = 0; number < 20000; ++number) {
      frame.buffer.assign(100, static_cast<std::uint8_t>(number));
      frame.size = 100;
      exchange.put(frame);
    }
  });
  LiveFrame taken;
  for (int attempt = 0; attempt < 20000; ++attempt) {
    if (exchange.take(taken)) {
      ASSERT_EQ(taken.buffer, std::vector<std::uint8_t>(100, taken.buffer.front()));
    }
  }
  writer.join();
}

}  // namespace

}  // namespace orvane::host
