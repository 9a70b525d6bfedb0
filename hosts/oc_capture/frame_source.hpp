// Asks a camera for frames with the patience that its exposure calls for.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "oc_capture/status_line.hpp"
#include "session/camera_session.hpp"

namespace orvane::host {

class FrameSource {
 public:
  /// The camera must outlive this object.
  FrameSource(CameraSession& camera, std::int64_t exposureUs);

  /// Asks for the next frame and waits a little for it, a second at most. Returns its bytes, or
  /// none when it has not come yet. They stand at the start of the buffer and stay valid until the
  /// next call.
  ///
  /// A frame is given twice the exposure and 500 ms; when five such waits have passed without one,
  /// or when the camera fails, a CameraError is thrown.
  std::span<std::uint8_t> poll();

  /// Throws away this number of frames, or fewer when the user wants to stop, and shows how far
  /// that is. Throws as poll().
  void discard(int frames, StatusLine& line);

  /// The buffer that frames are read into. It may be exchanged for another of its size.
  std::vector<std::uint8_t>& buffer() { return buffer_; }

  /// How many waits have passed without a frame.
  std::int64_t silentWaits() const { return silentWaits_; }

  /// How many times the camera has answered that no frame was ready.
  std::int64_t notReadyAnswers() const { return notReadyAnswers_; }

 private:
  using Clock = std::chrono::steady_clock;
  using Milliseconds = std::chrono::milliseconds;

  Milliseconds remainingWait();

  CameraSession& camera_;
  Milliseconds wait_;
  Milliseconds pause_;
  std::vector<std::uint8_t> buffer_;
  std::optional<Clock::time_point> waitEnd_;  // none before the first attempt to get a frame
  int silentWaitsInRow_ = 0;
  std::int64_t silentWaits_ = 0;
  std::int64_t notReadyAnswers_ = 0;
};

}  // namespace orvane::host
