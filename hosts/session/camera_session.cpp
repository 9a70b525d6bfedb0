// The library as this program uses it: a scan, and one open camera. Nothing else here calls it.
#include "session/camera_session.hpp"

#include <orvane_desktop_camera.h>

#include "system/failures.hpp"

namespace orvane::host {

namespace {

// A colour camera's mono format has lost the Bayer pattern, and its RGB frames are past it.
BayerPattern bayerOfFrames(const CameraDescription& camera, PixelFormat format) {
  const bool isRaw = format == PixelFormat::Raw8 || format == PixelFormat::Raw16;
  return isRaw && camera.isColor ? camera.bayer : BayerPattern::None;
}

}  // namespace

ScanResult scanCameras(const std::string& sdkDirectory) {
  oc_library_dir(sdkDirectory.c_str());
  const int count = oc_scan();
  ScanResult result{oc_libraries(), oc_error(), {}};
  for (int index = 0; index < count; ++index) {
    result.infos.emplace_back(oc_info(index));
  }
  return result;
}

CameraSession::CameraSession(const CameraDescription& camera, const CameraSettings& settings) {
  if (oc_open(camera.id, settings.width, settings.height, settings.bin,
              static_cast<int>(settings.format), settings.exposureUs, settings.gain,
              settings.offset) != 1) {
    throw CameraError(oc_error());
  }
  layout_ = {oc_width(), oc_height(), settings.format, bayerOfFrames(camera, settings.format)};
  bufferSize_ = static_cast<std::size_t>(oc_buffer_size());
}

CameraSession::~CameraSession() {
  oc_close();
}

std::span<std::uint8_t> CameraSession::read(std::span<std::uint8_t> buffer, int timeoutMs) {
  const int size = oc_read(buffer.data(), static_cast<int>(buffer.size()), timeoutMs);
  if (size < 0) {
    throw CameraError(oc_error());
  }
  return buffer.first(static_cast<std::size_t>(size));
}

void CameraSession::apply(std::int64_t exposureUs, int gain, int offset) {
  if (oc_apply(exposureUs, gain, offset) != 1) {
    throw CameraError(oc_error());
  }
}

std::optional<double> CameraSession::temperature() const {
  const double celsius = oc_temperature();
  return celsius > -150 && celsius < 150 ? std::optional(celsius) : std::nullopt;
}

}  // namespace orvane::host
