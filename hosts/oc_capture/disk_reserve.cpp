// The free space that a recording leaves on its disk: "--stop-below".
#include "oc_capture/disk_reserve.hpp"

namespace orvane::host {

bool DiskReserve::isReached(std::int64_t free, std::int64_t accepted, std::int64_t written) {
  constexpr std::int64_t timeStampBytes = 8;
  constexpr std::int64_t preview = 16'000'000;  // and settings log, at most
  const std::int64_t arriving = 2 * (accepted - acceptedBefore_) + 1;
  acceptedBefore_ = accepted;
  const std::int64_t frames = accepted - written + arriving;
  const std::int64_t needed =
      frames * (frameBytes_ + timeStampBytes) + (accepted + arriving) * timeStampBytes + preview;
  return free - needed < bytes_;
}

}  // namespace orvane::host
