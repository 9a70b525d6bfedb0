// ZWO's ASICamera2, simulated.
//
// Exposure, gain, offset and flip change the picture, and the cooler's controls the temperature.
// Other controls only keep their value. As in the maker's SDK, the values of a model stay from one
// initialisation to the next.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "core/call.hpp"
#include "core/sdk.hpp"
#include "simulated_sdk.hpp"
#include "vendors/sdk/asi_sdk.hpp"

namespace orvane {
namespace {

using namespace sim;

// The maker's values that the library does not use.
enum : int {
  // ASI_CONTROL_TYPE
  ASI_WB_R = 3,
  ASI_WB_B = 4,
  ASI_BANDWIDTHOVERLOAD = 6,
  ASI_FLIP = 9,
  ASI_AUTO_MAX_GAIN = 10,
  ASI_AUTO_MAX_EXP = 11,
  ASI_AUTO_TARGET_BRIGHTNESS = 12,
  ASI_HARDWARE_BIN = 13,
  ASI_HIGH_SPEED_MODE = 14,
  ASI_COOLER_POWER_PERC = 15,
  ASI_TARGET_TEMP = 16,
  ASI_COOLER_ON = 17,
  // ASI_ERROR_CODE
  ASI_SUCCESS = 0,
  ASI_ERROR_INVALID_INDEX = 1,
  ASI_ERROR_INVALID_ID = 2,
  ASI_ERROR_INVALID_CONTROL_TYPE = 3,
  ASI_ERROR_CAMERA_CLOSED = 4,
  ASI_ERROR_CAMERA_REMOVED = 5,
  ASI_ERROR_INVALID_SIZE = 8,
  ASI_ERROR_INVALID_IMGTYPE = 9,
  ASI_ERROR_OUTOF_BOUNDARY = 10,
  ASI_ERROR_INVALID_SEQUENCE = 12,
  ASI_ERROR_BUFFER_TOO_SMALL = 13,
  ASI_ERROR_GENERAL_ERROR = 16,
};

constexpr const char* defaultModels[] = {"ZWO ASI120MC-S", "ZWO ASI294MC Pro", "ZWO ASI2600MM Pro",
                                         "ZWO ASI290MM Mini"};

constexpr CodeOf formatCodes[] = {
    {"RAW8", ASI_IMG_RAW8}, {"RGB24", ASI_IMG_RGB24}, {"RAW16", ASI_IMG_RAW16}, {"Y8", ASI_IMG_Y8}};
constexpr CodeOf patternCodes[] = {{"mono", 0}, {"RGGB", 0}, {"BGGR", 1}, {"GRBG", 2}, {"GBRG", 3}};

// The controls are in the order in which a camera lists them.
void setUp(Camera& camera) {
  const SimCamera& model = camera.model;
  camera.device.controls = {
      {ASI_GAIN, model.gainMin, model.gainMax, usualGain(model), Access::ByHandOrAuto, "Gain",
       "Gain"},
      {ASI_EXPOSURE, model.exposureMinUs, model.exposureMaxUs, usualExposureUs(model),
       Access::ByHandOrAuto, "Exposure", "Exposure Time(us)"},
      onlyIf(hasOffset(model), {ASI_OFFSET, model.offsetMin, model.offsetMax, usualOffset(model),
                                Access::ByHand, "Offset", "Offset"}),
      {ASI_BANDWIDTHOVERLOAD, 40, 100, 50, Access::ByHandOrAuto, "BandWidth",
       "The total data transfer rate percentage"},
      {ASI_FLIP, 0, 3, 0, Access::ByHand, "Flip", "Flip: 0->None 1->Horiz 2->Vert 3->Both"},
      {ASI_AUTO_MAX_GAIN, model.gainMin, model.gainMax, usualGain(model), Access::ByHand,
       "AutoExpMaxGain", "Auto exposure maximum gain value"},
      {ASI_AUTO_MAX_EXP, 1, 60'000, 100, Access::ByHand, "AutoExpMaxExpMS",
       "Auto exposure maximum exposure value(unit ms)"},
      {ASI_AUTO_TARGET_BRIGHTNESS, 50, 160, 100, Access::ByHand, "AutoExpTargetBrightness",
       "Auto exposure target brightness value"},
      {ASI_HARDWARE_BIN, 0, 1, 0, Access::ByHand, "HardwareBin", "Is hardware bin2:0->No 1->Yes"},
      {ASI_HIGH_SPEED_MODE, 0, 1, 0, Access::ByHand, "HighSpeedMode",
       "Is high speed mode:0->No 1->Yes"},
      onlyIf(model.hasTemperature, {ASI_TEMPERATURE, -500, 1000, 20, Access::ReadOnly,
                                    "Temperature", "Sensor temperature(degrees Celsius)"}),
      onlyIf(model.isCooled, {ASI_COOLER_POWER_PERC, 0, 100, 0, Access::ReadOnly, "CoolPowerPerc",
                              "Cooler power percent"}),
      onlyIf(model.isCooled, {ASI_TARGET_TEMP, -40, 30, 0, Access::ByHand, "TargetTemp",
                              "Target temperature(cool camera only)"}),
      onlyIf(model.isCooled, {ASI_COOLER_ON, 0, 1, 0, Access::ByHand, "CoolerOn",
                              "Turn on/off cooler(cool camera only)"}),
      onlyIf(model.isColor,
             {ASI_WB_R, 1, 99, 52, Access::ByHandOrAuto, "WB_R", "White balance: Red component"}),
      onlyIf(model.isColor,
             {ASI_WB_B, 1, 99, 95, Access::ByHandOrAuto, "WB_B", "White balance: Blue component"})};
  camera.device.format = model.formats[0] == ASI_IMG_END ? ASI_IMG_RAW8 : model.formats[0];
}

constexpr std::pair<std::int32_t, Layout> layouts[] = {
    {ASI_IMG_RGB24, Layout::Bgr24}, {ASI_IMG_RAW16, Layout::Raw16}, {ASI_IMG_Y8, Layout::Luma8}};

// The Bayer pattern of a frame whose columns or rows are in the reverse order. Their number is
// even.
constexpr BayerPattern mirrored(BayerPattern pattern) {
  constexpr BayerPattern patterns[] = {BayerPattern::None, BayerPattern::Grbg, BayerPattern::Gbrg,
                                       BayerPattern::Rggb, BayerPattern::Bggr};
  return patterns[static_cast<std::size_t>(pattern)];
}
constexpr BayerPattern upsideDown(BayerPattern pattern) {
  constexpr BayerPattern patterns[] = {BayerPattern::None, BayerPattern::Gbrg, BayerPattern::Grbg,
                                       BayerPattern::Bggr, BayerPattern::Rggb};
  return patterns[static_cast<std::size_t>(pattern)];
}

FrameSettings frameSettings(const Camera& camera) {
  FrameSettings settings = commonSettings(camera, bayerPatternOfNumber(camera.model.bayerPattern),
                                          {ASI_EXPOSURE, ASI_GAIN, ASI_OFFSET});
  settings.layout = lookUp(layouts, camera.device.format, Layout::Raw8);
  const auto flip = static_cast<std::uint32_t>(camera.device.value(ASI_FLIP));
  if ((flip & 1U) != 0) {
    settings.isMirrored = true;
    settings.bayerPattern = mirrored(settings.bayerPattern);
  }
  if ((flip & 2U) != 0) {
    settings.isUpsideDown = true;
    settings.isTurned = true;
    settings.bayerPattern = upsideDown(settings.bayerPattern);
  }
  return settings;
}

// The present value of a control. For some controls it is a measurement.
long reading(const Camera& camera, const Control& control) {
  const std::int64_t now = sdk().clock.now();
  switch (control.id) {
    case ASI_TEMPERATURE:
      return std::lround(10 * camera.device.cooler.temperature(now));
    case ASI_COOLER_POWER_PERC:
      return std::lround(camera.device.cooler.power(now));
    default:
      return wholeNumber<long>(control.value);
  }
}

bool isUsb2Model(const SimCamera& model, std::string_view start) {
  return model.isUsb3Camera == 0 && model.isUsb3Host == 0 && textOf(model.name).starts_with(start);
}

// Whether the camera supports a region of this size after binning.
bool isGoodSize(const SimCamera& model, int width, int height, int bin) {
  if (!hasBin(model, bin) || width <= 0 || height <= 0 || width % 8 != 0 || height % 2 != 0 ||
      width > binnedWidth(model, bin) || height > binnedHeight(model, bin)) {
    return false;
  }
  // The ASI120 models for USB 2 send frames in blocks of 1024 pixels.
  return !isUsb2Model(model, "ZWO ASI120") || std::int64_t{width} * height % 1024 == 0;
}

// How long it takes to open a camera and to initialise it, at real timing.
std::int64_t openingUs(const SimCamera& model) {
  constexpr std::int64_t shortest = 50'000;
  constexpr std::int64_t longest = 500'000;
  if (isUsb2Model(model, "ZWO ASI120")) {
    return 2'500'000;
  }
  const std::int64_t pixels = std::int64_t{model.width} * model.height;
  return std::clamp(pixels / 100, shortest, longest);
}

// Waits for a frame, after the damaged ones that a fault lets arrive first. With the ASI120 and
// ASI130 for USB 2, the SDK forgets its time limit while damaged frames arrive.
bool waitForWholeFrame(Camera& camera, int waitMs) {
  const auto* damage = sdk().faults.first<DamagedFrames>();
  const bool hasLimit = waitMs >= 0 && !isUsb2Model(camera.model, "ZWO ASI120") &&
                        !isUsb2Model(camera.model, "ZWO ASI130");
  const std::int64_t end = sdk().clock.now() + std::int64_t{waitMs} * 1000;
  int left = waitMs;
  for (std::int32_t i = 0; damage != nullptr && i < damage->count; ++i) {
    if (!sdk().waitForFrame(camera, hasLimit ? left : -1)) {
      return false;
    }
    sdk().dropFrame(camera);
    left = static_cast<int>(std::max<std::int64_t>(end - sdk().clock.now(), 0) / 1000);
  }
  return sdk().waitForFrame(camera, waitMs);
}

// The outputs that can be forced.
constexpr FunctionOutputs outputs[] = {
    {"ASIGetCameraProperty",
     "result CameraID MaxHeight MaxWidth IsColorCam BayerPattern PixelSize MechanicalShutter "
     "ST4Port IsCoolerCam IsUSB3Host IsUSB3Camera ElecPerADU BitDepth IsTriggerCam"},
    {"ASIGetNumOfControls", "result count"},
    {"ASIGetControlCaps",
     "result MaxValue MinValue DefaultValue IsAutoSupported IsWritable ControlType"},
    {"ASIGetControlValue", "result value isAuto"},
    {"ASIGetROIFormat", "result width height bin imageType"},
};

}  // namespace

constinit const sim::Maker sim::maker{.sdkName = "ASICamera2",
                                      .defaultModels = defaultModels,
                                      .formatCodes = formatCodes,
                                      .patternCodes = patternCodes,
                                      .keepsSettings = true,
                                      .queue = {2, WhenFull::DropOldest},
                                      .widthStep = 8,
                                      .heightStep = 2,
                                      .setUp = setUp,
                                      .frameSettings = frameSettings,
                                      .failures = {.noCamera = ASI_ERROR_INVALID_ID,
                                                   .closed = ASI_ERROR_CAMERA_CLOSED,
                                                   .unplugged = ASI_ERROR_CAMERA_REMOVED,
                                                   .refused = ASI_ERROR_GENERAL_ERROR},
                                      .outputs = outputs};

extern "C" {

int ASIGetNumOfConnectedCameras() {
  return Call(__func__).run([] { return static_cast<int>(sdk().enumerate()); });
}

int ASIGetCameraProperty(ASI_CAMERA_INFO* info, int index) {
  Call call(__func__, index);
  return call.run([&]() -> int {
    const Camera* camera = sdk().enumerated(index);
    if (camera == nullptr || info == nullptr) {
      return ASI_ERROR_INVALID_INDEX;
    }
    if (!camera->isPlugged) {
      return ASI_ERROR_CAMERA_REMOVED;
    }
    const SimCamera& model = camera->model;
    *info = {};
    copyText(info->Name, textOf(model.name));
    call.set("CameraID", info->CameraID, model.id);
    call.set("MaxHeight", info->MaxHeight, model.height);
    call.set("MaxWidth", info->MaxWidth, model.width);
    call.set("IsColorCam", info->IsColorCam, model.isColor);
    call.set("BayerPattern", info->BayerPattern, model.bayerPattern);
    std::copy(std::begin(model.bins), std::end(model.bins), info->SupportedBins);
    std::copy(std::begin(model.formats), std::end(model.formats), info->SupportedVideoFormat);
    call.set("PixelSize", info->PixelSize, model.pixelSizeUm);
    call.set("MechanicalShutter", info->MechanicalShutter, 0);
    call.set("ST4Port", info->ST4Port, 1);
    call.set("IsCoolerCam", info->IsCoolerCam, model.isCooled);
    call.set("IsUSB3Host", info->IsUSB3Host, model.isUsb3Host);
    call.set("IsUSB3Camera", info->IsUSB3Camera, model.isUsb3Camera);
    call.set("ElecPerADU", info->ElecPerADU, 1);
    call.set("BitDepth", info->BitDepth, model.bitDepth);
    call.set("IsTriggerCam", info->IsTriggerCam, 0);
    call.wrote(Quoted{textOf(info->Name)}, " id ", info->CameraID);
    return ASI_SUCCESS;
  });
}

int ASIOpenCamera(int cameraId) {
  return Call(__func__, cameraId).run([&] { return sdk().openById(cameraId); });
}

int ASIInitCamera(int cameraId) {
  return Call(__func__, cameraId).onOpen(cameraId, [](Camera& camera) -> int {
    sdk().spend(openingUs(camera.model));
    for (const auto& [id, value] : sdk().keptSettings(camera.model)) {
      if (Control* control = camera.device.find(id)) {
        control->value = clamped(value, control->minimum, control->maximum);
      }
    }
    camera.device.isInitialised = true;
    return ASI_SUCCESS;
  });
}

int ASICloseCamera(int cameraId) {
  return Call(__func__, cameraId).run([&] { return sdk().closeById(cameraId); });
}

int ASIGetNumOfControls(int cameraId, int* count) {
  Call call(__func__, cameraId);
  return call.onOpen(cameraId, [&](Camera& camera) -> int {
    call.out("count", count, static_cast<int>(camera.device.controls.size()));
    return ASI_SUCCESS;
  });
}

int ASIGetControlCaps(int cameraId, int controlIndex, ASI_CONTROL_CAPS* caps) {
  Call call(__func__, cameraId, controlIndex);
  return call.onOpen(cameraId, [&](Camera& camera) -> int {
    const std::vector<Control>& controls = camera.device.controls;
    if (controlIndex < 0 || static_cast<std::size_t>(controlIndex) >= controls.size() ||
        caps == nullptr) {
      return ASI_ERROR_INVALID_CONTROL_TYPE;
    }
    const Control& control = controls[static_cast<std::size_t>(controlIndex)];
    *caps = {};
    copyText(caps->Name, control.name);
    copyText(caps->Description, control.description);
    call.set("MaxValue", caps->MaxValue, wholeNumber<long>(control.maximum));
    call.set("MinValue", caps->MinValue, wholeNumber<long>(control.minimum));
    call.set("DefaultValue", caps->DefaultValue, wholeNumber<long>(control.initial));
    call.set("IsAutoSupported", caps->IsAutoSupported, control.hasAuto() ? 1 : 0);
    call.set("IsWritable", caps->IsWritable, control.isWritable() ? 1 : 0);
    call.set("ControlType", caps->ControlType, control.id);
    call.wrote("type ", caps->ControlType, " [", caps->MinValue, ", ", caps->MaxValue,
               "] writable ", caps->IsWritable);
    return ASI_SUCCESS;
  });
}

int ASIGetControlValue(int cameraId, int controlType, long* value, int* isAuto) {
  Call call(__func__, cameraId, controlType);
  return call.onReady(cameraId, [&](Camera& camera) -> int {
    const Control* control = camera.device.find(controlType);
    if (control == nullptr) {
      return ASI_ERROR_INVALID_CONTROL_TYPE;
    }
    call.out("value", value, reading(camera, *control));
    call.out("isAuto", isAuto, control->isAuto ? 1 : 0);
    return ASI_SUCCESS;
  });
}

int ASISetControlValue(int cameraId, int controlType, long value, int isAuto) {
  Call call(__func__, cameraId, controlType, value, isAuto);
  return call.onReady(cameraId, [&](Camera& camera) -> int {
    Device& device = camera.device;
    Control* control = device.find(controlType);
    if (control == nullptr) {
      return ASI_ERROR_INVALID_CONTROL_TYPE;
    }
    if (!control->isWritable() || (controlType == ASI_OFFSET && camera.model.refusesOffset != 0)) {
      return ASI_ERROR_GENERAL_ERROR;
    }
    control->value = clamped(static_cast<double>(value), control->minimum, control->maximum);
    control->isAuto = control->hasAuto() && isAuto != ASI_FALSE;
    if (controlType == ASI_COOLER_ON || controlType == ASI_TARGET_TEMP) {
      device.cooler.set(sdk().clock.now(), device.value(ASI_COOLER_ON) != 0,
                        device.value(ASI_TARGET_TEMP));
    } else {
      sdk().keptSettings(camera.model)[controlType] = control->value;
    }
    sdk().changed(camera);
    return ASI_SUCCESS;
  });
}

int ASISetROIFormat(int cameraId, int width, int height, int bin, int imageType) {
  Call call(__func__, cameraId, width, height, bin, imageType);
  return call.onReady(cameraId, [&](Camera& camera) -> int {
    Device& device = camera.device;
    const SimCamera& model = camera.model;
    if (device.stream.isRunning()) {
      return ASI_ERROR_INVALID_SEQUENCE;
    }
    if (!contains(model.formats, ASI_IMG_END, imageType)) {
      return ASI_ERROR_INVALID_IMGTYPE;
    }
    if (!isGoodSize(model, width, height, bin)) {
      return ASI_ERROR_INVALID_SIZE;
    }
    device.bin = bin;
    device.format = imageType;
    // An even start keeps the Bayer pattern the same.
    device.region = {(binnedWidth(model, bin) - width) / 2 & ~1,
                     (binnedHeight(model, bin) - height) / 2 & ~1, width, height};
    return ASI_SUCCESS;
  });
}

int ASIGetROIFormat(int cameraId, int* width, int* height, int* bin, int* imageType) {
  Call call(__func__, cameraId);
  return call.onReady(cameraId, [&](Camera& camera) -> int {
    const Device& device = camera.device;
    call.out("width", width, device.region.width);
    call.out("height", height, device.region.height);
    call.out("bin", bin, device.bin);
    call.out("imageType", imageType, device.format);
    return ASI_SUCCESS;
  });
}

int ASISetStartPos(int cameraId, int x, int y) {
  return Call(__func__, cameraId, x, y).onReady(cameraId, [&](Camera& camera) -> int {
    Device& device = camera.device;
    Region& region = device.region;
    if (x < 0 || y < 0 || x > binnedWidth(camera.model, device.bin) - region.width ||
        y > binnedHeight(camera.model, device.bin) - region.height) {
      return ASI_ERROR_OUTOF_BOUNDARY;
    }
    region.x = x;
    region.y = y;
    sdk().changed(camera);
    return ASI_SUCCESS;
  });
}

int ASIStartVideoCapture(int cameraId) {
  return Call(__func__, cameraId).onReady(cameraId, [](Camera& camera) -> int {
    if (!camera.device.stream.isRunning()) {
      sdk().startStream(camera, false);
    }
    return ASI_SUCCESS;
  });
}

int ASIStopVideoCapture(int cameraId) {
  return Call(__func__, cameraId).onReady(cameraId, [](Camera& camera) -> int {
    sdk().stopStream(camera);
    return ASI_SUCCESS;
  });
}

int ASIGetVideoData(int cameraId, unsigned char* buffer, long bufferSize, int waitMs) {
  Call call(__func__, cameraId, Buffer{buffer}, bufferSize, waitMs);
  return call.onReady(cameraId, [&](Camera& camera) -> int {
    if (!camera.device.stream.isRunning() || buffer == nullptr) {
      return ASI_ERROR_GENERAL_ERROR;
    }
    if (bufferSize < frameBytes(frameSettings(camera))) {
      ++sdk().counts.shortBuffers;
      return ASI_ERROR_BUFFER_TOO_SMALL;
    }
    if (!waitForWholeFrame(camera, waitMs)) {
      return ASI_ERROR_TIMEOUT;
    }
    sdk().takeFrame(camera, buffer);
    return ASI_SUCCESS;
  });
}

}  // extern "C"

}  // namespace orvane
