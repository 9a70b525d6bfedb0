// Hands the newest frame from the thread that reads to the thread that draws, without copying.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <utility>
#include <vector>

#include "imaging/frame_layout.hpp"

namespace orvane::host {

/// A frame as the camera delivered it.
struct LiveFrame {
  FrameLayout layout;
  int bitDepth = 8;  ///< of the camera's converter
  std::uint64_t opening =
      0;                 ///< counts how often a camera was opened; frames of one belong together
  std::size_t size = 0;  ///< bytes of the buffer that are the frame
  std::vector<std::uint8_t> buffer;

  std::span<const std::uint8_t> bytes() const { return std::span(buffer).first(size); }
};

/// Safe for one thread that puts and one that takes.
class FrameExchange {
 public:
  /// Leaves the frame here, in place of one that nobody has taken; gives another buffer back.
  void put(LiveFrame& frame) {
    const std::lock_guard lock(mutex_);
    std::swap(newest_, frame);
    isFresh_ = true;
  }

  /// Takes the newest frame, if there is one that has not been taken; leaves the old one's buffer.
  bool take(LiveFrame& frame) {
    const std::lock_guard lock(mutex_);
    if (!isFresh_) {
      return false;
    }
    isFresh_ = false;
    std::swap(newest_, frame);
    return true;
  }

 private:
  std::mutex mutex_;
  LiveFrame newest_;
  bool isFresh_ = false;
};

}  // namespace orvane::host
