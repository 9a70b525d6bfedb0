// Writes frames into a SER file on a thread of its own.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <mutex>
#include <thread>

#include "formats/ser_writer.hpp"
#include "imaging/frame_correction.hpp"
#include "session/frame_queue.hpp"

namespace orvane::host {

/// How frames come, and how they get into the file.
struct RecorderSetup {
  FrameLayout delivered;
  FrameCorrection correction;
  std::size_t bufferBytes = 0;    ///< what the camera demands of a buffer
  std::int64_t waitingBytes = 0;  ///< frames that wait may take as much; three may always wait
};

/// The file is valid at any time, and finished when this object ends.
class SerRecorder {
 public:
  /// `description` is that of the corrected frames. Throws std::runtime_error when the file cannot
  /// be created.
  SerRecorder(const std::filesystem::path& path, const SerDescription& description,
              const RecorderSetup& setup);

  /// Writes what waits and finishes the file, quietly.
  ~SerRecorder();
  SerRecorder(const SerRecorder&) = delete;
  SerRecorder& operator=(const SerRecorder&) = delete;

  /// Takes a frame over and leaves another buffer in its place; where there is no room, the frame
  /// is dropped, and counted. Does not wait for the disk. Returns true when it was taken.
  bool take(BufferedFrame& frame);

  /// Waits until a frame would be taken, but no longer than `time`. Returns true when one would.
  bool waitForRoom(std::chrono::milliseconds time) { return queue_.waitForRoom(time); }

  /// True when writing has failed; nothing is written from then on.
  bool hasFailed() const { return hasFailed_; }

  /// No more frames will come: what waits is written and the file finished.
  void stop();

  /// Waits for that end, after stop(). Returns true when it is reached.
  bool waitForEnd(std::chrono::milliseconds time);

  /// Throws what has failed. Only after the end.
  void requireSuccess() const;

  /// How many frames are in the file.
  std::int32_t writtenFrames() const { return writtenFrames_; }

  std::int64_t droppedFrames() const { return droppedFrames_; }
  const FrameQueue& queue() const { return queue_; }

  /// The last frame in the file; only after the end, and only when there is one.
  std::span<const std::uint8_t> lastFrame() const;

 private:
  void run();
  void writeFrames();

  const RecorderSetup setup_;
  FrameQueue queue_;
  SerWriter writer_;
  BufferedFrame current_;
  std::int64_t droppedFrames_ = 0;
  std::atomic<std::int32_t> writtenFrames_ = 0;
  std::atomic<bool> hasFailed_ = false;
  std::exception_ptr failure_;
  std::mutex mutex_;
  std::condition_variable ended_;
  bool hasEnded_ = false;
  std::thread thread_;  // last: it uses all the others
};

}  // namespace orvane::host
