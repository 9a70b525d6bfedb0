// The operations on the one open camera. Failures are exceptions derived from std::exception,
// usually std::runtime_error with the message for the host.
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

/// Closes the open camera, then opens, configures and starts the requested one. After a failure the
/// device may still be open: call closeCamera().
void openCamera(const CaptureRequest& request);

/// Reads one frame as oc_read() describes. Returns the number of bytes, or 0 when none is ready.
std::int32_t readFrame(std::uint8_t* buffer, std::int32_t bufferLength, std::int32_t timeoutMs);

/// Sets exposure (1 to 2^31 - 1 microseconds), gain and offset of the open camera, in this order.
/// After a failure, the values that were already set stay set.
void applyCameraSettings(std::int64_t exposureUs, std::int32_t gain, std::int32_t offset);

/// The open camera's sensor temperature in degrees Celsius, or NaN when no camera is open.
double sensorTemperature();

/// Stops the stream and closes the device, as far as they were started and opened. Never fails.
void closeCamera() noexcept;

}  // namespace orvane
