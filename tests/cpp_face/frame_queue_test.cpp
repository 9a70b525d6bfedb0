// The queues that hand frames from the capture thread to consumers.
#include <atomic>
#include <cstring>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "cpp_face/face_test.hpp"
#include "cpp_face/scripted_library.hpp"

namespace orvane::testing {
namespace {

// A scripted camera that sends a frame when the test asks for it. The bytes are its number.
class CppFaceFrames : public ::testing::Test {
 protected:
  CppFaceFrames() {
    script().read = [this](std::uint8_t* buffer, int size) {
      if (toSend_ == 0) {
        return 0;
      }
      --toSend_;
      std::memset(buffer, sent_++, static_cast<std::size_t>(size));
      return size;
    };
    info_ = oc::parseCameraInfo(0, infoText(0, "a"));
  }

  void start(const oc::CaptureOptions& options = {}) {
    capture_.emplace(info_, oc::Settings{}, options, scriptedLibrary());
  }

  // Returns when the frames have come.
  void send(int frames) {
    const std::uint64_t all = capture_->state().frames + static_cast<std::uint64_t>(frames);
    toSend_ += frames;
    ASSERT_TRUE(comesTrue([&] { return capture_->state().frames == all; }));
  }

  std::atomic<int> toSend_{0};
  std::atomic<int> sent_{0};
  oc::CameraInfo info_;
  std::optional<oc::CaptureThread> capture_;
};

TEST_F(CppFaceFrames, EveryFrameComesInItsOrder) {
  start({.delivery = oc::Delivery::Every, .capacity = 5});
  const auto before = std::chrono::system_clock::now();
  send(5);
  std::vector<oc::Frame> held;
  for (std::uint64_t number = 0; number < 5; ++number) {
    held.push_back(capture_->next(0ms));
    const oc::Frame& frame = held.back();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame.number(), number);
    EXPECT_EQ(frame.pixels()[7], number);
    EXPECT_EQ(frame.size(), 8U);
    EXPECT_EQ(frame.width(), 4);
    EXPECT_EQ(frame.height(), 2);
    EXPECT_EQ(frame.format(), oc::Format::Raw8);
    EXPECT_EQ(frame.bayer(), oc::Bayer::Grbg);
    EXPECT_EQ(frame.camera().name, "a");
    EXPECT_EQ(frame.opening(), 1U);
    EXPECT_GE(frame.arrivalTime(), before);
    EXPECT_LE(frame.arrivalTime(), std::chrono::system_clock::now());
    EXPECT_LE(frame.arrival(), std::chrono::steady_clock::now());
    EXPECT_GE(frame.arrival(), held.front().arrival());
    EXPECT_GE(frame.arrival(), capture_->state().opened);
  }
  EXPECT_FALSE(capture_->next(0ms));
  EXPECT_EQ(capture_->dropped(), 0U);
}

TEST_F(CppFaceFrames, FramesWithoutRoomAreDroppedAndCounted) {
  start({.delivery = oc::Delivery::Every, .capacity = 2});
  send(5);
  EXPECT_EQ(capture_->dropped(), 3U);
  oc::Frame first = capture_->next(0ms);
  EXPECT_EQ(first.number(), 0U);
  EXPECT_EQ(capture_->next(0ms).number(), 1U);
  send(1);
  EXPECT_EQ(capture_->next(0ms).number(), 5U);
  // A frame that is held takes room.
  send(2);
  EXPECT_EQ(capture_->dropped(), 4U);
  EXPECT_EQ(first.pixels()[0], 0);
}

TEST_F(CppFaceFrames, TheNewestReplacesTheOneThatWaits) {
  start({.delivery = oc::Delivery::Newest, .capacity = 2});
  send(4);
  const oc::Frame held = capture_->next(0ms);
  EXPECT_EQ(held.number(), 3U);
  EXPECT_EQ(capture_->dropped(), 3U);
  EXPECT_FALSE(capture_->next(0ms));
  send(2);
  EXPECT_EQ(capture_->next(0ms).number(), 5U);
  EXPECT_EQ(held.pixels()[0], 3);
}

TEST_F(CppFaceFrames, BuffersAreUsedAgainAndQueuesShareThem) {
  start({.delivery = oc::Delivery::Newest, .capacity = 1});
  oc::FrameQueue every = capture_->frames(oc::Delivery::Every, 2);
  send(1);
  const oc::Frame newest = capture_->next(0ms);
  oc::Frame same = every.next(0ms);
  EXPECT_EQ(newest.data(), same.data());

  std::vector<const std::uint8_t*> places;
  for (int round = 0; round < 20; ++round) {
    send(1);
    const oc::Frame frame = every.next(0ms);
    if (std::find(places.begin(), places.end(), frame.data()) == places.end()) {
      places.push_back(frame.data());
    }
  }
  EXPECT_LE(places.size(), 4U);
  EXPECT_EQ(every.dropped(), 0U);
}

TEST_F(CppFaceFrames, AFrameIsWaitedFor) {
  start({.delivery = oc::Delivery::Every, .capacity = 2});
  std::thread sender([this] {
    std::this_thread::sleep_for(20ms);
    ++toSend_;
  });
  EXPECT_TRUE(capture_->next(std::chrono::milliseconds::max()));
  sender.join();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(capture_->next(30ms));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 29ms);
}

TEST_F(CppFaceFrames, AClosedQueueHandsOutWhatWaitsAndEnds) {
  start();
  oc::FrameQueue queue = capture_->frames(oc::Delivery::Every, 10);
  send(3);
  EXPECT_EQ(queue.waiting(), 3U);
  queue.close();
  send(2);
  std::uint64_t taken = 0;
  while (const oc::Frame frame = queue.next()) {
    EXPECT_EQ(frame.number(), taken++);
  }
  EXPECT_EQ(taken, 3U);
  EXPECT_EQ(queue.mostWaiting(), 3U);
  EXPECT_EQ(queue.capacity(), 10U);
  EXPECT_EQ(queue.dropped(), 0U);
}

TEST_F(CppFaceFrames, AQueueClosesWhenItHasItsFrames) {
  capture_.emplace(oc::CaptureOptions{.capacity = 0}, scriptedLibrary());
  oc::FrameQueue queue = capture_->frames(oc::Delivery::Every, 2, 3);  // before the camera opens
  capture_->open(info_, {}).get();
  send(3);
  EXPECT_EQ(queue.accepted(), 2U);
  EXPECT_EQ(queue.dropped(), 1U);
  EXPECT_EQ(queue.next(0ms).number(), 0U);
  toSend_ = 4;
  EXPECT_EQ(queue.next().number(), 1U);
  EXPECT_EQ(queue.next().number(), 3U);
  EXPECT_FALSE(queue.next());
  EXPECT_EQ(queue.accepted(), 3U);
  EXPECT_EQ(queue.taken(), 3U);
  EXPECT_EQ(queue.dropped(), 1U);
  EXPECT_FALSE(capture_->next(0ms));
  EXPECT_EQ(capture_->dropped(), 0U);
  // Nobody wants more for the moment.
  EXPECT_EQ(capture_->state().frames, 4U);
  EXPECT_EQ(toSend_, 3);
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(toSend_, 3);
  queue = capture_->frames(oc::Delivery::Every, 2);
  EXPECT_EQ(queue.next(5000ms).number(), 4U);
}

TEST_F(CppFaceFrames, AConsumerWritesOnAThreadOfItsOwn) {
  start();
  std::vector<std::uint64_t> written;
  oc::FrameQueue queue = capture_->frames(oc::Delivery::Every, SIZE_MAX);
  std::thread writer([&] {
    while (const oc::Frame frame = queue.next()) {
      written.push_back(frame.number());
    }
  });
  send(50);
  queue.close();
  writer.join();
  ASSERT_EQ(written.size(), 50U);
  EXPECT_EQ(written.back(), 49U);
}

TEST_F(CppFaceFrames, FramesAndQueuesOutliveTheThread) {
  start({.delivery = oc::Delivery::Every, .capacity = 4});
  oc::FrameQueue queue = capture_->frames(oc::Delivery::Every, 4);
  oc::FrameQueue moved;
  moved = std::move(queue);
  send(2);
  const oc::Frame held = capture_->next(0ms);
  capture_.reset();
  EXPECT_EQ(held.pixels()[0], 0);
  EXPECT_EQ(moved.next().number(), 0U);
  EXPECT_EQ(moved.next().number(), 1U);
  EXPECT_FALSE(moved.next());
}

TEST_F(CppFaceFrames, AQueueThatIsGoneTakesNoFrames) {
  start({.delivery = oc::Delivery::Every, .capacity = 4});
  oc::Frame held;
  {
    oc::FrameQueue queue = capture_->frames(oc::Delivery::Every, 4);
    send(3);
    held = queue.next(0ms);
  }
  send(1);
  EXPECT_EQ(held.pixels()[0], 0);
  EXPECT_EQ(capture_->next(0ms).number(), 0U);
}

TEST_F(CppFaceFrames, TheRateBeginsAnewWithAnOpening) {
  start();
  send(3);
  EXPECT_GT(capture_->state().framesPerSecond, 0);
  capture_->reopen().get();
  EXPECT_EQ(capture_->state().framesPerSecond, 0);
}

struct RateCase {
  const char* name;
  std::vector<std::pair<int, std::chrono::milliseconds>> frames;  // how many at which interval
  std::chrono::milliseconds silence;                              // since the last frame
  double perSecond;
  double tolerance = 1e-6;
};

void PrintTo(const RateCase& rate, std::ostream* out) {
  *out << rate.name;
}

class CppFaceRate : public ::testing::TestWithParam<RateCase> {};

TEST_P(CppFaceRate, IsThatOfTheLastTwoSeconds) {
  oc::detail::FrameRate rate;
  oc::detail::Clock::time_point now{1h};
  for (const auto& [count, interval] : GetParam().frames) {
    for (int frame = 0; frame < count; ++frame) {
      rate.add(now += interval);
    }
  }
  EXPECT_NEAR(rate.perSecond(GetParam().silence), GetParam().perSecond, GetParam().tolerance);
}

INSTANTIATE_TEST_SUITE_P(
    Frames, CppFaceRate,
    ::testing::Values(RateCase{"NoFrame", {}, 0ms, 0}, RateCase{"OneFrame", {{1, 10ms}}, 0ms, 0},
                      RateCase{"TwoFrames", {{2, 10ms}}, 0ms, 100},
                      RateCase{"OfTwoSecondsOnly", {{100, 10ms}, {70, 40ms}}, 0ms, 25, 0.1},
                      RateCase{"TwoFramesThatAreFarApart", {{3, 10000ms}}, 0ms, 0.1},
                      RateCase{"TheNextFrameJustCame", {{50, 20ms}}, 0ms, 50},
                      RateCase{"TheNextFrameIsNotDue", {{50, 20ms}}, 10ms, 50},
                      RateCase{"NoFrameForHalfASecond", {{50, 20ms}}, 500ms, 2},
                      RateCase{"NoFrameForTenSeconds", {{50, 20ms}}, 10000ms, 0.1},
                      RateCase{"FramesAtOneMoment", {{5, 0ms}}, 0ms, 1e6}),
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace orvane::testing
