// The one open camera, and the size of its frames.
#pragma once

#include <cstdint>

#include "catalogue/camera_info.hpp"

namespace orvane {

/// The open camera's state. Closed is openIndex -1, streaming false, handle null, bufferSize 0;
/// `info`, `width`, `height` and `format` then keep the values of the last open.
struct ActiveCamera {
  std::int32_t openIndex = -1;  ///< in the catalogue; set as soon as the device is open
  bool streaming = false;       ///< set when the stream has been started
  CameraInfo info;              ///< a copy, because the catalogue may change
  std::int32_t width = 0;       ///< of a frame, pixels after binning
  std::int32_t height = 0;
  std::int32_t format = Raw8;   ///< as given to oc_open(), a PixelFormat
  std::int32_t bufferSize = 0;  ///< bytes that a frame can need at most
  void* handle = nullptr;       ///< the SDK's device, for the SDKs that give one
};

/// Bytes of one pixel; 1 for a code that is not a PixelFormat.
constexpr int bytesPerPixel(std::int32_t format) {
  return format == Raw16 ? 2 : format == Rgb24 ? 3 : 1;
}

/// Bytes of one frame. An SDK may report any size: a product beyond 64 bits wraps around, and the
/// callers refuse impossible sizes.
constexpr std::int64_t frameBytes(std::int32_t width, std::int32_t height, std::int32_t format) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(height) *
                                   static_cast<std::uint64_t>(width) *
                                   static_cast<std::uint64_t>(bytesPerPixel(format)));
}

/// Bytes of one frame of the open camera. openCamera() has checked that they fit into 32 bits.
constexpr std::int32_t frameBytes(const ActiveCamera& camera) {
  return static_cast<std::int32_t>(frameBytes(camera.width, camera.height, camera.format));
}

}  // namespace orvane
