// ToupTek cameras. They are opened by the id in the SDK's device entry, `toupDevice`, and addressed
// by `handle`.
#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string_view>

#include "api/failure.hpp"
#include "vendors/closing_afterwards.hpp"
#include "vendors/sdk/toupcam_sdk.hpp"
#include "vendors/sdk_text.hpp"
#include "vendors/vendor_rows.hpp"

namespace orvane {

namespace {

using DeviceBytes = decltype(CameraInfo::toupDevice);
static_assert(sizeof(ToupcamDeviceV2) <= sizeof(DeviceBytes));

// The SDK's code for a Bayer pattern: its four letters, the first in the lowest byte.
constexpr unsigned fourCcOf(std::string_view letters) {
  unsigned code = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    code |= static_cast<unsigned>(static_cast<unsigned char>(letters[i])) << (8 * i);
  }
  return code;
}

BayerCode bayerOf(unsigned fourCc) {
  switch (fourCc) {
    case fourCcOf("RGGB"):
      return BayerRggb;
    case fourCcOf("BGGR"):
      return BayerBggr;
    case fourCcOf("GRBG"):
      return BayerGrbg;
    case fourCcOf("GBRG"):
      return BayerGbrg;
    default:
      return BayerNone;
  }
}

int bitsOf(const ActiveCamera& camera) {
  return camera.format == Raw16 ? 16 : 8;
}

// The entry's id is copied, because an id that fills its field has no NUL there.
HToupcam openDevice(const ToupcamDeviceV2& device) {
  return Toupcam_Open(boundedText(device.id).c_str());
}

CameraInfo describe(const ToupcamDeviceV2& device) {
  CameraInfo camera;
  camera.vendor = Vendor::ToupTek;
  std::memcpy(camera.toupDevice.data(), &device, sizeof device);
  camera.name = platform::utf8FromDisplayName(boundedText(device.displayname).c_str());

  const ToupcamModelV2& model = *device.model;
  camera.maxWidth = static_cast<std::int32_t>(model.res[0].width);
  camera.maxHeight = static_cast<std::int32_t>(model.res[0].height);
  camera.pixelSizeUm = static_cast<double>(model.xpixsz);
  camera.isColor = (model.flag & TOUPCAM_FLAG_MONO) == 0;
  camera.isCooled = (model.flag & TOUPCAM_FLAG_TEC) != 0;
  camera.isUsb3Camera = (model.flag & TOUPCAM_FLAG_USB30) != 0;
  camera.isUsb3Host = camera.isUsb3Camera && (model.flag & TOUPCAM_FLAG_USB30_OVER_USB20) == 0;
  return camera;
}

// Reads what an open camera can do.
void examine(HToupcam handle, CameraInfo& camera) {
  camera.bitDepth = Toupcam_get_MaxBitDepth(handle);
  if (camera.bitDepth > 8) {
    camera.formats.push_back(Raw16);
  }

  unsigned fourCc = 0;
  unsigned ignoredBits = 0;
  Toupcam_get_RawFormat.check(handle, &fourCc, &ignoredBits);
  if (camera.isColor) {
    camera.bayer = bayerOf(fourCc);
    if (camera.bayer == BayerNone) {
      throwFailure("Unsupported ToupTek raw mosaic");
    }
  }

  unsigned exposureMin = 0;
  unsigned exposureMax = 0;
  unsigned exposureDefault = 0;
  if (Toupcam_get_ExpTimeRange(handle, &exposureMin, &exposureMax, &exposureDefault) >= 0) {
    camera.maxExposureUs = exposureMax;
  }
  unsigned short gainMin = 0;
  unsigned short gainMax = 0;
  unsigned short gainDefault = 0;
  if (Toupcam_get_ExpoAGainRange(handle, &gainMin, &gainMax, &gainDefault) >= 0) {
    camera.minGain = gainMin;
    camera.maxGain = gainMax;
  }
}

void scanToupTekCameras() {
  std::array<ToupcamDeviceV2, TOUPCAM_MAX> devices{};
  const unsigned count = std::min<unsigned>(Toupcam_EnumV2(devices.data()), TOUPCAM_MAX);
  for (unsigned i = 0; i < count; ++i) {
    const ToupcamDeviceV2& device = devices[i];
    if (device.model == nullptr) {
      continue;
    }
    CameraInfo camera = describe(device);
    void* const handle = openDevice(device);
    if (handle == nullptr) {
      continue;
    }
    closingAfterwards([&] { Toupcam_Close(handle); },
                      [&] {
                        examine(handle, camera);
                        state.catalogue.push_back(camera);
                      });
  }
}

void open(ActiveCamera& camera) {
  ToupcamDeviceV2 device;
  std::memcpy(&device, camera.info.toupDevice.data(), sizeof device);
  camera.handle = openDevice(device);
  if (camera.handle == nullptr) {
    throwFailure("Toupcam_Open failed");
  }
}

void configure(ActiveCamera& camera, std::int32_t /*bin*/) {
  void* const handle = camera.handle;
  Toupcam_put_Option.checkAs("ToupTek RAW", handle, TOUPCAM_OPTION_RAW, 1);
  Toupcam_put_Option.checkAs("ToupTek depth", handle, TOUPCAM_OPTION_BITDEPTH,
                             camera.format == Raw16 ? 1 : 0);
  Toupcam_put_Roi.checkAs("ToupTek ROI", handle, 0, 0, static_cast<unsigned>(camera.width),
                          static_cast<unsigned>(camera.height));
  Toupcam_get_FinalSize.checkAs("ToupTek size", handle, &camera.width, &camera.height);
}

void start(const ActiveCamera& camera) {
  Toupcam_StartPullModeWithCallback.checkAs("ToupTek start", camera.handle, nullptr, nullptr);
}

bool read(const ActiveCamera& camera, FrameBuffer buffer, std::int32_t /*timeoutMs*/) {
  constexpr int packedRows = -1;
  unsigned width = 0;
  unsigned height = 0;
  const std::int32_t result = Toupcam_PullImageWithRowPitch(
      camera.handle, buffer.data, bitsOf(camera), packedRows, &width, &height);
  if (result == TOUPCAM_E_PENDING) {
    return false;
  }
  checkToupResult(result, "ToupTek pull frame");
  if (width != static_cast<unsigned>(camera.width) ||
      height != static_cast<unsigned>(camera.height)) {
    throwFailure("ToupTek frame geometry changed");
  }
  return true;
}

void apply(const ActiveCamera& camera, CameraSettings settings) {
  void* const handle = camera.handle;
  Toupcam_put_AutoExpoEnable.checkAs("ToupTek manual exposure", handle, 0);
  Toupcam_put_ExpoTime.checkAs("ToupTek exposure", handle,
                               static_cast<unsigned>(settings.exposureUs));
  if (settings.gain < 0 || settings.gain > std::numeric_limits<unsigned short>::max()) {
    throwFailure("ToupTek gain out of range");
  }
  Toupcam_put_ExpoAGain.checkAs("ToupTek gain", handle, static_cast<unsigned short>(settings.gain));
  Toupcam_put_Option.checkAs("ToupTek black level", handle, TOUPCAM_OPTION_BLACKLEVEL,
                             settings.offset);
}

double temperature(const ActiveCamera& camera) {
  short tenths = 0;
  Toupcam_get_Temperature.checkAs("ToupTek temperature", camera.handle, &tenths);
  return static_cast<double>(tenths) / 10.0;
}

void stop(const ActiveCamera& camera) {
  Toupcam_Stop(camera.handle);
}

void close(const ActiveCamera& camera) {
  Toupcam_Close(camera.handle);
}

}  // namespace

constinit const VendorFamily toupTekFamily{
    .vendor = Vendor::ToupTek,
    .baseName = "toupcam",
    .widthStep = 1,
    .heightStep = 1,
    .scan = scanToupTekCameras,
    .open = open,
    .configure = configure,
    .frameMemory = frameSizeOnly,
    .start = start,
    .read = read,
    .apply = apply,
    .temperature = temperature,
    .stop = stop,
    .close = close,
};

}  // namespace orvane
