// A frame as the camera delivered it, for the picture.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <utility>

#include "imaging/frame_layout.hpp"

namespace orvane::host {

struct LiveFrame {
  FrameLayout layout;
  int bitDepth = 8;           ///< of the camera's converter
  std::uint64_t opening = 0;  ///< CaptureState::opening; frames of one opening belong together
  std::span<const std::uint8_t> bytes;
  std::shared_ptr<const void> owner;  ///< of the bytes
};

/// The frame without a copy of its bytes.
inline LiveFrame liveFrame(oc::Frame frame) {
  const auto owner = std::make_shared<const oc::Frame>(std::move(frame));
  return {owner->layout(), owner->camera().bitDepth, owner->opening(), owner->pixels(), owner};
}

}  // namespace orvane::host
