// Player One's PlayerOneCamera with functions that return at once: cameras of 64 x 48 pixels.
#include "instant_cameras.hpp"
#include "simulated_sdk.hpp"
#include "vendors/sdk/playerone_sdk.hpp"

namespace orvane {

extern "C" {

int POAGetCameraCount() {
  return benchmarks::instantCameraCount();
}

int POAGetCameraProperties(int /*index*/, POACameraProperties* properties) {
  properties->cameraModelName[0] = 'i';
  properties->maxWidth = 64;
  properties->maxHeight = 48;
  properties->bins[0] = 1;
  properties->imgFormats[1] = POA_END;
  return 0;
}

int POAOpenCamera(int /*cameraId*/) {
  return 0;
}
int POAInitCamera(int /*cameraId*/) {
  return 0;
}
int POACloseCamera(int /*cameraId*/) {
  return 0;
}

int POAGetConfigAttributesByConfigID(int /*cameraId*/, int /*configId*/,
                                     POAConfigAttributes* /*attributes*/) {
  return 0;
}

int POASetConfig(int /*cameraId*/, int /*configId*/, POAConfigValue /*value*/, int /*isAuto*/) {
  return 0;
}

int POAGetConfig(int /*cameraId*/, int /*configId*/, POAConfigValue* value, int* isAuto) {
  value->floatValue = 20.0;
  *isAuto = 0;
  return 0;
}

int POASetImageStartPos(int /*cameraId*/, int /*x*/, int /*y*/) {
  return 0;
}
int POASetImageSize(int /*cameraId*/, int /*width*/, int /*height*/) {
  return 0;
}

int POAGetImageSize(int /*cameraId*/, int* width, int* height) {
  *width = 64;
  *height = 48;
  return 0;
}

int POASetImageBin(int /*cameraId*/, int /*bin*/) {
  return 0;
}
int POASetImageFormat(int /*cameraId*/, int /*format*/) {
  return 0;
}
int POAStartExposure(int /*cameraId*/, int /*isSingleFrame*/) {
  return 0;
}
int POAStopExposure(int /*cameraId*/) {
  return 0;
}

int POAImageReady(int /*cameraId*/, int* isReady) {
  *isReady = POA_TRUE;
  return 0;
}

int POAGetImageData(int /*cameraId*/, unsigned char* /*buffer*/, long /*bufferSize*/,
                    int /*waitMs*/) {
  return 0;
}

}  // extern "C"

}  // namespace orvane
