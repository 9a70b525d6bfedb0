// Player One's PlayerOneCamera, simulated.
//
// Exposure, gain and offset change the picture, and the cooler's settings the temperature. Other
// settings only keep their value.

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "core/call.hpp"
#include "core/sdk.hpp"
#include "simulated_sdk.hpp"
#include "vendors/sdk/playerone_sdk.hpp"

namespace orvane {
namespace {

using namespace sim;

// The maker's values that the library does not use.
enum : int {
  // POABayerPattern
  POA_BAYER_RG = 0,
  POA_BAYER_MONO = -1,
  // POAImgFormat
  POA_RAW8 = 0,
  POA_RAW16 = 1,
  POA_RGB24 = 2,  // blue, green, red
  POA_MONO8 = 3,
  // POAValueType
  VAL_INT = 0,
  VAL_FLOAT = 1,
  VAL_BOOL = 2,
  // POAConfig
  POA_HARDWARE_BIN = 2,
  POA_WB_R = 4,
  POA_WB_G = 5,
  POA_WB_B = 6,
  POA_AUTOEXPO_MAX_GAIN = 8,
  POA_AUTOEXPO_MAX_EXPOSURE = 9,
  POA_AUTOEXPO_BRIGHTNESS = 10,
  POA_EGAIN = 15,
  POA_COOLER_POWER = 16,
  POA_TARGET_TEMP = 17,
  POA_COOLER = 18,
  POA_FRAME_LIMIT = 26,
  POA_USB_BANDWIDTH_LIMIT = 28,
  // POAErrors
  POA_OK = 0,
  POA_ERROR_INVALID_INDEX = 1,
  POA_ERROR_INVALID_ID = 2,
  POA_ERROR_INVALID_CONFIG = 3,
  POA_ERROR_INVALID_ARGU = 4,
  POA_ERROR_NOT_OPENED = 5,
  POA_ERROR_DEVICE_NOT_FOUND = 6,
  POA_ERROR_OUT_OF_LIMIT = 7,
  POA_ERROR_SIZE_LESS = 10,
  POA_ERROR_EXPOSING = 11,
  POA_ERROR_POINTER = 12,
  POA_ERROR_CONF_CANNOT_WRITE = 13,
  POA_ERROR_OPERATION_FAILED = 16,
};

constexpr const char* defaultModels[] = {"Mars-C", "Neptune-C II", "Poseidon-M Pro"};

constexpr CodeOf formatCodes[] = {
    {"RAW8", POA_RAW8}, {"RAW16", POA_RAW16}, {"RGB24", POA_RGB24}, {"MONO8", POA_MONO8}};
constexpr CodeOf patternCodes[] = {
    {"mono", POA_BAYER_MONO}, {"RGGB", 0}, {"BGGR", 1}, {"GRBG", 2}, {"GBRG", 3}};

// What the SDK reports as the temperature of a camera that was unplugged.
constexpr double unpluggedTemperature = -300;

void setUp(Camera& camera) {
  const SimCamera& model = camera.model;
  camera.device.controls = {
      {POA_EXPOSURE, model.exposureMinUs, model.exposureMaxUs, usualExposureUs(model),
       Access::ByHandOrAuto, "Exposure", "Exposure time (us)"},
      {POA_GAIN, model.gainMin, model.gainMax, usualGain(model), Access::ByHandOrAuto, "Gain",
       "Gain"},
      {POA_HARDWARE_BIN, 0, 1, 0, Access::ByHand, "HardwareBin", "Bin on the sensor"},
      {POA_AUTOEXPO_MAX_GAIN, model.gainMin, model.gainMax, usualGain(model), Access::ByHand,
       "AutoExpMaxGain", "Largest gain of auto exposure"},
      {POA_AUTOEXPO_MAX_EXPOSURE, 1, 60'000, 100, Access::ByHand, "AutoExpMaxExpMS",
       "Longest time of auto exposure (ms)"},
      {POA_AUTOEXPO_BRIGHTNESS, 50, 150, 100, Access::ByHand, "AutoExpBrightness",
       "Brightness that auto exposure aims at"},
      {POA_EGAIN, 0, 1000, 1, Access::ReadOnly, "eGain", "Electrons per count"},
      {POA_FRAME_LIMIT, 0, 2000, 0, Access::ByHand, "FrameLimit",
       "Most frames per second, 0 for no limit"},
      {POA_USB_BANDWIDTH_LIMIT, 35, 100, 90, Access::ByHand, "USBBandWidthLimit",
       "Part of the USB bandwidth (percent)"},
      onlyIf(hasOffset(model), {POA_OFFSET, model.offsetMin, model.offsetMax, usualOffset(model),
                                Access::ByHand, "Offset", "Offset"}),
      onlyIf(model.hasTemperature, {POA_TEMPERATURE, -50, 100, 20, Access::ReadOnly, "Temperature",
                                    "Sensor temperature (C)"}),
      onlyIf(model.isCooled, {POA_COOLER_POWER, 0, 100, 0, Access::ReadOnly, "CoolerPower",
                              "Cooler power (percent)"}),
      onlyIf(model.isCooled,
             {POA_TARGET_TEMP, -40, 30, 0, Access::ByHand, "TargetTemp", "Target temperature (C)"}),
      onlyIf(model.isCooled, {POA_COOLER, 0, 1, 0, Access::ByHand, "Cooler", "Cooler on or off"}),
      onlyIf(model.isColor,
             {POA_WB_R, -1200, 1200, 0, Access::ByHandOrAuto, "WB_R", "White balance, red"}),
      onlyIf(model.isColor,
             {POA_WB_G, -1200, 1200, 0, Access::ByHandOrAuto, "WB_G", "White balance, green"}),
      onlyIf(model.isColor,
             {POA_WB_B, -1200, 1200, 0, Access::ByHandOrAuto, "WB_B", "White balance, blue"})};
}

// The values of all other settings are integers.
constexpr std::pair<std::int32_t, int> valueTypes[] = {{POA_TEMPERATURE, VAL_FLOAT},
                                                       {POA_EGAIN, VAL_FLOAT},
                                                       {POA_HARDWARE_BIN, VAL_BOOL},
                                                       {POA_COOLER, VAL_BOOL}};

int valueTypeOf(int configId) {
  return lookUp(valueTypes, configId, VAL_INT);
}

// Reads the union's member that a setting uses.
double numberIn(const POAConfigValue& value, int configId) {
  switch (valueTypeOf(configId)) {
    case VAL_FLOAT:
      return value.floatValue;
    case VAL_BOOL:
      return value.boolValue;
    default:
      return static_cast<double>(value.intValue);
  }
}

// Sets the union's member that a setting uses.
void setNumber(Call& call, const char* name, POAConfigValue& value, int configId, double number) {
  value = {};
  switch (valueTypeOf(configId)) {
    case VAL_FLOAT:
      call.set(name, value.floatValue, number);
      break;
    case VAL_BOOL:
      call.set(name, value.boolValue, wholeNumber<int>(number));
      break;
    default:
      call.set(name, value.intValue, wholeNumber<long>(number));
  }
}

constexpr std::pair<std::int32_t, Layout> layouts[] = {
    {POA_RAW16, Layout::Raw16}, {POA_RGB24, Layout::Bgr24}, {POA_MONO8, Layout::Luma8}};

FrameSettings frameSettings(const Camera& camera) {
  FrameSettings settings = commonSettings(camera, bayerPatternOfNumber(camera.model.bayerPattern),
                                          {POA_EXPOSURE, POA_GAIN, POA_OFFSET});
  settings.layout = lookUp(layouts, camera.device.format, Layout::Raw8);
  return settings;
}

// The present value of a setting. For some settings it is a measurement.
double reading(const Camera& camera, const Control& control) {
  const std::int64_t now = sdk().clock.now();
  switch (control.id) {
    case POA_TEMPERATURE:
      return camera.device.isSilent ? unpluggedTemperature : camera.device.cooler.temperature(now);
    case POA_COOLER_POWER:
      return camera.device.cooler.power(now);
    default:
      return control.value;
  }
}

// The SDK does not refuse sizes and starts, but rounds them down to multiples of 4 and 2.
int roundedWidth(int width) {
  return std::max(width & ~3, 4);
}
int roundedHeight(int height) {
  return std::max(height & ~1, 2);
}

bool isExposing(const Camera& camera) {
  return camera.device.stream.isRunning() && !camera.device.stream.isFinished();
}

// The outputs that can be forced.
constexpr FunctionOutputs outputs[] = {
    {"POAGetCameraProperties",
     "result cameraID maxWidth maxHeight bitDepth isColorCamera isHasST4Port isHasCooler "
     "isUSB3Speed bayerPattern pixelSize isSupportHardBin"},
    {"POAGetConfigAttributesByConfigID",
     "result isSupportAuto isWritable isReadable configID valueType maxValue minValue "
     "defaultValue"},
    {"POAGetConfig", "result value isAuto"},
    {"POAGetImageSize", "result width height"},
    {"POAImageReady", "result isReady"},
};

}  // namespace

constinit const sim::Maker sim::maker{.sdkName = "PlayerOneCamera",
                                      .defaultModels = defaultModels,
                                      .formatCodes = formatCodes,
                                      .patternCodes = patternCodes,
                                      .queue = {2, WhenFull::DropOldest},
                                      .widthStep = 4,
                                      .heightStep = 2,
                                      .setUp = setUp,
                                      .frameSettings = frameSettings,
                                      .failures = {.noCamera = POA_ERROR_INVALID_ID,
                                                   .closed = POA_ERROR_NOT_OPENED,
                                                   .unplugged = POA_ERROR_DEVICE_NOT_FOUND,
                                                   .refused = POA_ERROR_OPERATION_FAILED},
                                      .outputs = outputs};

extern "C" {

int POAGetCameraCount() {
  return Call(__func__).run([] { return static_cast<int>(sdk().enumerate()); });
}

int POAGetCameraProperties(int index, POACameraProperties* properties) {
  Call call(__func__, index);
  return call.run([&]() -> int {
    const Camera* camera = sdk().enumerated(index);
    if (camera == nullptr) {
      return POA_ERROR_INVALID_INDEX;
    }
    if (properties == nullptr) {
      return POA_ERROR_POINTER;
    }
    if (!camera->isPlugged) {
      return POA_ERROR_DEVICE_NOT_FOUND;
    }
    const SimCamera& model = camera->model;
    *properties = {};
    copyText(properties->cameraModelName, textOf(model.name));
    call.set("cameraID", properties->cameraID, model.id);
    call.set("maxWidth", properties->maxWidth, model.width);
    call.set("maxHeight", properties->maxHeight, model.height);
    call.set("bitDepth", properties->bitDepth, model.bitDepth);
    call.set("isColorCamera", properties->isColorCamera, model.isColor);
    call.set("isHasST4Port", properties->isHasST4Port, POA_TRUE);
    call.set("isHasCooler", properties->isHasCooler, model.isCooled);
    call.set("isUSB3Speed", properties->isUSB3Speed, model.isUsb3Host);
    call.set("bayerPattern", properties->bayerPattern, model.bayerPattern);
    call.set("pixelSize", properties->pixelSize, model.pixelSizeUm);
    std::copy_n(model.bins, std::size(properties->bins), properties->bins);
    std::copy_n(model.formats, std::size(properties->imgFormats), properties->imgFormats);
    call.set("isSupportHardBin", properties->isSupportHardBin, POA_TRUE);
    call.wrote(Quoted{textOf(properties->cameraModelName)}, " id ", properties->cameraID);
    return POA_OK;
  });
}

int POAOpenCamera(int cameraId) {
  return Call(__func__, cameraId).run([&] { return sdk().openById(cameraId); });
}

int POAInitCamera(int cameraId) {
  return Call(__func__, cameraId).onOpen(cameraId, [](Camera& camera) -> int {
    camera.device.isInitialised = true;
    return POA_OK;
  });
}

int POACloseCamera(int cameraId) {
  return Call(__func__, cameraId).run([&] { return sdk().closeById(cameraId); });
}

int POAGetConfigAttributesByConfigID(int cameraId, int configId, POAConfigAttributes* attributes) {
  Call call(__func__, cameraId, configId);
  return call.onOpen(cameraId, [&](Camera& camera) -> int {
    const Control* control = camera.device.find(configId);
    if (attributes == nullptr) {
      return POA_ERROR_POINTER;
    }
    if (control == nullptr) {
      return POA_ERROR_INVALID_CONFIG;
    }
    *attributes = {};
    call.set("isSupportAuto", attributes->isSupportAuto, control->hasAuto() ? POA_TRUE : POA_FALSE);
    call.set("isWritable", attributes->isWritable, control->isWritable() ? POA_TRUE : POA_FALSE);
    call.set("isReadable", attributes->isReadable, POA_TRUE);
    call.set("configID", attributes->configID, configId);
    call.set("valueType", attributes->valueType, valueTypeOf(configId));
    setNumber(call, "maxValue", attributes->maxValue, configId, control->maximum);
    setNumber(call, "minValue", attributes->minValue, configId, control->minimum);
    setNumber(call, "defaultValue", attributes->defaultValue, configId, control->initial);
    copyText(attributes->szConfName, control->name);
    copyText(attributes->szDescription, control->description);
    call.wrote("[", numberIn(attributes->minValue, configId), ", ",
               numberIn(attributes->maxValue, configId), "] writable ", attributes->isWritable);
    return POA_OK;
  });
}

int POASetConfig(int cameraId, int configId, POAConfigValue value, int isAuto) {
  const double number = numberIn(value, configId);
  Call call(__func__, cameraId, configId, number, isAuto);
  return call.onReady(cameraId, [&](Camera& camera) -> int {
    Device& device = camera.device;
    Control* control = device.find(configId);
    if (control == nullptr) {
      return POA_ERROR_INVALID_CONFIG;
    }
    if (!control->isWritable()) {
      return POA_ERROR_CONF_CANNOT_WRITE;
    }
    if (number < control->minimum || number > control->maximum) {
      return POA_ERROR_OUT_OF_LIMIT;
    }
    control->value = number;
    control->isAuto = control->hasAuto() && isAuto != POA_FALSE;
    if (configId == POA_COOLER || configId == POA_TARGET_TEMP) {
      device.cooler.set(sdk().clock.now(), device.value(POA_COOLER) != 0,
                        device.value(POA_TARGET_TEMP));
    }
    sdk().changed(camera);
    return POA_OK;
  });
}

int POAGetConfig(int cameraId, int configId, POAConfigValue* value, int* isAuto) {
  Call call(__func__, cameraId, configId);
  return call.onReady(cameraId, [&](Camera& camera) -> int {
    const Control* control = camera.device.find(configId);
    if (value == nullptr || isAuto == nullptr) {
      return POA_ERROR_POINTER;
    }
    if (control == nullptr) {
      return POA_ERROR_INVALID_CONFIG;
    }
    setNumber(call, "value", *value, configId, reading(camera, *control));
    call.wrote(numberIn(*value, configId));
    call.out("isAuto", isAuto, control->isAuto ? POA_TRUE : POA_FALSE);
    return POA_OK;
  });
}

int POASetImageStartPos(int cameraId, int x, int y) {
  return Call(__func__, cameraId, x, y).onReady(cameraId, [&](Camera& camera) -> int {
    Device& device = camera.device;
    Region& region = device.region;
    if (x < 0 || y < 0) {
      return POA_ERROR_INVALID_ARGU;
    }
    if ((x & ~3) > binnedWidth(camera.model, device.bin) - region.width ||
        (y & ~1) > binnedHeight(camera.model, device.bin) - region.height) {
      return POA_ERROR_OUT_OF_LIMIT;
    }
    region.x = x & ~3;
    region.y = y & ~1;
    sdk().changed(camera);
    return POA_OK;
  });
}

int POASetImageSize(int cameraId, int width, int height) {
  return Call(__func__, cameraId, width, height).onReady(cameraId, [&](Camera& camera) -> int {
    Device& device = camera.device;
    if (isExposing(camera)) {
      return POA_ERROR_EXPOSING;
    }
    if (width < 0 || height < 0) {
      return POA_ERROR_INVALID_ARGU;
    }
    const int mostX = binnedWidth(camera.model, device.bin) - roundedWidth(width);
    const int mostY = binnedHeight(camera.model, device.bin) - roundedHeight(height);
    if (mostX < 0 || mostY < 0) {
      return POA_ERROR_OUT_OF_LIMIT;
    }
    device.region = {std::min(device.region.x, mostX & ~3), std::min(device.region.y, mostY & ~1),
                     roundedWidth(width), roundedHeight(height)};
    return POA_OK;
  });
}

int POAGetImageSize(int cameraId, int* width, int* height) {
  Call call(__func__, cameraId);
  return call.onReady(cameraId, [&](Camera& camera) -> int {
    if (width == nullptr || height == nullptr) {
      return POA_ERROR_POINTER;
    }
    call.out("width", width, camera.device.region.width);
    call.out("height", height, camera.device.region.height);
    return POA_OK;
  });
}

int POASetImageBin(int cameraId, int bin) {
  return Call(__func__, cameraId, bin).onReady(cameraId, [&](Camera& camera) -> int {
    if (isExposing(camera)) {
      return POA_ERROR_EXPOSING;
    }
    if (!hasBin(camera.model, bin)) {
      return POA_ERROR_INVALID_ARGU;
    }
    Sdk::showWholeSensor(camera, bin);
    return POA_OK;
  });
}

int POASetImageFormat(int cameraId, int format) {
  return Call(__func__, cameraId, format).onReady(cameraId, [&](Camera& camera) -> int {
    if (isExposing(camera)) {
      return POA_ERROR_EXPOSING;
    }
    if (!contains(camera.model.formats, POA_END, format)) {
      return POA_ERROR_INVALID_ARGU;
    }
    camera.device.format = format;
    return POA_OK;
  });
}

int POAStartExposure(int cameraId, int isSingleFrame) {
  return Call(__func__, cameraId, isSingleFrame).onReady(cameraId, [&](Camera& camera) -> int {
    if (isExposing(camera)) {
      return POA_ERROR_EXPOSING;
    }
    sdk().startStream(camera, isSingleFrame != POA_FALSE);
    return POA_OK;
  });
}

int POAStopExposure(int cameraId) {
  return Call(__func__, cameraId).onReady(cameraId, [](Camera& camera) -> int {
    sdk().stopStream(camera);
    return POA_OK;
  });
}

int POAImageReady(int cameraId, int* isReady) {
  Call call(__func__, cameraId);
  return call.onReady(cameraId, [&](Camera& camera) -> int {
    if (isReady == nullptr) {
      return POA_ERROR_POINTER;
    }
    call.out("isReady", isReady, sdk().waitingFrame(camera) != nullptr ? POA_TRUE : POA_FALSE);
    return POA_OK;
  });
}

int POAGetImageData(int cameraId, unsigned char* buffer, long bufferSize, int waitMs) {
  Call call(__func__, cameraId, Buffer{buffer}, bufferSize, waitMs);
  return call.onReady(cameraId, [&](Camera& camera) -> int {
    if (buffer == nullptr) {
      return POA_ERROR_POINTER;
    }
    if (bufferSize < 0) {
      return POA_ERROR_INVALID_ARGU;
    }
    if (!isExposing(camera)) {
      return POA_ERROR_OPERATION_FAILED;
    }
    if (bufferSize < frameBytes(frameSettings(camera))) {
      ++sdk().counts.shortBuffers;
      return POA_ERROR_SIZE_LESS;
    }
    if (!sdk().waitForFrame(camera, waitMs)) {
      return POA_ERROR_TIMEOUT;
    }
    sdk().takeFrame(camera, buffer);
    return POA_OK;
  });
}

}  // extern "C"

}  // namespace orvane
