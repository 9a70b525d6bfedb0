// The capture thread: requests, silence and failures.
#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>
#include <new>
#include <optional>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "cpp_face/face_test.hpp"
#include "cpp_face/scripted_library.hpp"

namespace orvane::testing {
namespace {

using Applied = std::tuple<std::int64_t, int, int>;

bool isPhase(const oc::CaptureThread& capture, oc::Phase phase) {
  return comesTrue([&] { return capture.state().phase == phase; });
}

// With the linked library and simulated cameras.
class CppFaceCapture : public FaceTest {
 protected:
  CppFaceCapture() { sdk.setCameras({smallCamera()}); }
};

TEST_F(CppFaceCapture, FramesOfEveryMakerCome) {
  std::size_t known = 0;  // cameras of the SDKs before, which stay loaded
  for (const char* name : sdkNames) {
    const SdkDirectory one(name);
    one.add(name);
    SimulatedSdk(one.file(name)).stop_clock(0);
    const oc::Scan found = oc::scan(one.utf8());
    ASSERT_GT(found.cameras.size(), known) << name;
    const oc::CameraInfo& camera = found.cameras[std::exchange(known, found.cameras.size())];
    oc::CaptureThread capture(camera, small());
    for (int count = 0; count < 3; ++count) {
      const oc::Frame frame = capture.next(5000ms);
      ASSERT_TRUE(frame) << name;
      EXPECT_EQ(frame.size(), 64U * 32) << name;
    }
    const oc::CaptureState state = capture.state();
    EXPECT_EQ(state.phase, oc::Phase::Streaming);
    EXPECT_EQ(state.text, "");
    EXPECT_EQ(state.camera.name, camera.name);
    EXPECT_EQ(state.layout.width, 64);
    EXPECT_GE(state.bufferSize, 64U * 32);
    EXPECT_EQ(state.opening, 1U);
    EXPECT_GE(state.frames, 3U);
    EXPECT_GT(state.framesPerSecond, 0);
    EXPECT_EQ(state.failedReads, 0U);
  }
}

TEST_F(CppFaceCapture, AnOpenThatFailsThrowsOutOfTheConstructor) {
  sdk.forceResult("ASIStartVideoCapture", 16);
  EXPECT_EQ(errorOf([&] { oc::CaptureThread(first(), small()); }), "ASIStartVideoCapture: 16");
  expectClean(sdk);
}

TEST_F(CppFaceCapture, TheDestructorClosesWhileFramesStream) {
  oc::Frame held;
  {
    oc::CaptureThread capture(first(), small());
    held = capture.next(5000ms);
  }
  ASSERT_TRUE(held);
  EXPECT_EQ(held.pixels().size(), 64U * 32);
  expectClean(sdk);
}

TEST_F(CppFaceCapture, SilenceIsToldAndTheCameraIsLostAfterFiveWaits) {
  sdk.forceResult("ASIGetVideoData", 11, 3);
  oc::CaptureThread capture(first(), small(), {.delivery = oc::Delivery::Every});
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(isPhase(capture, oc::Phase::Silent));
  EXPECT_GE(capture.state().silence, 502ms);
  EXPECT_EQ(capture.state().frames, 2U);
  ASSERT_TRUE(isPhase(capture, oc::Phase::Lost));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 2400ms);
  const std::string text = "The camera has sent no frame for 5 waits of 502 ms.";
  EXPECT_EQ(capture.state().text, text);
  EXPECT_EQ(capture.state().silentWaits, 5U);
  EXPECT_GT(capture.state().emptyReads, 100U);
  EXPECT_EQ(capture.state().failedReads, 0U);
  expectClean(sdk);

  // What came before is handed out first.
  EXPECT_TRUE(capture.next(0ms));
  EXPECT_TRUE(capture.next(0ms));
  EXPECT_EQ(errorOf([&] { capture.next(0ms); }), text);
  sdk.clear_faults();
  capture.reopen().get();
  EXPECT_TRUE(capture.next(5000ms));
}

TEST_F(CppFaceCapture, TheWaitsThatLoseACameraCanBeChosen) {
  sdk.forceResult("ASIGetVideoData", 11);
  const oc::CaptureThread capture(first(), small(), {.silentWaits = 1});
  ASSERT_TRUE(isPhase(capture, oc::Phase::Lost));
  EXPECT_EQ(capture.state().text, "The camera has sent no frame for 1 waits of 502 ms.");
}

TEST_F(CppFaceCapture, AFailureInPassingIsPassedOver) {
  sdk.forceResult("ASIGetVideoData", 5, 3, 4);
  oc::CaptureThread capture(first(), small());
  ASSERT_TRUE(comesTrue([&] { return capture.state().frames > 5; }));
  const oc::CaptureState state = capture.state();
  EXPECT_EQ(state.phase, oc::Phase::Streaming);
  EXPECT_EQ(state.failedReads, 4U);
  EXPECT_EQ(state.text, "ASIGetVideoData: 5");
}

TEST_F(CppFaceCapture, FailuresInARowLoseTheCamera) {
  sdk.forceResult("ASIGetVideoData", 5, 3);
  {
    const oc::CaptureThread capture(first(), small());
    ASSERT_TRUE(isPhase(capture, oc::Phase::Lost));
    EXPECT_EQ(capture.state().failedReads, 5U);
    EXPECT_EQ(capture.state().text, "ASIGetVideoData: 5");
    expectClean(sdk);
  }
  sdk.clear_faults();
  sdk.forceResult("ASIGetVideoData", 5, 3, 1);
  const oc::CaptureThread capture(first(), small(), {.failures = 1});
  ASSERT_TRUE(isPhase(capture, oc::Phase::Lost));
  EXPECT_EQ(capture.state().failedReads, 1U);
}

TEST_F(CppFaceCapture, AnUnpluggedCameraIsFoundAgainAmongThoseOfItsName) {
  SimCamera other = smallCamera();
  other.id = 8;
  SimCamera second = smallCamera();
  second.id = 9;
  setText(other.name, "other");
  sdk.setCameras({smallCamera(), other, second});
  const oc::CameraInfo info = oc::scan(directory.utf8()).cameras.at(2);
  sdk.command("unplug 2 ASIGetVideoData 3");
  oc::CaptureThread capture(info, small());
  ASSERT_TRUE(isPhase(capture, oc::Phase::Lost));
  EXPECT_EQ(errorOf([&] {
              while (capture.next(0ms)) {
              }
            }),
            "ASIGetVideoData: 5");

  capture.apply(2000, 1, 1);  // for the camera that comes back
  sdk.set_plugged(2, 1);
  EXPECT_EQ(capture.rescan(directory.utf8()).get().cameras.size(), 3U);
  EXPECT_TRUE(capture.next(5000ms));
  const oc::CaptureState state = capture.state();
  EXPECT_EQ(state.camera.index, 2);
  EXPECT_EQ(state.camera.ordinal, 1);
  EXPECT_EQ(state.settings.exposureUs, 2000);
  EXPECT_EQ(state.layout.width, 64);
  EXPECT_EQ(state.opening, 2U);
}

TEST_F(CppFaceCapture, ACameraThatIsNotFoundAgainIsLost) {
  sdk.command("unplug 0 ASIGetVideoData 3");
  oc::CaptureThread capture(first(), small());
  ASSERT_TRUE(isPhase(capture, oc::Phase::Lost));
  EXPECT_TRUE(capture.rescan(directory.path()).get().cameras.empty());
  EXPECT_EQ(capture.state().phase, oc::Phase::Lost);
  EXPECT_EQ(capture.state().text, "small was not found again.");
  sdk.set_plugged(0, 1);
  EXPECT_EQ(capture.rescan(directory.path()).get().cameras.size(), 1U);
  EXPECT_TRUE(capture.next(5000ms));
}

TEST_F(CppFaceCapture, AScanReopensTheCameraThatStreams) {
  oc::CaptureThread capture(first(), small());
  ASSERT_TRUE(capture.next(5000ms));
  EXPECT_EQ(capture.rescan(directory.utf8()).get().error, "");
  EXPECT_EQ(capture.state().opening, 2U);
  ASSERT_TRUE(comesTrue([&] { return capture.next(1000ms).opening() == 2; }));
}

TEST_F(CppFaceCapture, WithoutACameraTheThreadScansAndOpens) {
  oc::CaptureThread capture;
  EXPECT_EQ(capture.state().phase, oc::Phase::Idle);
  EXPECT_FALSE(capture.next(0ms));
  EXPECT_EQ(errorOf([&] { capture.reopen().get(); }), "No camera has been opened.");
  const oc::Scan found = capture.rescan(directory.utf8()).get();
  ASSERT_EQ(found.cameras.size(), 1U);
  EXPECT_EQ(capture.state().phase, oc::Phase::Idle);
  capture.open(found.cameras[0], small()).get();
  EXPECT_TRUE(capture.next(5000ms));
  capture.close().get();
  EXPECT_EQ(capture.state().phase, oc::Phase::Idle);
  expectClean(sdk);
  capture.rescan(directory.utf8()).get();
  EXPECT_EQ(capture.state().phase, oc::Phase::Idle);
}

TEST_F(CppFaceCapture, OtherSettingsReopenOrLeaveThoseOfBefore) {
  oc::CaptureThread capture(first(), small());
  capture.reopen(oc::Settings{.bin = 2, .format = oc::Format::Raw16}).get();
  ASSERT_TRUE(comesTrue([&] { return capture.next(1000ms).opening() == 2; }));
  const oc::Frame frame = capture.next(5000ms);
  EXPECT_EQ(frame.width(), 160);
  EXPECT_EQ(frame.format(), oc::Format::Raw16);
  EXPECT_EQ(frame.size(), 2U * 160 * 100);

  EXPECT_EQ(errorOf([&] { capture.reopen(oc::Settings{.bin = 3}).get(); }),
            "Unsupported bin or format");
  EXPECT_EQ(capture.state().phase, oc::Phase::Streaming);
  EXPECT_EQ(capture.state().settings.bin, 2);
}

TEST_F(CppFaceCapture, SettingsOfOtherThreadsReachTheCamera) {
  oc::CaptureThread capture(first(), small());
  std::vector<std::thread> threads;
  for (int number = 1; number <= 4; ++number) {
    threads.emplace_back([&capture, number] { capture.apply(1000 * number, number, number); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  capture.apply(3000, 7, 8);
  ASSERT_TRUE(comesTrue([&] { return capture.state().settings.gain == 7; }));
  capture.apply(0, 9, 9);
  ASSERT_TRUE(comesTrue([&] { return capture.state().refusals == 1; }));
  EXPECT_EQ(capture.state().refusal, "Exposure out of range");
  EXPECT_EQ(capture.state().settings.exposureUs, 3000);
  EXPECT_EQ(capture.state().phase, oc::Phase::Streaming);
  capture.close().get();
  EXPECT_NE(sdk.takeLog().find("ASISetControlValue(7, 0, 7"), std::string::npos);
}

// With a scripted library.
class CppFaceThread : public ::testing::Test {
 protected:
  CppFaceThread() {
    info_ = oc::parseCameraInfo(0, infoText(0, "a"));
    settings_.exposureUs = 1000;
  }
  ~CppFaceThread() override { EXPECT_FALSE(script().hasOverlap); }

  oc::CaptureThread start(const oc::CaptureOptions& options = {}) {
    return {info_, settings_, options, scriptedLibrary()};
  }

  // Makes reads wait, and then find no frame, until isHeld_ is false.
  void holdReads() {
    isHeld_ = true;
    script().read = [this](std::uint8_t*, int) {
      while (isHeld_) {
        std::this_thread::sleep_for(1ms);
      }
      return 0;
    };
  }

  // Notes what is applied, and refuses this gain.
  void noteApplied(int refusedGain) {
    script().apply = [this, refusedGain](std::int64_t exposureUs, int gain, int offset) {
      const std::lock_guard lock(mutex_);
      applied_.emplace_back(exposureUs, gain, offset);
      return gain == refusedGain ? 0 : 1;
    };
  }
  std::vector<Applied> applied() {
    const std::lock_guard lock(mutex_);
    return applied_;
  }

  oc::CameraInfo info_;
  oc::Settings settings_;
  std::atomic<bool> isHeld_{false};

 private:
  std::mutex mutex_;
  std::vector<Applied> applied_;
};

TEST_F(CppFaceThread, TheLastOfSeveralSettingsCounts) {
  holdReads();
  noteApplied(-1);
  oc::CaptureThread capture = start();
  std::this_thread::sleep_for(20ms);  // it asks for a frame now
  capture.apply(1, 1, 1);
  capture.apply(2, 2, 2);
  capture.apply(3, 3, 3);
  isHeld_ = false;
  ASSERT_TRUE(comesTrue([&] { return capture.state().settings.gain == 3; }));
  EXPECT_EQ(applied(), std::vector<Applied>{Applied(3, 3, 3)});
}

TEST_F(CppFaceThread, ARefusedSettingIsTakenBack) {
  script().error = "ASI gain: 2";
  noteApplied(99);
  oc::CaptureThread capture = start();
  capture.apply(5000, 99, 3);
  ASSERT_TRUE(comesTrue([&] { return capture.state().refusals == 1; }));
  EXPECT_EQ(capture.state().refusal, "ASI gain: 2");
  EXPECT_EQ(capture.state().settings.gain, -25);  // the lowest
  EXPECT_EQ(applied(), (std::vector<Applied>{Applied(5000, 99, 3), Applied(1000, -25, 0)}));
}

TEST_F(CppFaceThread, AShorterExposureWaitsForTheFrameOfTheLongerOne) {
  std::atomic<bool> sends{false};
  script().read = [&](std::uint8_t*, int size) { return sends ? size : 0; };
  settings_.exposureUs = 400000;  // 1300 ms are usual
  oc::CaptureThread capture = start();
  capture.apply(1000, 0, 0);
  std::this_thread::sleep_for(700ms);
  EXPECT_EQ(capture.state().settings.exposureUs, 1000);
  EXPECT_EQ(capture.state().phase, oc::Phase::Streaming);
  sends = true;
  ASSERT_TRUE(capture.next(5000ms));
  sends = false;
  ASSERT_TRUE(comesTrue([&] { return capture.state().silence > 550ms; }));
  EXPECT_EQ(capture.state().phase, oc::Phase::Silent);
}

TEST_F(CppFaceThread, SilenceNeedNotLoseTheCamera) {
  script().read = [](std::uint8_t*, int) { return 0; };
  const oc::CaptureThread capture = start({.silentWaits = 0});
  std::this_thread::sleep_for(2700ms);  // more than five waits of 502 ms
  EXPECT_EQ(capture.state().phase, oc::Phase::Silent);
  EXPECT_EQ(capture.state().silentWaits, 5U);
}

TEST_F(CppFaceThread, ExceptionsBecomeTexts) {
  script().read = [](std::uint8_t*, int) -> int { throw 7; };
  oc::CaptureThread capture = start();
  ASSERT_TRUE(isPhase(capture, oc::Phase::Lost));
  EXPECT_EQ(capture.state().text, "An SDK threw an exception of an unknown type.");

  script().read = [](std::uint8_t*, int) -> int { throw std::bad_alloc(); };
  capture.reopen().get();
  ASSERT_TRUE(isPhase(capture, oc::Phase::Lost));
  EXPECT_EQ(errorOf([&] { capture.next(0ms); }), std::bad_alloc().what());

  script().open = [](int, int) -> int { throw 7; };
  EXPECT_THROW(capture.reopen().get(), int);
  script().scan = []() -> int { throw std::bad_alloc(); };
  EXPECT_THROW(capture.rescan("anywhere").get(), std::bad_alloc);
  EXPECT_EQ(capture.state().text, std::bad_alloc().what());
}

TEST_F(CppFaceThread, NewsAreToldAndWhatTheyThrowIsIgnored) {
  std::atomic<int> told{0};
  oc::CaptureThread capture = start({.onNews = [&] {
    ++told;
    throw 7;
  }});
  EXPECT_TRUE(capture.next(5000ms));
  EXPECT_TRUE(comesTrue([&] { return told > 3; }));
}

TEST_F(CppFaceThread, TheTemperatureIsReadAboutOnceASecond) {
  std::atomic<int> calls{0};
  script().temperature = [&] { return ++calls == 1 ? -10.5 : -300.0; };
  const oc::CaptureThread capture = start();
  ASSERT_TRUE(comesTrue([&] { return capture.state().temperature == -10.5; }));
  EXPECT_TRUE(comesTrue([&] { return !capture.state().temperature; }));
  EXPECT_EQ(calls, 2);
}

TEST_F(CppFaceThread, ARequestThatTheEndCutsOffSaysSo) {
  holdReads();
  std::future<void> unanswered;
  {
    std::optional<oc::CaptureThread> capture(std::in_place, info_, settings_, oc::CaptureOptions{},
                                             scriptedLibrary());
    std::this_thread::sleep_for(20ms);
    std::thread release([&] {
      std::this_thread::sleep_for(50ms);
      isHeld_ = false;
    });
    unanswered = capture->close();
    // The thread may still answer it: both ends are right.
    capture.reset();
    release.join();
  }
  try {
    unanswered.get();
  } catch (const std::future_error& error) {
    EXPECT_EQ(error.code(), std::future_errc::broken_promise);
  }
  EXPECT_EQ(script().opened, 1);
  EXPECT_EQ(script().closed, 1);
}

TEST_F(CppFaceThread, CallsNeverOverlapWhateverOtherThreadsAskFor) {
  script().infos = {infoText(0, "a")};
  {
    oc::CaptureThread capture = start();
    std::atomic<bool> isOver{false};
    std::thread consumer([&] {
      while (!isOver) {
        capture.next(1ms);
        capture.state();
      }
    });
    std::thread second([&] {
      while (!isOver) {
        oc::FrameQueue queue = capture.frames(oc::Delivery::Every, 2);
        queue.next(1ms);
        capture.apply(1000, 1, 1);
      }
    });
    for (int round = 0; round < 30; ++round) {
      capture.reopen().get();
      capture.rescan("anywhere").get();
    }
    isOver = true;
    consumer.join();
    second.join();
  }
  EXPECT_EQ(script().opened, 61);
  EXPECT_EQ(script().closed, 61);
}

}  // namespace
}  // namespace orvane::testing
