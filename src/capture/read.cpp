// Reading a frame: the hot path. It copies no frame and allocates no memory.
#include "api/failure.hpp"
#include "api/state.hpp"
#include "capture/capture.hpp"
#include "vendors/vendor_family.hpp"

namespace orvane {

std::int32_t readFrame(std::uint8_t* buffer, std::int32_t bufferLength, std::int32_t timeoutMs) {
  const ActiveCamera& camera = state.active;
  if (!camera.streaming || buffer == nullptr || bufferLength < camera.bufferSize) {
    throwFailure("Camera closed or buffer too small");
  }
  const bool hasFrame =
      familyOf(camera.info.vendor).read(camera, FrameBuffer{buffer, bufferLength}, timeoutMs);
  return hasFrame ? frameBytes(camera) : 0;
}

}  // namespace orvane
