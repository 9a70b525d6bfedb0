// The thirteen functions of the public header.
#include "orvane_desktop_camera.h"

#include <limits>

#include "api/failure.hpp"
#include "api/state.hpp"
#include "capture/capture.hpp"
#include "catalogue/camera_json.hpp"
#include "catalogue/scan.hpp"
#include "vendors/sdk_call.hpp"

using orvane::orFailure;
using orvane::quietly;
using orvane::state;
using orvane::throwFailure;

void oc_library_dir(const char* dir) {
  state.libraryDir = dir != nullptr ? dir : "";
}

int oc_scan(void) {
  return orvane::passingSdkExceptions(orvane::scanCameras);
}

const char* oc_libraries(void) {
  return state.loadedLibraries.c_str();
}

const char* oc_info(int index) {
  if (index < 0 || index >= static_cast<int>(state.catalogue.size())) {
    return "{}";
  }
  state.infoJson = orvane::cameraJson(index, state.catalogue[static_cast<std::size_t>(index)]);
  return state.infoJson.c_str();
}

int oc_open(int index, int width, int height, int bin, int format, int64_t exposureUs, int gain,
            int offset) {
  const int opened = orFailure(0, [&] {
    orvane::openCamera({index, width, height, bin, format, exposureUs, gain, offset});
    return 1;
  });
  if (opened == 0) {
    oc_close();
  }
  return opened;
}

int oc_width(void) {
  return state.active.width;
}

int oc_height(void) {
  return state.active.height;
}

int oc_buffer_size(void) {
  return state.active.bufferSize;
}

int oc_read(uint8_t* buffer, int bufferLength, int timeoutMs) {
  return orFailure(-1, [&] { return orvane::readFrame(buffer, bufferLength, timeoutMs); });
}

int oc_apply(int64_t exposureUs, int gain, int offset) {
  return orFailure(0, [&] {
    if (!state.active.streaming) {
      throwFailure("Camera closed");
    }
    orvane::applyCameraSettings(exposureUs, gain, offset);
    return 1;
  });
}

double oc_temperature(void) {
  double celsius = std::numeric_limits<double>::quiet_NaN();
  quietly([&] { celsius = orvane::sensorTemperature(); });
  return celsius;
}

void oc_close(void) {
  orvane::closeCamera();
}

const char* oc_error(void) {
  return state.lastError.c_str();
}
