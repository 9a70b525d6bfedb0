// QHYCCD's qhyccd, simulated.
//
// Exposure, gain and offset change the picture, and the cooler's controls the temperature. Other
// controls only keep their value. A value out of range is refused.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "core/call.hpp"
#include "core/sdk.hpp"
#include "simulated_sdk.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"

namespace orvane {
namespace {

using namespace sim;

// The maker's values that the library does not use.
constexpr std::uint32_t QHYCCD_ERROR = 0xFFFFFFFF;

enum : int {
  CONTROL_SPEED = 9,
  CONTROL_TRANSFERBIT = 10,
  CONTROL_USBTRAFFIC = 12,
  CONTROL_CURPWM = 15,
  CONTROL_MANULPWM = 16,
  CAM_BIN1X1MODE = 21,
  CAM_8BITS = 34,
  CAM_SINGLEFRAMEMODE = 57,
  CAM_LIVEVIDEOMODE = 58,
  CAM_IS_COLOR = 59,
};

enum : std::int32_t {
  BAYER_NONE = 0,
  BAYER_GB = 1,
  BAYER_GR = 2,
  BAYER_BG = 3,
  BAYER_RG = 4,
};

constexpr int liveMode = 1;

// The size of a buffer for an id or a model name. The maker's functions get no length; this size is
// the usual one.
constexpr std::size_t textBufferSize = 256;

constexpr const char* defaultModels[] = {"QHY5III482C", "QHY268M", "QHY600M", "QHY6-M"};

constexpr CodeOf patternCodes[] = {{"mono", BAYER_NONE},
                                   {"RGGB", BAYER_RG},
                                   {"BGGR", BAYER_BG},
                                   {"GRBG", BAYER_GR},
                                   {"GBRG", BAYER_GB}};

// What the SDK reports as the temperature of a camera that was unplugged.
constexpr double unpluggedTemperature = -2176;

void setUp(Camera& camera) {
  const SimCamera& model = camera.model;
  camera.device.controls = {
      {CONTROL_GAIN, model.gainMin, model.gainMax, usualGain(model)},
      {CONTROL_EXPOSURE, model.exposureMinUs, model.exposureMaxUs, usualExposureUs(model)},
      {CONTROL_SPEED, 0, 2, 0},
      // Set by SetQHYCCDBitsMode only.
      {CONTROL_TRANSFERBIT, 8, model.bitDepth > 8 ? 16.0 : 8.0, 8, Access::ReadOnly},
      {CONTROL_USBTRAFFIC, 0, 60, 10},
      onlyIf(hasOffset(model),
             {CONTROL_OFFSET, model.offsetMin, model.offsetMax, usualOffset(model)}),
      onlyIf(model.hasTemperature, {CONTROL_CURTEMP, -50, 100, 20, Access::ReadOnly}),
      onlyIf(model.isCooled, {CONTROL_CURPWM, 0, 255, 0, Access::ReadOnly}),
      onlyIf(model.isCooled, {CONTROL_MANULPWM, 0, 255, 0}),
      onlyIf(model.isCooled, {CONTROL_COOLER, -50, 50, 0})};
}

constexpr std::pair<std::int32_t, BayerPattern> bayerPatterns[] = {
    {BAYER_GB, BayerPattern::Gbrg}, {BAYER_GR, BayerPattern::Grbg}, {BAYER_BG, BayerPattern::Bggr}};

FrameSettings frameSettings(const Camera& camera) {
  FrameSettings settings =
      commonSettings(camera, lookUp(bayerPatterns, camera.model.bayerPattern, BayerPattern::Rggb),
                     {CONTROL_EXPOSURE, CONTROL_GAIN, CONTROL_OFFSET});
  const bool isWide = camera.device.value(CONTROL_TRANSFERBIT) > 8;
  settings.layout = isWide ? Layout::Raw16 : Layout::Raw8;
  return settings;
}

// Whether the SDK refuses to set the depth at the present bin.
bool refusesBits(const Camera& camera) {
  const SimCamera& model = camera.model;
  const bool isRefused =
      camera.device.bin < 32 && (model.refusesBitsAtBins >> camera.device.bin & 1U) != 0;
  return isRefused && !(model.acceptsBitsAfterSize != 0 && camera.device.isSizeSet);
}

// The memory that a user needs for any frame of the camera: that of the largest frame, in 16 bits
// or in three colours.
std::uint32_t memoryLength(const SimCamera& model) {
  const double bytes = model.isColor != 0 ? 3 : 2;
  return wholeNumber<std::uint32_t>(bytes * binnedWidth(model, 1) * binnedHeight(model, 1));
}

// Writes text and its NUL into a buffer of unknown length. The longest possible text fills the
// usual buffer and gets no NUL.
void writeText(char* buffer, std::string_view text) {
  char* end = std::copy(text.begin(), text.end(), buffer);
  if (text.size() < textBufferSize) {
    *end = '\0';
  }
}

// The text in a user's buffer, up to its NUL or to the usual buffer's size.
std::string_view textIn(const char* buffer) {
  if (buffer == nullptr) {
    return {};
  }
  const void* end = std::memchr(buffer, '\0', textBufferSize);
  return {buffer, end == nullptr
                      ? textBufferSize
                      : static_cast<std::size_t>(static_cast<const char*>(end) - buffer)};
}

// The outputs that can be forced.
constexpr FunctionOutputs outputs[] = {
    {"GetQHYCCDChipInfo",
     "result chipWidthMm chipHeightMm imageWidth imageHeight pixelWidthUm pixelHeightUm "
     "bitsPerPixel"},
    {"GetQHYCCDParamMinMaxStep", "result minimum maximum step"},
    {"GetQHYCCDLiveFrame", "result width height bitsPerPixel channels"},
};

}  // namespace

constinit const sim::Maker sim::maker{
    .sdkName = "qhyccd",
    .defaultModels = defaultModels,
    .patternCodes = patternCodes,
    .queue = {2, WhenFull::DropOldest},
    .setUp = setUp,
    .frameSettings = frameSettings,
    .failures = {QHYCCD_ERROR, QHYCCD_ERROR, QHYCCD_ERROR, QHYCCD_ERROR},
    .outputs = outputs};

extern "C" {

std::uint32_t InitQHYCCDResource() {
  return Call(__func__).run([&]() -> std::uint32_t {
    constexpr std::int64_t searchUs = 1'000'000;
    sdk().spend(searchUs);
    sdk().isSdkInitialised = true;
    return QHYCCD_SUCCESS;
  });
}

std::uint32_t ScanQHYCCD() {
  return Call(__func__).run(
      [] { return sdk().isSdkInitialised ? static_cast<std::uint32_t>(sdk().enumerate()) : 0; });
}

std::uint32_t GetQHYCCDId(std::uint32_t index, char* id) {
  Call call(__func__, index);
  return call.run([&]() -> std::uint32_t {
    const Camera* camera = sdk().enumerated(index);
    if (camera == nullptr || !camera->isPlugged || id == nullptr) {
      return QHYCCD_ERROR;
    }
    writeText(id, textOf(camera->model.key));
    call.wrote(Quoted{textIn(id)});
    return QHYCCD_SUCCESS;
  });
}

std::uint32_t GetQHYCCDModel(char* id, char* model) {
  Call call(__func__, Quoted{textIn(id)});
  return call.run([&]() -> std::uint32_t {
    const Camera* camera = sdk().enumeratedByKey(textIn(id));
    if (camera == nullptr || model == nullptr) {
      return QHYCCD_ERROR;
    }
    writeText(model, textOf(camera->model.name));
    call.wrote(Quoted{textIn(model)});
    return QHYCCD_SUCCESS;
  });
}

void* OpenQHYCCD(char* id) {
  return Call(__func__, Quoted{textIn(id)}).run([&]() -> void* {
    Camera* camera = sdk().enumeratedByKey(textIn(id));
    if (camera == nullptr || !camera->isPlugged || camera->model.isBusy != 0 ||
        camera->device.isOpen) {
      return nullptr;
    }
    return sdk().openHandle(*camera);
  });
}

std::uint32_t CloseQHYCCD(void* handle) {
  return Call(__func__, handle).run([&]() -> std::uint32_t {
    return sdk().closeHandle(handle) ? QHYCCD_SUCCESS : QHYCCD_ERROR;
  });
}

std::uint32_t SetQHYCCDStreamMode(void* handle, std::uint8_t mode) {
  return Call(__func__, handle, mode).onOpen(handle, [&](Camera& camera) -> std::uint32_t {
    if (camera.device.isInitialised || mode > liveMode) {
      return QHYCCD_ERROR;
    }
    camera.device.streamMode = mode;
    return QHYCCD_SUCCESS;
  });
}

std::uint32_t InitQHYCCD(void* handle) {
  return Call(__func__, handle).onOpen(handle, [](Camera& camera) -> std::uint32_t {
    if (camera.device.stream.isRunning()) {
      return QHYCCD_ERROR;
    }
    for (Control& control : camera.device.controls) {
      control.value = control.initial;
    }
    Sdk::showWholeSensor(camera, 1);
    camera.device.isInitialised = true;
    return QHYCCD_SUCCESS;
  });
}

std::uint32_t GetQHYCCDChipInfo(void* handle, double* chipWidthMm, double* chipHeightMm,
                                std::uint32_t* imageWidth, std::uint32_t* imageHeight,
                                double* pixelWidthUm, double* pixelHeightUm,
                                std::uint32_t* bitsPerPixel) {
  Call call(__func__, handle);
  return call.onReady(handle, [&](Camera& camera) -> std::uint32_t {
    const SimCamera& model = camera.model;
    call.out("chipWidthMm", chipWidthMm, model.width * model.pixelSizeUm / 1000);
    call.out("chipHeightMm", chipHeightMm, model.height * model.pixelSizeUm / 1000);
    call.out("imageWidth", imageWidth, static_cast<std::uint32_t>(model.width));
    call.out("imageHeight", imageHeight, static_cast<std::uint32_t>(model.height));
    call.out("pixelWidthUm", pixelWidthUm, model.pixelSizeUm);
    call.out("pixelHeightUm", pixelHeightUm, model.pixelSizeUm);
    call.out("bitsPerPixel", bitsPerPixel,
             static_cast<std::uint32_t>(model.reportedBitDepth != 0 ? model.reportedBitDepth
                                                                    : model.bitDepth));
    return QHYCCD_SUCCESS;
  });
}

std::uint32_t IsQHYCCDControlAvailable(void* handle, int controlId) {
  return Call(__func__, handle, controlId).onReady(handle, [&](Camera& camera) -> std::uint32_t {
    const SimCamera& model = camera.model;
    if (controlId == CAM_COLOR) {
      return model.isColor != 0 ? static_cast<std::uint32_t>(model.bayerPattern) : QHYCCD_ERROR;
    }
    const auto isAvailable = [&] {
      switch (controlId) {
        case CAM_BIN1X1MODE:
        case CAM_BIN2X2MODE:
        case CAM_BIN3X3MODE:
        case CAM_BIN4X4MODE:
          return hasBin(model, controlId - CAM_BIN1X1MODE + 1);
        case CAM_8BITS:
        case CAM_SINGLEFRAMEMODE:
        case CAM_LIVEVIDEOMODE:
          return true;
        case CAM_16BITS:
          return model.bitDepth > 8;
        case CAM_IS_COLOR:
          return model.isColor != 0;
        default:
          return camera.device.find(controlId) != nullptr;
      }
    };
    return isAvailable() ? std::uint32_t{QHYCCD_SUCCESS} : QHYCCD_ERROR;
  });
}

std::uint32_t GetQHYCCDParamMinMaxStep(void* handle, int controlId, double* minimum,
                                       double* maximum, double* step) {
  Call call(__func__, handle, controlId);
  return call.onReady(handle, [&](Camera& camera) -> std::uint32_t {
    const Control* control = camera.device.find(controlId);
    if (control == nullptr) {
      return QHYCCD_ERROR;
    }
    call.out("minimum", minimum, control->minimum);
    call.out("maximum", maximum, control->maximum);
    call.out("step", step, 1);
    return QHYCCD_SUCCESS;
  });
}

std::uint32_t SetQHYCCDParam(void* handle, int controlId, double value) {
  Call call(__func__, handle, controlId, value);
  return call.onReady(handle, [&](Camera& camera) -> std::uint32_t {
    Control* control = camera.device.find(controlId);
    if (control == nullptr || !control->isWritable() ||
        !(value >= control->minimum && value <= control->maximum)) {
      return QHYCCD_ERROR;
    }
    control->value = value;
    const std::int64_t now = sdk().clock.now();
    if (controlId == CONTROL_COOLER) {
      camera.device.cooler.set(now, true, value);
    } else if (controlId == CONTROL_MANULPWM) {
      camera.device.cooler.set(now, value > 0, -value / 8);
    }
    sdk().changed(camera);
    return QHYCCD_SUCCESS;
  });
}

double GetQHYCCDParam(void* handle, int controlId) {
  return Call(__func__, handle, controlId).onReady(handle, [&](Camera& camera) -> double {
    const Control* control = camera.device.find(controlId);
    if (control == nullptr) {
      return QHYCCD_ERROR;
    }
    const std::int64_t now = sdk().clock.now();
    switch (controlId) {
      case CONTROL_CURTEMP:
        return camera.device.isSilent ? unpluggedTemperature
                                      : camera.device.cooler.temperature(now);
      case CONTROL_CURPWM:
        return camera.device.cooler.power(now) * 2.55;
      default:
        return control->value;
    }
  });
}

std::uint32_t SetQHYCCDBinMode(void* handle, std::uint32_t horizontal, std::uint32_t vertical) {
  Call call(__func__, handle, horizontal, vertical);
  return call.onReady(handle, [&](Camera& camera) -> std::uint32_t {
    const auto bin = static_cast<std::int32_t>(horizontal);
    if (camera.device.stream.isRunning() || horizontal != vertical || !hasBin(camera.model, bin)) {
      return QHYCCD_ERROR;
    }
    Sdk::showWholeSensor(camera, bin);
    camera.device.isSizeSet = false;
    return QHYCCD_SUCCESS;
  });
}

std::uint32_t SetQHYCCDBitsMode(void* handle, std::uint32_t bits) {
  return Call(__func__, handle, bits).onReady(handle, [&](Camera& camera) -> std::uint32_t {
    const bool isSupported = bits == 8 || (bits == 16 && camera.model.bitDepth > 8);
    if (camera.device.stream.isRunning() || !isSupported || refusesBits(camera)) {
      return QHYCCD_ERROR;
    }
    camera.device.find(CONTROL_TRANSFERBIT)->value = bits;
    return QHYCCD_SUCCESS;
  });
}

std::uint32_t SetQHYCCDResolution(void* handle, std::uint32_t x, std::uint32_t y,
                                  std::uint32_t width, std::uint32_t height) {
  Call call(__func__, handle, x, y, width, height);
  return call.onReady(handle, [&](Camera& camera) -> std::uint32_t {
    const auto isInside = [](std::uint32_t start, std::uint32_t length, std::int32_t limit) {
      return length > 0 && std::int64_t{start} + length <= limit;
    };
    Device& device = camera.device;
    if (device.stream.isRunning() || !isInside(x, width, binnedWidth(camera.model, device.bin)) ||
        !isInside(y, height, binnedHeight(camera.model, device.bin))) {
      return QHYCCD_ERROR;
    }
    device.region = {static_cast<std::int32_t>(x), static_cast<std::int32_t>(y),
                     static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)};
    device.isSizeSet = true;
    return QHYCCD_SUCCESS;
  });
}

std::uint32_t GetQHYCCDMemLength(void* handle) {
  Call call(__func__, handle);
  return call.onReady(handle, [&](Camera& camera) -> std::uint32_t {
    call.set("result", camera.device.reportedLength, memoryLength(camera.model));
    return camera.device.reportedLength;
  });
}

std::uint32_t BeginQHYCCDLive(void* handle) {
  return Call(__func__, handle).onReady(handle, [](Camera& camera) -> std::uint32_t {
    if (camera.device.streamMode != liveMode) {
      return QHYCCD_ERROR;
    }
    if (!camera.device.stream.isRunning()) {
      sdk().startStream(camera, false);
    }
    return QHYCCD_SUCCESS;
  });
}

std::uint32_t StopQHYCCDLive(void* handle) {
  return Call(__func__, handle).onReady(handle, [](Camera& camera) -> std::uint32_t {
    sdk().stopStream(camera);
    return QHYCCD_SUCCESS;
  });
}

std::uint32_t GetQHYCCDLiveFrame(void* handle, std::uint32_t* width, std::uint32_t* height,
                                 std::uint32_t* bitsPerPixel, std::uint32_t* channels,
                                 std::uint8_t* data) {
  Call call(__func__, handle, Buffer{data});
  return call.onReady(handle, [&](Camera& camera) -> std::uint32_t {
    const FrameSettings* frame = sdk().waitingFrame(camera);
    if (frame == nullptr || data == nullptr) {
      return QHYCCD_ERROR;
    }
    call.out("width", width, static_cast<std::uint32_t>(frame->region.width));
    call.out("height", height, static_cast<std::uint32_t>(frame->region.height));
    call.out("bitsPerPixel", bitsPerPixel, frame->layout == Layout::Raw16 ? 16 : 8);
    call.out("channels", channels, 1);
    if (camera.device.reportedLength != 0 && frameBytes(*frame) > camera.device.reportedLength) {
      ++sdk().counts.writesPastBuffer;
    }
    sdk().takeFrame(camera, data);
    return QHYCCD_SUCCESS;
  });
}

}  // extern "C"

}  // namespace orvane
