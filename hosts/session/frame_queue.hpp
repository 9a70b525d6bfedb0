// Frames on their way from the thread that asks a camera to the thread that writes them.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

namespace orvane::host {

/// A buffer with a frame at its start.
struct BufferedFrame {
  std::vector<std::uint8_t> buffer;
  std::size_t size = 0;   ///< of the frame, in bytes
  std::int64_t time = 0;  ///< when it came; the queue does not look at it
};

/// A queue of bounded length between one thread that puts in and one that takes out. Buffers are
/// exchanged, not copied, and used again; so putting in never waits for longer than such an
/// exchange takes, and memory is bounded: at most two buffers more than frames may wait exist.
class FrameQueue {
 public:
  /// `mostFrames` (1 or more) of at most `bufferBytes` bytes can wait.
  FrameQueue(std::size_t bufferBytes, std::size_t mostFrames);

  /// Puts a frame in and leaves an empty buffer of `bufferBytes` bytes in its place. Returns false,
  /// and leaves the frame where it is, when the queue is full.
  bool push(BufferedFrame& frame);

  /// Waits for a frame and takes it out, in exchange for the buffer of the frame that was taken
  /// before. Returns false, and leaves `frame` as it is, when no more will come.
  bool pop(BufferedFrame& frame);

  /// Waits until a frame can be put in, but no longer than `time`. Returns true when one can.
  bool waitForRoom(std::chrono::milliseconds time);

  /// No more frames will be put in; those that wait can still be taken out.
  void close();

  /// How many frames can wait.
  std::size_t capacity() const { return capacity_; }

  /// The most frames that have waited at a time.
  std::size_t mostWaiting() const;

 private:
  const std::size_t bufferBytes_;
  const std::size_t capacity_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;  ///< a frame was put in, or the queue closed
  std::condition_variable hasRoom_;
  std::deque<BufferedFrame> waiting_;
  std::vector<std::vector<std::uint8_t>> freeBuffers_;
  std::size_t mostWaiting_ = 0;
  bool isClosed_ = false;
};

}  // namespace orvane::host
