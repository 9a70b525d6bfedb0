// Writes a camera's frames into a SER file on a thread of its own.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <mutex>
#include <orvane_desktop_camera.hpp>
#include <thread>

#include "formats/ser_writer.hpp"
#include "imaging/frame_correction.hpp"

namespace orvane::host {

/// The capacity of a queue in which frames of this size wait to be written or looked at: as many as
/// fit into these bytes, but at least three, and the one that is being written.
std::size_t recordingCapacity(std::int64_t waitingBytes, std::size_t frameBytes);

/// The file is valid at any time, and finished when this object ends.
class SerRecorder {
 public:
  /// Takes every frame of the queue (Delivery::Every) until it is closed or the camera is lost. The
  /// correction changes frames in place, so nobody else may look at them. `description` is that of
  /// the corrected frames. Throws std::runtime_error when the file cannot be created.
  SerRecorder(const std::filesystem::path& path, const SerDescription& description,
              const FrameCorrection& correction, oc::FrameQueue frames);

  /// Writes what waits and finishes the file, quietly.
  ~SerRecorder();
  SerRecorder(const SerRecorder&) = delete;
  SerRecorder& operator=(const SerRecorder&) = delete;

  /// No more frames will come: what waits is written and the file finished.
  void stop() { frames_.close(); }

  /// Waits for the end: after stop(), when the queue has its frames, or when the camera is lost or
  /// writing has failed. Returns true when it is reached.
  bool waitForEnd(std::chrono::milliseconds time);

  /// Throws what has failed: oc::Error if it was the camera. Only after the end.
  void requireSuccess() const;

  /// How many frames are in the file.
  std::int32_t writtenFrames() const { return writtenFrames_; }

  /// How many frames are in the file or will be.
  std::int64_t acceptedFrames() const { return difference(frames_.accepted(), takenBefore_); }

  /// How many frames found no room.
  std::int64_t droppedFrames() const { return difference(frames_.dropped(), droppedBefore_); }

  const oc::FrameQueue& queue() const { return frames_; }

  /// The last frame in the file; only after the end. Empty when there is none.
  const oc::Frame& lastFrame() const { return current_; }

 private:
  static std::int64_t difference(std::uint64_t now, std::uint64_t before) {
    return static_cast<std::int64_t>(now - before);
  }
  void run();
  void writeFrames();

  const FrameCorrection correction_;
  oc::FrameQueue frames_;
  const std::uint64_t takenBefore_;
  const std::uint64_t droppedBefore_;
  SerWriter writer_;
  oc::Frame current_;
  std::atomic<std::int32_t> writtenFrames_ = 0;
  std::exception_ptr failure_;
  std::mutex mutex_;
  std::condition_variable ended_;
  bool hasEnded_ = false;
  std::thread thread_;  // last: it uses all the others
};

}  // namespace orvane::host
