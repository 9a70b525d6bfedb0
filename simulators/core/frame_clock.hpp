// Time in a simulated SDK: the clock, and the stream of frames that it paces.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "core/sensor.hpp"

namespace orvane::sim {

// Microseconds since the clock was made. It runs with the computer's clock, or stands still until
// it is moved.
class Clock {
 public:
  std::int64_t now() const;

  // Stops the clock, or lets it run on from where it stands.
  void stop(bool stopped);

  // Moves the clock forward. A negative time is no time.
  void advance(std::int64_t microseconds);

  // Waits for a moment; a stopped clock is moved there at once. A moment in the past is not waited
  // for.
  void waitUntil(std::int64_t moment);

 private:
  using Steady = std::chrono::steady_clock;

  bool isStopped_ = false;
  std::int64_t stoppedAt_ = 0;
  std::int64_t shift_ = 0;  // of the running clock against the computer's
  Steady::time_point start_ = Steady::now();
};

// What a maker's SDK does with a frame that finds the queue full.
enum class WhenFull {
  DropOldest,  // the frame takes the place of the oldest one
  Pause,       // the camera exposes no further frame until one is taken
};

struct QueueRule {
  std::size_t length;  // frames, 1 to FrameStream::longestQueue
  WhenFull whenFull;
};

// A frame that the camera has exposed: its number since the stream's start, counting also those
// that were dropped, and the settings it was exposed with.
struct Frame {
  std::int64_t number = 0;
  FrameSettings settings;
};

// The frames of a streaming camera. They follow each other without a gap; each takes its exposure
// time or, when that is longer, the time of reading the sensor. New settings hold from the next
// frame on. Frames wait in a short queue.
//
// Nothing runs in the background: every call first catches up with the clock.
class FrameStream {
 public:
  static constexpr std::size_t longestQueue = 4;

  // From start() to stop().
  bool isRunning() const { return isRunning_; }

  // Whether a stream of one frame has exposed it and handed it out.
  bool isFinished() const { return isSingleFrame_ && !isExposing_ && queued_ == 0; }

  // Begins to expose frame 0. A stream of one frame exposes no other.
  void start(std::int64_t now, QueueRule rule, bool isSingleFrame, const FrameSettings& settings);
  void stop();

  // Takes over new settings, for the frame after the one that is being exposed.
  void change(std::int64_t now, const FrameSettings& settings);

  // Takes over new settings at once: what waits and what is being exposed is thrown away.
  void restartFrame(std::int64_t now, const FrameSettings& settings);

  // The oldest waiting frame; null when none is there.
  const Frame* waiting(std::int64_t now);

  // When the frame that is being exposed will be complete; nothing when no frame is.
  std::optional<std::int64_t> nextCompletion() const;

  // Removes the oldest waiting frame, of which there must be one.
  void take(std::int64_t now);

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
  std::array<Frame, longestQueue> queue_;
  std::size_t queued_ = 0;
};

}  // namespace orvane::sim
