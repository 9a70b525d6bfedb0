// The frames of a camera for one command.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <orvane_desktop_camera.hpp>
#include <span>
#include <string>

#include "oc_capture/camera_options.hpp"
#include "oc_capture/status_line.hpp"
#include "system/system.hpp"

namespace orvane::host {

inline double secondsBetween(std::chrono::steady_clock::time_point start,
                             std::chrono::steady_clock::time_point end) {
  return std::chrono::duration<double>(end - start).count();
}

/// A line of a report, empty if no read has failed.
std::string failedReadsText(std::uint64_t failedReads);

/// A frame and its corrected bytes, which are a part of it if a region was cut out; or none.
struct CorrectedFrame {
  oc::Frame frame;
  std::span<const std::uint8_t> pixels;

  explicit operator bool() const { return static_cast<bool>(frame); }
};

/// An open camera and a queue that takes every frame from the first one on. A camera that is lost,
/// as oc::CaptureThread describes it, ends the stream: next() then throws oc::Error. Single failed
/// reads are counted and told.
class CameraStream {
 public:
  /// The stream ends `frames` frames after those to discard, if a number is given. Waiting frames
  /// may use `waitingBytes`. If the options have a region, and the camera refuses the size that
  /// holds it or delivers less, it is opened with the whole sensor. Throws oc::Error when the
  /// camera cannot be opened, and UsageError when its frames do not hold the region.
  CameraStream(const ChosenCamera& camera, const CameraOptions& options, std::optional<int> frames,
               std::int64_t waitingBytes = 64'000'000);

  /// Waits for the next frame, but only so long that Ctrl-C and the status line are not delayed.
  /// Empty when none came.
  CorrectedFrame next();

  /// Tells of reads that have failed since the last call. To be called in every wait for frames.
  void tellFailures(StatusLine& line);

  /// Discards this number of frames, or fewer if the user stops the program. Shows the progress.
  void discard(int frames, StatusLine& line);

  /// When the last discarded frame came, or the camera was opened if no frame was discarded.
  std::chrono::steady_clock::time_point start() const { return start_; }

  oc::CaptureState state() const { return capture_.state(); }

  /// The layout of the corrected frames.
  FrameLayout layout() const { return correctedLayout(state().layout, correction_); }

  /// The queue, for a consumer that replaces next() and corrects the frames.
  oc::FrameQueue takeQueue() { return std::move(frames_); }

 private:
  void open(const oc::CameraInfo& camera, const oc::Settings& settings);
  bool holdsRegion() const;

  const StaysAwake awake_;
  const FrameCorrection correction_;
  const std::int64_t waitingBytes_;
  const std::uint64_t most_;  // frames that the queue takes; 0: any number
  oc::CaptureThread capture_;
  oc::FrameQueue frames_;
  std::chrono::steady_clock::time_point start_;
  std::uint64_t toldFailures_ = 0;
  std::string toldText_;  // of the last failure that was told
  bool toldLimit_ = false;
};

}  // namespace orvane::host
