// The open sequence: checks the request, computes the frame size, and runs the steps in order.
#include <algorithm>
#include <vector>

#include "api/failure.hpp"
#include "api/state.hpp"
#include "capture/capture.hpp"
#include "vendors/vendor_family.hpp"

namespace orvane {

namespace {

constexpr std::int64_t maxBufferSize = std::int64_t{1} << 30;

bool contains(const std::vector<std::int32_t>& list, std::int32_t value) {
  return std::find(list.begin(), list.end(), value) != list.end();
}

// Width or height of the frame: the requested length, clamped to the binned sensor and rounded down
// to a multiple of the step.
std::int32_t binnedLength(std::int32_t sensor, std::int32_t bin, std::int32_t requested,
                          std::int32_t step) {
  const std::int32_t length = std::min(sensor / bin, requested);
  return length - length % step;
}

}  // namespace

void openCamera(const CaptureRequest& request) {
  closeCamera();
  state.lastError.clear();

  ActiveCamera& camera = state.active;
  if (request.index < 0 || request.index >= static_cast<std::int32_t>(state.catalogue.size())) {
    throwFailure("Camera not found; rescan");
  }
  camera.info = state.catalogue[static_cast<std::size_t>(request.index)];
  const CameraInfo& info = camera.info;

  // An SDK may list a bin of 0, and we divide by the bin below.
  if (request.bin == 0 || !contains(info.bins, request.bin) ||
      !contains(info.formats, request.format)) {
    throwFailure("Unsupported bin or format");
  }
  // Compared with the unbinned sensor, so that a request for the full sensor is valid at every bin.
  if (request.width <= 0 || request.height <= 0 || request.width > info.maxWidth ||
      request.height > info.maxHeight) {
    throwFailure("Invalid capture dimensions");
  }

  const VendorFamily& family = familyOf(info.vendor);
  const std::int32_t width =
      binnedLength(info.maxWidth, request.bin, request.width, family.widthStep);
  const std::int32_t height =
      binnedLength(info.maxHeight, request.bin, request.height, family.heightStep);
  if (width < 1 || height < 1) {
    throwFailure("ROI is too small for binning");
  }
  camera.width = width;
  camera.height = height;
  camera.format = request.format;

  family.open(camera);
  camera.openIndex = request.index;  // from here on a failure has a device to close
  family.configure(camera, request.bin);

  const std::int64_t size =
      std::max(frameBytes(camera.width, camera.height, camera.format), family.frameMemory(camera));
  if (size < 1 || size > maxBufferSize) {
    throwFailure("Invalid frame buffer size");
  }
  camera.bufferSize = static_cast<std::int32_t>(size);

  applyCameraSettings(request.exposureUs, request.gain, request.offset);
  family.start(camera);
  camera.streaming = true;
}

}  // namespace orvane
