// The frames of a camera for one command.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <orvane_desktop_camera.hpp>

#include "oc_capture/camera_options.hpp"
#include "oc_capture/status_line.hpp"

namespace orvane::host {

/// An open camera and a queue that takes every frame from the first one on. The first failed read,
/// or five waits without a frame, end the stream: reading it throws oc::Error then.
class CameraStream {
 public:
  /// The stream ends after this number of frames behind those to discard, if there is one. Frames
  /// that wait may take `waitingBytes`. Throws oc::Error when the camera cannot be opened.
  CameraStream(const ChosenCamera& camera, const CameraOptions& options, std::optional<int> frames,
               std::int64_t waitingBytes = 64'000'000);

  /// Waits for the next frame, but not longer than Ctrl-C and the status line can wait. Empty when
  /// none came.
  oc::Frame next() { return frames_.next(std::chrono::milliseconds(100)); }

  /// Discards this number of frames, or fewer when the user stops the program, and shows progress.
  void discard(int frames, StatusLine& line);

  /// When the last discarded frame came; without one, when the camera was opened.
  std::chrono::steady_clock::time_point start() const { return start_; }

  oc::CaptureState state() const { return capture_.state(); }

  /// The queue, for a consumer that takes the place of next().
  oc::FrameQueue takeQueue() { return std::move(frames_); }

 private:
  oc::CaptureThread capture_;
  oc::FrameQueue frames_;
  std::chrono::steady_clock::time_point start_;
};

}  // namespace orvane::host
