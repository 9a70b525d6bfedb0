// Time in a simulated SDK: the clock and the stream of frames that depends on it.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/sensor.hpp"

namespace orvane::sim {

// Microseconds since the clock was constructed. It runs with the computer's clock, or is stopped
// and moves only when it is told to.
class Clock {
 public:
  std::int64_t now() const;

  // Stops the clock, or lets it run on from its present time.
  void stop(bool stopped);

  void advance(std::int64_t microseconds);  // a negative time counts as 0

  // Waits until this time, or returns at once if it is past. A stopped clock is set to this time
  // instead.
  void waitUntil(std::int64_t moment);

 private:
  using Steady = std::chrono::steady_clock;

  bool isStopped_ = false;
  std::int64_t base_ = 0;  // this clock's time at `start_`; a stopped clock's time
  Steady::time_point start_ = Steady::now();
};

// What a maker's SDK does when the queue is full.
enum class WhenFull {
  DropOldest,  // the new frame replaces the oldest one
  Pause,       // the camera exposes no frame until one is taken
};

struct QueueRule {
  std::size_t length;  // frames, at least 1
  WhenFull whenFull;
};

// An exposed frame: its number since the stream's start, including dropped frames, and the settings
// of its exposure.
struct Frame {
  std::int64_t number = 0;
  FrameSettings settings;
};

// The frames of a streaming camera. They follow each other without a gap. Each takes the longer of
// its exposure time and the time that reading the sensor takes. New settings apply from the next
// frame on. Frames wait in a short queue.
//
// There is no thread: every call first completes the frames that are due by the clock.
class FrameStream {
 public:
  bool isRunning() const { return isRunning_; }  // between start() and stop()

  // Whether a stream of one frame has exposed and delivered it.
  bool isFinished() const { return isSingleFrame_ && !isExposing_ && queue_.empty(); }

  // Begins to expose frame 0. A stream of one frame exposes no further one.
  void start(std::int64_t now, QueueRule rule, bool isSingleFrame, const FrameSettings& settings);
  void stop();

  // Applies new settings to the frame after the one that is being exposed.
  void change(std::int64_t now, const FrameSettings& settings);

  // Applies new settings at once: drops the waiting frames and the one that is being exposed.
  void restartFrame(std::int64_t now, const FrameSettings& settings);

  // The oldest waiting frame; null if there is none. take() removes it.
  const Frame* waiting(std::int64_t now);
  void take(std::int64_t now);

  // When the frame that is being exposed will be complete; empty if none is being exposed.
  std::optional<std::int64_t> nextCompletion() const;

 private:
  void catchUp(std::int64_t now);
  void completeFrame();
  void skipFrames(std::int64_t now);

  bool isRunning_ = false;
  bool isExposing_ = false;
  bool isSingleFrame_ = false;
  QueueRule rule_{1, WhenFull::DropOldest};
  FrameSettings settings_;  // of the next frame
  Frame exposing_;
  std::int64_t completion_ = 0;
  std::vector<Frame> queue_;
};

}  // namespace orvane::sim
