// Polls a camera for frames. How long it waits depends on the exposure.
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

  /// Waits for the next frame, for a second at most. Returns its bytes, or none when no frame was
  /// ready. The bytes are at the start of the buffer and stay valid until the next call.
  ///
  /// One wait is twice the exposure plus 500 ms long, over as many calls as that takes. Throws
  /// CameraError after five waits in a row without a frame, or when the camera fails.
  std::span<std::uint8_t> poll();

  /// Discards this number of frames, or fewer when the user stops the program, and shows progress.
  /// Throws as poll().
  void discard(int frames, StatusLine& line);

  /// The buffer that frames are read into. The caller may swap it for another one of the same size.
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
  std::optional<Clock::time_point> waitEnd_;  // none when no wait has started
  int silentWaitsInRow_ = 0;
  std::int64_t silentWaits_ = 0;
  std::int64_t notReadyAnswers_ = 0;
};

}  // namespace orvane::host
