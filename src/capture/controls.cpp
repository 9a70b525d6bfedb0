// Exposure, gain and offset of the open camera, and its temperature.
#include <limits>

#include "api/failure.hpp"
#include "api/state.hpp"
#include "capture/capture.hpp"
#include "vendors/vendor_family.hpp"

namespace orvane {

void applyCameraSettings(std::int64_t exposureUs, std::int32_t gain, std::int32_t offset) {
  // The range that every SDK's parameter type can hold. Each SDK enforces its camera's own limits.
  if (exposureUs < 1 || exposureUs > std::numeric_limits<std::int32_t>::max()) {
    throwFailure("Exposure out of range");
  }
  const ActiveCamera& camera = state.active;
  familyOf(camera.info.vendor)
      .apply(camera, CameraSettings{static_cast<std::int32_t>(exposureUs), gain, offset});
}

double sensorTemperature() {
  const ActiveCamera& camera = state.active;
  if (camera.openIndex < 0) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  return familyOf(camera.info.vendor).temperature(camera);
}

}  // namespace orvane
