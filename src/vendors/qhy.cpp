// QHYCCD cameras. They are opened by the SDK's id string, `deviceKey`, and addressed by `handle`.
#include <algorithm>
#include <iterator>
#include <limits>
#include <string>
#include <utility>

#include "api/failure.hpp"
#include "vendors/closing_afterwards.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"
#include "vendors/sdk_text.hpp"
#include "vendors/vendor_rows.hpp"

namespace orvane {

namespace {

constexpr std::uint32_t maxCameraCount = 128;
constexpr std::uint8_t liveStreamMode = 1;

// The SDK's resources are initialised once per process and never released.
bool qhyResourceReady = false;

// Text that the SDK writes without knowing the buffer's size. The byte after the array ends a text
// that fills it, for the SDK functions that read it.
struct SdkText {
  char text[256] = {};
  char terminator = '\0';
};

// The SDK reports limits as doubles. Truncates to a whole number, clamped to the target type.
template <class Integer>
Integer truncated(double number) {
  if (number != number) {
    return 0;
  }
  // The type's limits as doubles. For 64 bits the upper one rounds up to the first value too large.
  constexpr auto lowest = static_cast<double>(std::numeric_limits<Integer>::min());
  constexpr double beyond = -lowest;
  if (number <= lowest) {
    return std::numeric_limits<Integer>::min();
  }
  return number >= beyond ? std::numeric_limits<Integer>::max() : static_cast<Integer>(number);
}

std::uint32_t bitsOf(const ActiveCamera& camera) {
  return camera.format == Raw16 ? 16 : 8;
}

// Reads what an open camera can do.
void examine(void* handle, CameraInfo& camera) {
  SetQHYCCDStreamMode.check(handle, liveStreamMode);  // InitQHYCCD depends on the mode
  InitQHYCCD.check(handle);

  double chipWidthMm = 0.0;
  double chipHeightMm = 0.0;
  double pixelWidthUm = 0.0;
  double pixelHeightUm = 0.0;
  std::uint32_t imageWidth = 0;
  std::uint32_t imageHeight = 0;
  std::uint32_t bitsPerPixel = 0;
  GetQHYCCDChipInfo.check(handle, &chipWidthMm, &chipHeightMm, &imageWidth, &imageHeight,
                          &pixelWidthUm, &pixelHeightUm, &bitsPerPixel);
  camera.maxWidth = static_cast<std::int32_t>(imageWidth);
  camera.maxHeight = static_cast<std::int32_t>(imageHeight);
  camera.bitDepth = static_cast<std::int32_t>(bitsPerPixel);
  camera.pixelSizeUm = pixelWidthUm;

  constexpr BayerCode codes[] = {BayerNone, BayerGbrg, BayerGrbg, BayerBggr, BayerRggb};
  const std::uint32_t pattern = IsQHYCCDControlAvailable(handle, CAM_COLOR);
  camera.isColor = pattern >= 1 && pattern < std::size(codes);
  camera.bayer = camera.isColor ? codes[pattern] : BayerNone;
  camera.isCooled = IsQHYCCDControlAvailable(handle, CONTROL_COOLER) == QHYCCD_SUCCESS;
  if (IsQHYCCDControlAvailable(handle, CAM_16BITS) == QHYCCD_SUCCESS) {
    camera.formats.push_back(Raw16);
  }
  for (const auto& [mode, bin] :
       {std::pair{CAM_BIN2X2MODE, 2}, {CAM_BIN3X3MODE, 3}, {CAM_BIN4X4MODE, 4}}) {
    if (IsQHYCCDControlAvailable(handle, mode) == QHYCCD_SUCCESS) {
      camera.bins.push_back(bin);
    }
  }

  double minimum = 0.0;
  double maximum = 0.0;
  double step = 0.0;
  if (GetQHYCCDParamMinMaxStep(handle, CONTROL_EXPOSURE, &minimum, &maximum, &step) ==
      QHYCCD_SUCCESS) {
    camera.maxExposureUs = truncated<std::int64_t>(maximum);
  }
  if (GetQHYCCDParamMinMaxStep(handle, CONTROL_GAIN, &minimum, &maximum, &step) == QHYCCD_SUCCESS) {
    camera.minGain = truncated<std::int32_t>(minimum);
    camera.maxGain = truncated<std::int32_t>(maximum);
  }
}

void scanQhyCameras() {
  if (!qhyResourceReady) {
    InitQHYCCDResource.check();
    qhyResourceReady = true;
  }
  const std::uint32_t count = ScanQHYCCD();
  if (count > maxCameraCount) {  // includes the SDK's error value
    throwFailure("QHY scan failed");
  }
  for (std::uint32_t i = 0; i < count; ++i) {
    SdkText id;
    SdkText model;
    GetQHYCCDId.check(i, id.text);
    CameraInfo camera;
    camera.vendor = Vendor::Qhy;
    camera.deviceKey = boundedText(id.text);
    camera.name =
        GetQHYCCDModel(id.text, model.text) == QHYCCD_SUCCESS ? boundedText(model.text) : "QHYCCD";
    void* const handle = OpenQHYCCD(id.text);
    if (handle == nullptr) {
      continue;
    }
    closingAfterwards([&] { CloseQHYCCD(handle); },
                      [&] {
                        examine(handle, camera);
                        state.catalogue.push_back(camera);
                      });
  }
}

void open(ActiveCamera& camera) {
  camera.handle = OpenQHYCCD(camera.info.deviceKey.data());
  if (camera.handle == nullptr) {
    throwFailure("OpenQHYCCD failed");
  }
}

void configure(ActiveCamera& camera, std::int32_t bin) {
  void* const handle = camera.handle;
  const auto factor = static_cast<std::uint32_t>(bin);
  SetQHYCCDStreamMode.checkAs("QHY stream mode", handle, liveStreamMode);
  InitQHYCCD.check(handle);
  SetQHYCCDBinMode.checkAs("QHY binning", handle, factor, factor);
  SetQHYCCDBitsMode.checkAs("QHY bit depth", handle, bitsOf(camera));
  SetQHYCCDResolution.checkAs("QHY ROI", handle, 0, 0, static_cast<std::uint32_t>(camera.width),
                              static_cast<std::uint32_t>(camera.height));
}

std::int64_t frameMemory(const ActiveCamera& camera) {
  return GetQHYCCDMemLength(camera.handle);
}

void start(const ActiveCamera& camera) {
  BeginQHYCCDLive.check(camera.handle);
}

bool read(const ActiveCamera& camera, FrameBuffer buffer, std::int32_t /*timeoutMs*/) {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t bitsPerPixel = 0;
  std::uint32_t channels = 0;
  // The SDK returns the same value for "no frame yet" and for a failure.
  if (GetQHYCCDLiveFrame(camera.handle, &width, &height, &bitsPerPixel, &channels, buffer.data) !=
      QHYCCD_SUCCESS) {
    return false;
  }
  if (width != static_cast<std::uint32_t>(camera.width) ||
      height != static_cast<std::uint32_t>(camera.height) || channels != 1 ||
      bitsPerPixel != bitsOf(camera)) {
    throwFailure("QHY frame geometry changed");
  }
  return true;
}

void apply(const ActiveCamera& camera, CameraSettings settings) {
  void* const handle = camera.handle;
  SetQHYCCDParam.checkAs("QHY exposure", handle, CONTROL_EXPOSURE, settings.exposureUs);
  SetQHYCCDParam.checkAs("QHY gain", handle, CONTROL_GAIN, settings.gain);
  if (IsQHYCCDControlAvailable(handle, CONTROL_OFFSET) == QHYCCD_SUCCESS) {
    SetQHYCCDParam.checkAs("QHY offset", handle, CONTROL_OFFSET, settings.offset);
  }
}

// The SDK returns an error code in place of the temperature. It cannot be distinguished from a
// temperature, so it is passed on.
double temperature(const ActiveCamera& camera) {
  return GetQHYCCDParam(camera.handle, CONTROL_CURTEMP);
}

void stop(const ActiveCamera& camera) {
  StopQHYCCDLive(camera.handle);
}

void close(const ActiveCamera& camera) {
  CloseQHYCCD(camera.handle);
}

}  // namespace

constinit const VendorFamily qhyFamily{
    .vendor = Vendor::Qhy,
    .baseName = "qhyccd",
    .widthStep = 1,
    .heightStep = 1,
    .scan = scanQhyCameras,
    .open = open,
    .configure = configure,
    .frameMemory = frameMemory,
    .start = start,
    .read = read,
    .apply = apply,
    .temperature = temperature,
    .stop = stop,
    .close = close,
};

}  // namespace orvane
