// The free space that a recording leaves on its disk: "--stop-below".
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvane::host {

/// Tells when a recording has to end, so that this many bytes stay free after it is finished.
class DiskReserve {
 public:
  DiskReserve(std::int64_t bytes, std::size_t frameBytes)
      : bytes_(bytes), frameBytes_(static_cast<std::int64_t>(frameBytes)) {}

  /// True when it must end now. `free` is the free space, `accepted` and `written` are the frames
  /// that the recording has taken and written so far. To be called in even intervals: until the
  /// next call there may be as many frames as since the one before.
  bool isReached(std::int64_t free, std::int64_t accepted, std::int64_t written);

 private:
  std::int64_t bytes_;
  std::int64_t frameBytes_;
  std::int64_t acceptedBefore_ = 0;
};

}  // namespace orvane::host
