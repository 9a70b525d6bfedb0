// The library as this program uses it: a scan, and one open camera. Nothing else here calls it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "imaging/frame_layout.hpp"
#include "session/camera_description.hpp"

namespace orvane::host {

/// What a scan found.
struct ScanResult {
  std::string libraries;           ///< the SDKs that were loaded, separated by ", "
  std::string error;               ///< what failed, or ""
  std::vector<std::string> infos;  ///< the cameras' descriptions, by index
};

/// Looks for cameras with the SDKs in this directory.
ScanResult scanCameras(const std::string& sdkDirectory);

/// How a camera is to be opened.
struct CameraSettings {
  int width = 0;
  int height = 0;
  int bin = 1;
  PixelFormat format = PixelFormat::Raw8;
  std::int64_t exposureUs = 0;
  int gain = 0;
  int offset = 0;
};

/// An open camera that streams; closed when this object ends, however that comes.
class CameraSession {
 public:
  /// Throws CameraError with the library's text.
  CameraSession(const CameraDescription& camera, const CameraSettings& settings);
  ~CameraSession();
  CameraSession(const CameraSession&) = delete;
  CameraSession& operator=(const CameraSession&) = delete;

  /// Of the frames, as the camera delivers them.
  const FrameLayout& layout() const { return layout_; }

  /// The size of the buffer that read() needs.
  std::size_t bufferSize() const { return bufferSize_; }

  /// Asks for the next frame. Returns its bytes, at the buffer's start, or none when no frame was
  /// ready. Throws CameraError with the library's text.
  std::span<std::uint8_t> read(std::span<std::uint8_t> buffer, int timeoutMs);

  /// Sets exposure, gain and offset while the camera streams. Throws CameraError with the library's
  /// text; what was set before the failure stays in force.
  void apply(std::int64_t exposureUs, int gain, int offset);

  /// The sensor's temperature in degrees Celsius; none when the SDK has none, or answers a number
  /// that can only be one of its errors.
  std::optional<double> temperature() const;

 private:
  FrameLayout layout_;
  std::size_t bufferSize_ = 0;
};

}  // namespace orvane::host
