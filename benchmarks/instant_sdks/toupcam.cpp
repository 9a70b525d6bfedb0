// ToupTek's toupcam with functions that return at once: cameras of 64 x 48 pixels.
#include "instant_cameras.hpp"
#include "simulated_sdk.hpp"
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
                           .res = {{64, 48}}};

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

std::int32_t Toupcam_get_RawFormat(HToupcam /*handle*/, unsigned* /*fourCc*/,
                                   unsigned* /*bitsPerPixel*/) {
  return 0;
}

std::int32_t Toupcam_get_ExpTimeRange(HToupcam /*handle*/, unsigned* /*nMin*/, unsigned* /*nMax*/,
                                      unsigned* /*nDef*/) {
  return 0;
}

std::int32_t Toupcam_get_ExpoAGainRange(HToupcam /*handle*/, unsigned short* /*nMin*/,
                                        unsigned short* /*nMax*/, unsigned short* /*nDef*/) {
  return 0;
}

std::int32_t Toupcam_put_Option(HToupcam /*handle*/, unsigned /*option*/, int /*value*/) {
  return 0;
}

std::int32_t Toupcam_put_Roi(HToupcam /*handle*/, unsigned /*x*/, unsigned /*y*/,
                             unsigned /*width*/, unsigned /*height*/) {
  return 0;
}

std::int32_t Toupcam_get_FinalSize(HToupcam /*handle*/, int* width, int* height) {
  *width = 64;
  *height = 48;
  return 0;
}

std::int32_t Toupcam_StartPullModeWithCallback(HToupcam /*handle*/,
                                               ToupcamEventCallback /*callback*/,
                                               void* /*context*/) {
  return 0;
}

std::int32_t Toupcam_PullImageWithRowPitch(HToupcam /*handle*/, void* /*data*/, int /*bits*/,
                                           int /*rowPitch*/, unsigned* width, unsigned* height) {
  *width = 64;
  *height = 48;
  return 0;
}

std::int32_t Toupcam_Stop(HToupcam /*handle*/) {
  return 0;
}
std::int32_t Toupcam_put_AutoExpoEnable(HToupcam /*handle*/, int /*mode*/) {
  return 0;
}
std::int32_t Toupcam_put_ExpoTime(HToupcam /*handle*/, unsigned /*microseconds*/) {
  return 0;
}
std::int32_t Toupcam_put_ExpoAGain(HToupcam /*handle*/, unsigned short /*percent*/) {
  return 0;
}

std::int32_t Toupcam_get_Temperature(HToupcam /*handle*/, short* tenthsOfDegree) {
  *tenthsOfDegree = 200;
  return 0;
}

}  // extern "C"

}  // namespace orvane
