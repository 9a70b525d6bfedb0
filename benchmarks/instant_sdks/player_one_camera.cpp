// Player One's PlayerOneCamera with functions that return at once: cameras of 64 x 48 pixels.
#include "instant_sdk.hpp"
#include "vendors/sdk/playerone_sdk.hpp"

namespace orvane {

extern "C" {

int POAGetCameraCount() {
  return benchmarks::instantCameraCount();
}

int POAGetCameraProperties(int /*index*/, POACameraProperties* properties) {
  properties->cameraModelName[0] = 'i';
  properties->maxWidth = benchmarks::instantWidth;
  properties->maxHeight = benchmarks::instantHeight;
  properties->bins[0] = 1;
  properties->imgFormats[1] = POA_END;
  return 0;
}

int POAGetConfig(int /*cameraId*/, int /*configId*/, POAConfigValue* value, int* isAuto) {
  value->floatValue = 20.0;
  *isAuto = 0;
  return 0;
}

int POAGetImageSize(int /*cameraId*/, int* width, int* height) {
  *width = benchmarks::instantWidth;
  *height = benchmarks::instantHeight;
  return 0;
}

int POAImageReady(int /*cameraId*/, int* isReady) {
  *isReady = POA_TRUE;
  return 0;
}

RETURNS_ZERO(int, POAOpenCamera, int)
RETURNS_ZERO(int, POAInitCamera, int)
RETURNS_ZERO(int, POACloseCamera, int)
RETURNS_ZERO(int, POAGetConfigAttributesByConfigID, int, int, POAConfigAttributes*)
RETURNS_ZERO(int, POASetConfig, int, int, POAConfigValue, int)
RETURNS_ZERO(int, POASetImageStartPos, int, int, int)
RETURNS_ZERO(int, POASetImageSize, int, int, int)
RETURNS_ZERO(int, POASetImageBin, int, int)
RETURNS_ZERO(int, POASetImageFormat, int, int)
RETURNS_ZERO(int, POAStartExposure, int, int)
RETURNS_ZERO(int, POAStopExposure, int)
RETURNS_ZERO(int, POAGetImageData, int, unsigned char*, long, int)

}  // extern "C"

}  // namespace orvane
