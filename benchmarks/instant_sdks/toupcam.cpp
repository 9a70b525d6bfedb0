// ToupTek's toupcam with functions that return at once: cameras of 64 x 48 pixels.
#include <cstdint>

#include "instant_sdk.hpp"
#include "vendors/sdk/toupcam_sdk.hpp"

namespace orvane {

namespace {

int device;  // its address is the handle

const ToupcamModelV2 model{.name = nullptr,
                           .flag = TOUPCAM_FLAG_MONO,
                           .maxspeed = 0,
                           .preview = 1,
                           .still = 0,
                           .maxfanspeed = 0,
                           .ioctrol = 0,
                           .xpixsz = 2.0F,
                           .ypixsz = 2.0F,
                           .res = {{benchmarks::instantWidth, benchmarks::instantHeight}}};

}  // namespace

extern "C" {

unsigned Toupcam_EnumV2(ToupcamDeviceV2* devices) {
  const auto count = static_cast<unsigned>(benchmarks::instantCameraCount());
  for (unsigned i = 0; i < count; ++i) {
    devices[i].id[0] = 'i';
    devices[i].model = &model;
  }
  return count;
}

HToupcam Toupcam_Open(const ToupcamChar* /*id*/) {
  return &device;
}

void Toupcam_Close(HToupcam /*handle*/) {}

std::int32_t Toupcam_get_MaxBitDepth(HToupcam /*handle*/) {
  return 8;
}

std::int32_t Toupcam_get_FinalSize(HToupcam /*handle*/, int* width, int* height) {
  *width = benchmarks::instantWidth;
  *height = benchmarks::instantHeight;
  return 0;
}

std::int32_t Toupcam_PullImageWithRowPitch(HToupcam /*handle*/, void* /*data*/, int /*bits*/,
                                           int /*rowPitch*/, unsigned* width, unsigned* height) {
  *width = benchmarks::instantWidth;
  *height = benchmarks::instantHeight;
  return 0;
}

std::int32_t Toupcam_get_Temperature(HToupcam /*handle*/, short* tenthsOfDegree) {
  *tenthsOfDegree = 200;
  return 0;
}

RETURNS_ZERO(std::int32_t, Toupcam_get_RawFormat, HToupcam, unsigned*, unsigned*)
RETURNS_ZERO(std::int32_t, Toupcam_get_ExpTimeRange, HToupcam, unsigned*, unsigned*, unsigned*)
RETURNS_ZERO(std::int32_t, Toupcam_get_ExpoAGainRange, HToupcam, unsigned short*, unsigned short*,
             unsigned short*)
RETURNS_ZERO(std::int32_t, Toupcam_put_Option, HToupcam, unsigned, int)
RETURNS_ZERO(std::int32_t, Toupcam_put_Roi, HToupcam, unsigned, unsigned, unsigned, unsigned)
RETURNS_ZERO(std::int32_t, Toupcam_StartPullModeWithCallback, HToupcam, ToupcamEventCallback, void*)
RETURNS_ZERO(std::int32_t, Toupcam_Stop, HToupcam)
RETURNS_ZERO(std::int32_t, Toupcam_put_AutoExpoEnable, HToupcam, int)
RETURNS_ZERO(std::int32_t, Toupcam_put_ExpoTime, HToupcam, unsigned)
RETURNS_ZERO(std::int32_t, Toupcam_put_ExpoAGain, HToupcam, unsigned short)

}  // extern "C"

}  // namespace orvane
