// Asks a camera for frames with the patience that its exposure calls for.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "oc_capture/camera_session.hpp"

namespace orvane::host {

class FrameSource {
 public:
  /// The camera must outlive this object.
  FrameSource(CameraSession& camera, std::int64_t exposureUs);

  /// Asks for the next frame and waits a little for it, a second at most. Returns its bytes, or
  /// none when it has not come yet. The frame stays valid until the next one comes.
  ///
  /// A frame is given twice the exposure and 500 ms; when five such waits have passed without one,
  /// or when the camera fails, a CameraError is thrown.
  std::span<const std::uint8_t> poll();

  /// The last frame that poll() returned. poll() must have returned one.
  std::span<const std::uint8_t> lastFrame() const { return lastFrame_; }

  /// How many waits have passed without a frame.
  std::int64_t silentWaits() const { return silentWaits_; }

 private:
  using Clock = std::chrono::steady_clock;
  using Milliseconds = std::chrono::milliseconds;

  Milliseconds remainingWait();

  CameraSession& camera_;
  Milliseconds wait_;
  Milliseconds pause_;
  // Two, since an attempt without result may spoil the buffer that it was given.
  std::vector<std::uint8_t> nextBuffer_;
  std::vector<std::uint8_t> lastBuffer_;
  std::span<const std::uint8_t> lastFrame_;
  std::optional<Clock::time_point> waitEnd_;  // none before the first attempt to get a frame
  int silentWaitsInRow_ = 0;
  std::int64_t silentWaits_ = 0;
};

}  // namespace orvane::host
