// Player One's PlayerOneCamera: the functions, structures and values of it that this library uses,
// under the maker's own names and no others. Written from the interface's published description,
// versions of 2021 to 3.10.0.
//
// Enumerations cross the interface as 32-bit signed numbers and are declared as int. `long` is 32
// bits wide on Windows and 64 on Linux, and must stay `long` here.
#pragma once

#include <cstddef>

#ifndef SDK_FUNCTION
#  include "vendors/sdk_function.hpp"
#endif

namespace orvane {

enum : int {
  // POABool
  POA_FALSE = 0,
  POA_TRUE = 1,
  // POAImgFormat
  POA_END = -1,
  // POAConfig
  POA_EXPOSURE = 0,     // microseconds, intValue
  POA_GAIN = 1,         // intValue
  POA_TEMPERATURE = 3,  // degrees Celsius, floatValue, read-only
  POA_OFFSET = 7,       // intValue
  // POAErrors
  POA_ERROR_TIMEOUT = 9,
};

// Eight bytes that always travel in an integer register, whichever member was written.
union POAConfigValue {
  long intValue;
  double floatValue;
  int boolValue;
};

struct POACameraProperties {
  char cameraModelName[256];
  char userCustomID[16];
  int cameraID;
  int maxWidth;
  int maxHeight;
  int bitDepth;
  int isColorCamera;
  int isHasST4Port;
  int isHasCooler;
  int isUSB3Speed;   // of the present connection
  int bayerPattern;  // 0 RGGB, 1 BGGR, 2 GRBG, 3 GBRG, -1 monochrome
  double pixelSize;
  char SN[64];
  char sensorModelName[32];
  char localPath[256];
  int bins[8];
  int imgFormats[8];
  int isSupportHardBin;  // cut out of the reserved bytes by version 3.3.0, like the next
  int pID;
  char reserved[248];
};

struct POAConfigAttributes {
  int isSupportAuto;
  int isWritable;
  int isReadable;
  int configID;
  int valueType;
  POAConfigValue maxValue;  // before the minimum
  POAConfigValue minValue;
  POAConfigValue defaultValue;
  char szConfName[64];
  char szDescription[128];
  char reserved[64];
};

static_assert(sizeof(POAConfigValue) == 8);
static_assert(alignof(POAConfigValue) == 8);
static_assert(sizeof(POACameraProperties) == 992 && alignof(POACameraProperties) == 8);
static_assert(offsetof(POACameraProperties, cameraModelName) == 0);
static_assert(offsetof(POACameraProperties, cameraID) == 272);
static_assert(offsetof(POACameraProperties, maxWidth) == 276);
static_assert(offsetof(POACameraProperties, maxHeight) == 280);
static_assert(offsetof(POACameraProperties, bitDepth) == 284);
static_assert(offsetof(POACameraProperties, isColorCamera) == 288);
static_assert(offsetof(POACameraProperties, isHasCooler) == 296);
static_assert(offsetof(POACameraProperties, isUSB3Speed) == 300);
static_assert(offsetof(POACameraProperties, bayerPattern) == 304);
static_assert(offsetof(POACameraProperties, pixelSize) == 312);
static_assert(offsetof(POACameraProperties, bins) == 672);
static_assert(offsetof(POACameraProperties, imgFormats) == 704);
static_assert(sizeof(POAConfigAttributes) == 304 && alignof(POAConfigAttributes) == 8);
static_assert(offsetof(POAConfigAttributes, maxValue) == 24);
static_assert(offsetof(POAConfigAttributes, minValue) == 32);
#ifdef _WIN32
static_assert(sizeof(POAConfigValue::intValue) == 4);
#else
static_assert(sizeof(POAConfigValue::intValue) == 8);
#endif

// Each returns a POAErrors code, 0 for success, but for the first. `cameraId` is
// POACameraProperties::cameraID, not the position in the enumeration.
SDK_FUNCTION(PlayerOne, POAGetCameraCount, int());
SDK_FUNCTION(PlayerOne, POAGetCameraProperties, int(int index, POACameraProperties* properties));
SDK_FUNCTION(PlayerOne, POAOpenCamera, int(int cameraId));
SDK_FUNCTION(PlayerOne, POAInitCamera, int(int cameraId));
SDK_FUNCTION(PlayerOne, POACloseCamera, int(int cameraId));
SDK_FUNCTION(PlayerOne, POAGetConfigAttributesByConfigID,
             int(int cameraId, int configId, POAConfigAttributes* attributes));
SDK_FUNCTION(PlayerOne, POASetConfig,
             int(int cameraId, int configId, POAConfigValue value, int isAuto));
SDK_FUNCTION(PlayerOne, POAGetConfig,
             int(int cameraId, int configId, POAConfigValue* value, int* isAuto));
SDK_FUNCTION(PlayerOne, POASetImageStartPos, int(int cameraId, int x, int y));
SDK_FUNCTION(PlayerOne, POASetImageSize, int(int cameraId, int width, int height));
SDK_FUNCTION(PlayerOne, POAGetImageSize, int(int cameraId, int* width, int* height));
SDK_FUNCTION(PlayerOne, POASetImageBin, int(int cameraId, int bin));
SDK_FUNCTION(PlayerOne, POASetImageFormat, int(int cameraId, int format));
SDK_FUNCTION(PlayerOne, POAStartExposure, int(int cameraId, int isSingleFrame));
SDK_FUNCTION(PlayerOne, POAStopExposure, int(int cameraId));
SDK_FUNCTION(PlayerOne, POAImageReady, int(int cameraId, int* isReady));
SDK_FUNCTION(PlayerOne, POAGetImageData,
             int(int cameraId, unsigned char* buffer, long bufferSize, int waitMs));

}  // namespace orvane
