// ToupTek's toupcam: the functions, structures and values of it that this library uses, under the
// maker's own names and no others. Written from the interface's published description, versions of
// 2018 to 60.32226.
//
// Results are HRESULTs: negative is failure, 0 and positive are success. Strings are UTF-16 on
// Windows and narrow on Linux.
#pragma once

#include <cstddef>
#include <cstdint>

#ifndef SDK_HRESULT_FUNCTION
#  include "vendors/sdk_function.hpp"
#endif

namespace orvane {

#ifdef _WIN32
using ToupcamChar = wchar_t;
#else
using ToupcamChar = char;
#endif

using HToupcam = void*;
using ToupcamEventCallback = void (*)(unsigned event, void* context);

enum : unsigned {
  TOUPCAM_MAX = 128,  // entries that Toupcam_EnumV2 may fill; 16 before 2023
  TOUPCAM_OPTION_RAW = 4,
  TOUPCAM_OPTION_BITDEPTH = 6,
  TOUPCAM_OPTION_BLACKLEVEL = 21,
};

enum : unsigned long long {
  TOUPCAM_FLAG_MONO = 0x10,
  TOUPCAM_FLAG_USB30 = 0x40,
  TOUPCAM_FLAG_TEC = 0x80,
  TOUPCAM_FLAG_USB30_OVER_USB20 = 0x100,
};

// No frame is waiting. The system's headers have a macro of the maker's name for it.
inline constexpr std::int32_t TOUPCAM_E_PENDING = -2147483638;  // 0x8000000A

struct ToupcamResolution {
  unsigned width;
  unsigned height;
};

struct ToupcamModelV2 {
  const ToupcamChar* name;
  unsigned long long flag;
  unsigned maxspeed;
  unsigned preview;
  unsigned still;
  unsigned maxfanspeed;
  unsigned ioctrol;  // the maker's spelling
  float xpixsz;      // micrometres
  float ypixsz;
  ToupcamResolution res[16];  // entry 0 is the full sensor
};

struct ToupcamDeviceV2 {
  ToupcamChar displayname[64];
  ToupcamChar id[64];
  const ToupcamModelV2* model;  // constant data of the SDK, valid while it is loaded
};

static_assert(sizeof(ToupcamResolution) == 8 && alignof(ToupcamResolution) == 4);
static_assert(offsetof(ToupcamResolution, width) == 0 && offsetof(ToupcamResolution, height) == 4);
static_assert(sizeof(ToupcamModelV2) == 176 && alignof(ToupcamModelV2) == 8);
static_assert(offsetof(ToupcamModelV2, flag) == 8);
static_assert(offsetof(ToupcamModelV2, xpixsz) == 36);
static_assert(offsetof(ToupcamModelV2, res) == 44);
static_assert(alignof(ToupcamDeviceV2) == 8 && offsetof(ToupcamDeviceV2, displayname) == 0);
#ifdef _WIN32
static_assert(sizeof(ToupcamChar) == 2);
static_assert(sizeof(ToupcamDeviceV2) == 264);
static_assert(offsetof(ToupcamDeviceV2, id) == 128 && offsetof(ToupcamDeviceV2, model) == 256);
#else
static_assert(sizeof(ToupcamChar) == 1);
static_assert(sizeof(ToupcamDeviceV2) == 136);
static_assert(offsetof(ToupcamDeviceV2, id) == 64 && offsetof(ToupcamDeviceV2, model) == 128);
#endif

SDK_HRESULT_FUNCTION(ToupTek, Toupcam_EnumV2, unsigned(ToupcamDeviceV2* devices));
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_Open, HToupcam(const ToupcamChar* id));  // null on failure
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_Close, void(HToupcam handle));
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_get_MaxBitDepth, std::int32_t(HToupcam handle));  // the depth
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_get_RawFormat,
                     std::int32_t(HToupcam handle, unsigned* fourCc, unsigned* bitsPerPixel));
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_get_ExpTimeRange,
                     std::int32_t(HToupcam handle, unsigned* nMin, unsigned* nMax,
                                  unsigned* nDef));  // microseconds
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_get_ExpoAGainRange,
                     std::int32_t(HToupcam handle, unsigned short* nMin, unsigned short* nMax,
                                  unsigned short* nDef));  // percent
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_put_Option,
                     std::int32_t(HToupcam handle, unsigned option, int value));
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_put_Roi,
                     std::int32_t(HToupcam handle, unsigned x, unsigned y, unsigned width,
                                  unsigned height));
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_get_FinalSize,
                     std::int32_t(HToupcam handle, int* width, int* height));
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_StartPullModeWithCallback,
                     std::int32_t(HToupcam handle, ToupcamEventCallback callback, void* context));
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_PullImageWithRowPitch,
                     std::int32_t(HToupcam handle, void* data, int bits, int rowPitch,
                                  unsigned* width, unsigned* height));
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_Stop, std::int32_t(HToupcam handle));
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_put_AutoExpoEnable, std::int32_t(HToupcam handle, int mode));
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_put_ExpoTime,
                     std::int32_t(HToupcam handle, unsigned microseconds));
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_put_ExpoAGain,
                     std::int32_t(HToupcam handle, unsigned short percent));
SDK_HRESULT_FUNCTION(ToupTek, Toupcam_get_Temperature,
                     std::int32_t(HToupcam handle, short* tenthsOfDegree));

}  // namespace orvane
