// Closing the open camera.
#include "api/failure.hpp"
#include "api/state.hpp"
#include "capture/capture.hpp"
#include "vendors/vendor_family.hpp"

namespace orvane {

void closeCamera() noexcept {
  ActiveCamera& camera = state.active;
  if (camera.openIndex < 0) {
    return;
  }
  const VendorFamily& family = familyOf(camera.info.vendor);
  // Two separate calls of quietly(): a missing stop function must not prevent the close.
  if (camera.streaming) {
    quietly([&] { family.stop(camera); });
  }
  quietly([&] { family.close(camera); });
  camera.openIndex = -1;
  camera.handle = nullptr;
  camera.streaming = false;
  camera.bufferSize = 0;
}

}  // namespace orvane
