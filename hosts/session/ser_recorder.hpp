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
#include <span>
#include <thread>
#include <vector>

#include "formats/ser_writer.hpp"
#include "imaging/frame_correction.hpp"
#include "session/frame_timing.hpp"

namespace orvane::host {

/// The capacity of a queue in which frames of this size wait to be written or viewed: as many as
/// fit into `waitingBytes`, but at least three, plus the frame that is being written.
std::size_t recordingCapacity(std::int64_t waitingBytes, std::size_t frameBytes);

/// How to record.
struct RecordingOptions {
  Existing existing = Existing::Refuse;
  std::int64_t exposureUs = 0;  ///< 0 if unknown; see GapFinder
  bool sharesFrames = false;    ///< others use the frames too: a correction changes copies
};

/// When the recorded frames arrived.
struct RecordingTimes {
  std::chrono::system_clock::time_point first;  ///< these two only if there is a frame
  std::chrono::system_clock::time_point last;
  GapCount count;
  std::vector<FrameGap> firstGaps;  ///< at most mostGaps
  double frameTime = 0;             ///< see GapFinder
  double seconds = 0;               ///< from the first frame to the last

  static constexpr std::size_t mostGaps = 20;
};

/// A recording in progress. The file appears with its first frame and is valid from then on.
class SerRecorder {
 public:
  /// Takes the frames of a queue with Delivery::Every until it is closed or the camera is lost. The
  /// correction changes frames in place, so nothing else may use them. `description` is that of the
  /// corrected frames. Throws std::runtime_error when the file cannot be created.
  SerRecorder(const std::filesystem::path& path, const SerDescription& description,
              const FrameCorrection& correction, oc::FrameQueue frames,
              const RecordingOptions& options = {});

  /// Writes the waiting frames and finishes the file. Ignores failures.
  ~SerRecorder();
  SerRecorder(const SerRecorder&) = delete;
  SerRecorder& operator=(const SerRecorder&) = delete;

  /// Accepts no more frames. The waiting ones are still written, and the file is finished.
  void stop() { frames_.close(); }

  /// Waits until the file is finished: after stop(), after the last frame that the queue takes, or
  /// after a failure of the camera or of writing. Returns false if the time is too short for that.
  bool waitForEnd(std::chrono::milliseconds time);

  /// Throws the failure, if there was one; oc::Error if the camera failed. Only after the end.
  void requireSuccess() const;

  /// How many frames are in the file.
  std::int32_t writtenFrames() const { return writtenFrames_; }

  /// How many frames are in the file or waiting for it.
  std::int64_t acceptedFrames() const { return difference(frames_.accepted(), takenBefore_); }

  /// How many frames found no room.
  std::int64_t droppedFrames() const { return difference(frames_.dropped(), droppedBefore_); }

  /// The arrival of the frames in the file.
  RecordingTimes times() const;

  const oc::FrameQueue& queue() const { return frames_; }

  /// The last frame in the file, empty if there is none. Only after the end.
  const oc::Frame& lastFrame() const { return current_; }

  /// Its corrected bytes, which are those in the file. Valid as long as the frame is held.
  std::span<const std::uint8_t> lastPixels() const { return currentPixels_; }

 private:
  static std::int64_t difference(std::uint64_t now, std::uint64_t before) {
    return static_cast<std::int64_t>(now - before);
  }
  void run();
  void writeFrames();
  std::span<std::uint8_t> bytesToCorrect(const oc::Frame& frame);
  void noteTime(std::chrono::system_clock::time_point time);

  const FrameCorrection correction_;
  const bool sharesFrames_;
  oc::FrameQueue frames_;
  const std::uint64_t takenBefore_;
  const std::uint64_t droppedBefore_;
  SerWriter writer_;
  FrameStamps stamps_;
  oc::Frame current_;
  std::span<const std::uint8_t> currentPixels_;
  std::vector<std::uint8_t> copy_;  // of a shared frame
  std::atomic<std::int32_t> writtenFrames_ = 0;
  std::exception_ptr failure_;
  mutable std::mutex mutex_;
  GapFinder gaps_;
  RecordingTimes times_;
  std::condition_variable ended_;
  bool hasEnded_ = false;
  std::thread thread_;  // last: it uses all the others
};

}  // namespace orvane::host
