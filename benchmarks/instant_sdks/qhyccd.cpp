// QHYCCD's qhyccd with functions that return at once: cameras of 64 x 48 pixels.
#include <cstdint>

#include "instant_sdk.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"

namespace orvane {

namespace {

int device;  // its address is the handle

}  // namespace

extern "C" {

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

std::uint32_t GetQHYCCDChipInfo(void* /*handle*/, double* /*chipWidthMm*/, double* /*chipHeightMm*/,
                                std::uint32_t* imageWidth, std::uint32_t* imageHeight,
                                double* /*pixelWidthUm*/, double* /*pixelHeightUm*/,
                                std::uint32_t* /*bitsPerPixel*/) {
  *imageWidth = benchmarks::instantWidth;
  *imageHeight = benchmarks::instantHeight;
  return 0;
}

double GetQHYCCDParam(void* /*handle*/, int /*controlId*/) {
  return 20.0;
}

std::uint32_t GetQHYCCDMemLength(void* /*handle*/) {
  return benchmarks::instantWidth * benchmarks::instantHeight;
}

std::uint32_t GetQHYCCDLiveFrame(void* /*handle*/, std::uint32_t* width, std::uint32_t* height,
                                 std::uint32_t* bitsPerPixel, std::uint32_t* channels,
                                 std::uint8_t* /*data*/) {
  *width = benchmarks::instantWidth;
  *height = benchmarks::instantHeight;
  *bitsPerPixel = 8;
  *channels = 1;
  return 0;
}

RETURNS_ZERO(std::uint32_t, InitQHYCCDResource)
RETURNS_ZERO(std::uint32_t, CloseQHYCCD, void*)
RETURNS_ZERO(std::uint32_t, SetQHYCCDStreamMode, void*, std::uint8_t)
RETURNS_ZERO(std::uint32_t, InitQHYCCD, void*)
RETURNS_ZERO(std::uint32_t, IsQHYCCDControlAvailable, void*, int)
RETURNS_ZERO(std::uint32_t, GetQHYCCDParamMinMaxStep, void*, int, double*, double*, double*)
RETURNS_ZERO(std::uint32_t, SetQHYCCDParam, void*, int, double)
RETURNS_ZERO(std::uint32_t, SetQHYCCDBinMode, void*, std::uint32_t, std::uint32_t)
RETURNS_ZERO(std::uint32_t, SetQHYCCDBitsMode, void*, std::uint32_t)
RETURNS_ZERO(std::uint32_t, SetQHYCCDResolution, void*, std::uint32_t, std::uint32_t, std::uint32_t,
             std::uint32_t)
RETURNS_ZERO(std::uint32_t, BeginQHYCCDLive, void*)
RETURNS_ZERO(std::uint32_t, StopQHYCCDLive, void*)

}  // extern "C"

}  // namespace orvane
