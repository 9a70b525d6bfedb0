// QHYCCD's qhyccd: the functions and values of it that this library uses, under the maker's own
// names and no others. Written from the interface's published description, versions of 2016
// to 25.09.29.
//
// Results are unsigned: the maker's general error is 0xFFFFFFFF and never -1. No structure crosses
// this interface, strings are narrow and the SDK is told no buffer length.
#pragma once

#include <cstdint>

#ifndef SDK_FUNCTION
#  include "vendors/sdk_function.hpp"
#endif

namespace orvane {

enum : std::uint32_t {
  QHYCCD_SUCCESS = 0,
};

enum : int {
  // control ids
  CONTROL_GAIN = 6,
  CONTROL_OFFSET = 7,
  CONTROL_EXPOSURE = 8,  // microseconds
  CONTROL_CURTEMP = 14,  // degrees Celsius
  CONTROL_COOLER = 18,
  CAM_COLOR = 20,  // answers 1 GBRG, 2 GRBG, 3 BGGR, 4 RGGB
  CAM_BIN2X2MODE = 22,
  CAM_BIN3X3MODE = 23,
  CAM_BIN4X4MODE = 24,
  CAM_16BITS = 35,
};

// `handle` is the opaque device that OpenQHYCCD returns. Results are 0 for success unless stated.
SDK_FUNCTION(Qhy, InitQHYCCDResource, std::uint32_t());
SDK_FUNCTION(Qhy, ScanQHYCCD, std::uint32_t());  // the number of cameras
SDK_FUNCTION(Qhy, GetQHYCCDId, std::uint32_t(std::uint32_t index, char* id));
SDK_FUNCTION(Qhy, GetQHYCCDModel, std::uint32_t(char* id, char* model));
SDK_FUNCTION(Qhy, OpenQHYCCD, void*(char* id));  // null on failure
SDK_FUNCTION(Qhy, CloseQHYCCD, std::uint32_t(void* handle));
SDK_FUNCTION(Qhy, SetQHYCCDStreamMode, std::uint32_t(void* handle, std::uint8_t mode));
SDK_FUNCTION(Qhy, InitQHYCCD, std::uint32_t(void* handle));
SDK_FUNCTION(Qhy, GetQHYCCDChipInfo,
             std::uint32_t(void* handle, double* chipWidthMm, double* chipHeightMm,
                           std::uint32_t* imageWidth, std::uint32_t* imageHeight,
                           double* pixelWidthUm, double* pixelHeightUm,
                           std::uint32_t* bitsPerPixel));
SDK_FUNCTION(Qhy, IsQHYCCDControlAvailable, std::uint32_t(void* handle, int controlId));
SDK_FUNCTION(Qhy, GetQHYCCDParamMinMaxStep,
             std::uint32_t(void* handle, int controlId, double* minimum, double* maximum,
                           double* step));
SDK_FUNCTION(Qhy, SetQHYCCDParam, std::uint32_t(void* handle, int controlId, double value));
SDK_FUNCTION(Qhy, GetQHYCCDParam, double(void* handle, int controlId));
SDK_FUNCTION(Qhy, SetQHYCCDBinMode,
             std::uint32_t(void* handle, std::uint32_t horizontal, std::uint32_t vertical));
SDK_FUNCTION(Qhy, SetQHYCCDBitsMode, std::uint32_t(void* handle, std::uint32_t bits));
SDK_FUNCTION(Qhy, SetQHYCCDResolution,
             std::uint32_t(void* handle, std::uint32_t x, std::uint32_t y, std::uint32_t width,
                           std::uint32_t height));
SDK_FUNCTION(Qhy, GetQHYCCDMemLength, std::uint32_t(void* handle));  // bytes
SDK_FUNCTION(Qhy, BeginQHYCCDLive, std::uint32_t(void* handle));
SDK_FUNCTION(Qhy, StopQHYCCDLive, std::uint32_t(void* handle));
SDK_FUNCTION(Qhy, GetQHYCCDLiveFrame,
             std::uint32_t(void* handle, std::uint32_t* width, std::uint32_t* height,
                           std::uint32_t* bitsPerPixel, std::uint32_t* channels,
                           std::uint8_t* data));

}  // namespace orvane
