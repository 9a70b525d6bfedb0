// A picture that a camera has taken.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "imaging/frame_layout.hpp"
#include "system/child_process.hpp"

namespace orvane::host {

/// A picture, in the memory that the server shares with the camera's worker. The memory is not used
/// for another picture while somebody holds this one.
struct Picture {
  std::shared_ptr<const SharedMemory> memory;
  std::size_t offset = 0;
  FrameLayout layout;  ///< of the region

  /// The pixels, column by column.
  std::span<const std::uint8_t> bytes() const {
    return memory->bytes().subspan(offset, frameBytes(layout));
  }
};

}  // namespace orvane::host
