// ZWO's ASICamera2: the functions, structures and values of it that this library uses, under the
// maker's own names and no others. Written from the interface's published description, versions of
// 2014 to 1.41.
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
  // ASI_IMG_TYPE
  ASI_IMG_RAW8 = 0,
  ASI_IMG_RGB24 = 1,  // blue, green, red
  ASI_IMG_RAW16 = 2,
  ASI_IMG_Y8 = 3,
  ASI_IMG_END = -1,
  // ASI_BOOL
  ASI_FALSE = 0,
  // ASI_CONTROL_TYPE
  ASI_GAIN = 0,
  ASI_EXPOSURE = 1,     // microseconds
  ASI_OFFSET = 5,       // named ASI_BRIGHTNESS until 2017
  ASI_TEMPERATURE = 8,  // tenths of a degree Celsius, read-only
  // ASI_ERROR_CODE
  ASI_ERROR_TIMEOUT = 11,
};

struct ASI_CAMERA_INFO {
  char Name[64];
  int CameraID;
  long MaxHeight;  // before the width
  long MaxWidth;
  int IsColorCam;
  int BayerPattern;  // 0 RGGB, 1 BGGR, 2 GRBG, 3 GBRG
  int SupportedBins[16];
  int SupportedVideoFormat[8];
  double PixelSize;
  int MechanicalShutter;
  int ST4Port;
  int IsCoolerCam;
  int IsUSB3Host;
  int IsUSB3Camera;
  float ElecPerADU;
  int BitDepth;
  int IsTriggerCam;
  char Unused[16];
};

struct ASI_CONTROL_CAPS {
  char Name[64];
  char Description[128];
  long MaxValue;  // before the minimum
  long MinValue;
  long DefaultValue;
  int IsAutoSupported;
  int IsWritable;
  int ControlType;
  char Unused[32];
};

#ifdef _WIN32
static_assert(sizeof(ASI_CAMERA_INFO) == 240 && alignof(ASI_CAMERA_INFO) == 8);
static_assert(offsetof(ASI_CAMERA_INFO, MaxHeight) == 68);
static_assert(offsetof(ASI_CAMERA_INFO, MaxWidth) == 72);
static_assert(offsetof(ASI_CAMERA_INFO, IsColorCam) == 76);
static_assert(offsetof(ASI_CAMERA_INFO, BayerPattern) == 80);
static_assert(offsetof(ASI_CAMERA_INFO, SupportedBins) == 84);
static_assert(offsetof(ASI_CAMERA_INFO, SupportedVideoFormat) == 148);
static_assert(offsetof(ASI_CAMERA_INFO, PixelSize) == 184);
static_assert(offsetof(ASI_CAMERA_INFO, IsCoolerCam) == 200);
static_assert(offsetof(ASI_CAMERA_INFO, IsUSB3Host) == 204);
static_assert(offsetof(ASI_CAMERA_INFO, IsUSB3Camera) == 208);
static_assert(offsetof(ASI_CAMERA_INFO, BitDepth) == 216);
static_assert(sizeof(ASI_CONTROL_CAPS) == 248 && alignof(ASI_CONTROL_CAPS) == 4);
static_assert(offsetof(ASI_CONTROL_CAPS, MinValue) == 196);
static_assert(offsetof(ASI_CONTROL_CAPS, IsWritable) == 208);
static_assert(offsetof(ASI_CONTROL_CAPS, ControlType) == 212);
static_assert(sizeof(long) == 4);
#else
static_assert(sizeof(ASI_CAMERA_INFO) == 248 && alignof(ASI_CAMERA_INFO) == 8);
static_assert(offsetof(ASI_CAMERA_INFO, MaxHeight) == 72);
static_assert(offsetof(ASI_CAMERA_INFO, MaxWidth) == 80);
static_assert(offsetof(ASI_CAMERA_INFO, IsColorCam) == 88);
static_assert(offsetof(ASI_CAMERA_INFO, BayerPattern) == 92);
static_assert(offsetof(ASI_CAMERA_INFO, SupportedBins) == 96);
static_assert(offsetof(ASI_CAMERA_INFO, SupportedVideoFormat) == 160);
static_assert(offsetof(ASI_CAMERA_INFO, PixelSize) == 192);
static_assert(offsetof(ASI_CAMERA_INFO, IsCoolerCam) == 208);
static_assert(offsetof(ASI_CAMERA_INFO, IsUSB3Host) == 212);
static_assert(offsetof(ASI_CAMERA_INFO, IsUSB3Camera) == 216);
static_assert(offsetof(ASI_CAMERA_INFO, BitDepth) == 224);
static_assert(sizeof(ASI_CONTROL_CAPS) == 264 && alignof(ASI_CONTROL_CAPS) == 8);
static_assert(offsetof(ASI_CONTROL_CAPS, MinValue) == 200);
static_assert(offsetof(ASI_CONTROL_CAPS, IsWritable) == 220);
static_assert(offsetof(ASI_CONTROL_CAPS, ControlType) == 224);
static_assert(sizeof(long) == 8);
#endif
static_assert(offsetof(ASI_CAMERA_INFO, Name) == 0 && offsetof(ASI_CAMERA_INFO, CameraID) == 64);
static_assert(offsetof(ASI_CONTROL_CAPS, MaxValue) == 192);

// Each returns an ASI_ERROR_CODE, 0 for success, but for the first. `cameraId` is
// ASI_CAMERA_INFO::CameraID, not the position in the enumeration.
SDK_FUNCTION(Asi, ASIGetNumOfConnectedCameras, int());
SDK_FUNCTION(Asi, ASIGetCameraProperty, int(ASI_CAMERA_INFO* info, int index));
SDK_FUNCTION(Asi, ASIOpenCamera, int(int cameraId));
SDK_FUNCTION(Asi, ASIInitCamera, int(int cameraId));
SDK_FUNCTION(Asi, ASICloseCamera, int(int cameraId));
SDK_FUNCTION(Asi, ASIGetNumOfControls, int(int cameraId, int* count));
SDK_FUNCTION(Asi, ASIGetControlCaps, int(int cameraId, int controlIndex, ASI_CONTROL_CAPS* caps));
SDK_FUNCTION(Asi, ASIGetControlValue, int(int cameraId, int controlType, long* value, int* isAuto));
SDK_FUNCTION(Asi, ASISetControlValue, int(int cameraId, int controlType, long value, int isAuto));
SDK_FUNCTION(Asi, ASISetROIFormat,
             int(int cameraId, int width, int height, int bin, int imageType));
SDK_FUNCTION(Asi, ASIGetROIFormat,
             int(int cameraId, int* width, int* height, int* bin, int* imageType));
SDK_FUNCTION(Asi, ASISetStartPos, int(int cameraId, int x, int y));
SDK_FUNCTION(Asi, ASIStartVideoCapture, int(int cameraId));
SDK_FUNCTION(Asi, ASIStopVideoCapture, int(int cameraId));
SDK_FUNCTION(Asi, ASIGetVideoData,
             int(int cameraId, unsigned char* buffer, long bufferSize, int waitMs));

}  // namespace orvane
