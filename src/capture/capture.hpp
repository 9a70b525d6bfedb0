// Everything that is done with the one open camera. Failures leave as exceptions of the standard
// family, as a rule std::runtime_error with the message for the host.
#pragma once

#include <cstdint>

namespace orvane {

/// What a host asks for when it opens a camera; see oc_open() for units and ranges.
struct CaptureRequest {
  std::int32_t index;
  std::int32_t width;
  std::int32_t height;
  std::int32_t bin;
  std::int32_t format;
  std::int64_t exposureUs;
  std::int32_t gain;
  std::int32_t offset;
};

/// Closes the camera that is open, then opens, configures and starts the requested one. After a
/// failure the camera may be half open: close it.
void openCamera(const CaptureRequest& request);

/// Asks for one frame, as oc_read() describes: the number of bytes, or 0 when none is ready.
std::int32_t readFrame(std::uint8_t* buffer, std::int32_t bufferLength, std::int32_t timeoutMs);

/// Sets exposure (1 to 2^31 - 1 microseconds), gain and offset of the open camera, in this order.
/// What was set before a failure stays set.
void applyCameraSettings(std::int64_t exposureUs, std::int32_t gain, std::int32_t offset);

/// The open camera's sensor temperature in degrees Celsius, NaN when none is open.
double sensorTemperature();

/// Stops and releases whatever is open; never fails.
void closeCamera() noexcept;

}  // namespace orvane
