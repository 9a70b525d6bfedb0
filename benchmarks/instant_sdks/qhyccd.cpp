// QHYCCD's qhyccd with functions that return at once: cameras of 64 x 48 pixels.
#include "instant_cameras.hpp"
#include "simulated_sdk.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"

namespace orvane {

namespace {

int device;  // its address is the handle

}  // namespace

extern "C" {

std::uint32_t InitQHYCCDResource() {
  return 0;
}
std::uint32_t ScanQHYCCD() {
  return static_cast<std::uint32_t>(benchmarks::instantCameraCount());
}

std::uint32_t GetQHYCCDId(std::uint32_t /*index*/, char* id) {
  id[0] = 'i';
  return 0;
}

std::uint32_t GetQHYCCDModel(char* /*id*/, char* model) {
  model[0] = 'i';
  return 0;
}

void* OpenQHYCCD(char* /*id*/) {
  return &device;
}
std::uint32_t CloseQHYCCD(void* /*handle*/) {
  return 0;
}
std::uint32_t SetQHYCCDStreamMode(void* /*handle*/, std::uint8_t /*mode*/) {
  return 0;
}
std::uint32_t InitQHYCCD(void* /*handle*/) {
  return 0;
}

std::uint32_t GetQHYCCDChipInfo(void* /*handle*/, double* /*chipWidthMm*/, double* /*chipHeightMm*/,
                                std::uint32_t* imageWidth, std::uint32_t* imageHeight,
                                double* /*pixelWidthUm*/, double* /*pixelHeightUm*/,
                                std::uint32_t* /*bitsPerPixel*/) {
  *imageWidth = 64;
  *imageHeight = 48;
  return 0;
}

std::uint32_t IsQHYCCDControlAvailable(void* /*handle*/, int /*controlId*/) {
  return 0;
}

std::uint32_t GetQHYCCDParamMinMaxStep(void* /*handle*/, int /*controlId*/, double* /*minimum*/,
                                       double* /*maximum*/, double* /*step*/) {
  return 0;
}

std::uint32_t SetQHYCCDParam(void* /*handle*/, int /*controlId*/, double /*value*/) {
  return 0;
}
double GetQHYCCDParam(void* /*handle*/, int /*controlId*/) {
  return 20.0;
}

std::uint32_t SetQHYCCDBinMode(void* /*handle*/, std::uint32_t /*horizontal*/,
                               std::uint32_t /*vertical*/) {
  return 0;
}

std::uint32_t SetQHYCCDBitsMode(void* /*handle*/, std::uint32_t /*bits*/) {
  return 0;
}

std::uint32_t SetQHYCCDResolution(void* /*handle*/, std::uint32_t /*x*/, std::uint32_t /*y*/,
                                  std::uint32_t /*width*/, std::uint32_t /*height*/) {
  return 0;
}

std::uint32_t GetQHYCCDMemLength(void* /*handle*/) {
  return 64 * 48;
}
std::uint32_t BeginQHYCCDLive(void* /*handle*/) {
  return 0;
}
std::uint32_t StopQHYCCDLive(void* /*handle*/) {
  return 0;
}

std::uint32_t GetQHYCCDLiveFrame(void* /*handle*/, std::uint32_t* width, std::uint32_t* height,
                                 std::uint32_t* bitsPerPixel, std::uint32_t* channels,
                                 std::uint8_t* /*data*/) {
  *width = 64;
  *height = 48;
  *bitsPerPixel = 8;
  *channels = 1;
  return 0;
}

}  // extern "C"

}  // namespace orvane
