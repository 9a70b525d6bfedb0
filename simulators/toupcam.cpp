// ToupTek's toupcam, simulated.
//
// The user must poll for frames: a callback is refused, because the simulators have no threads. The
// depth option determines the depth of raw frames. Colour-processed frames have 24 bits per pixel
// from colour cameras and 8 from monochrome ones.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "core/call.hpp"
#include "core/sdk.hpp"
#include "simulated_sdk.hpp"
#include "toupcam_text.hpp"
#include "vendors/sdk/toupcam_sdk.hpp"

namespace orvane {
namespace {

using namespace sim;

#ifdef _WIN32
constexpr bool isWindows = true;
#else
constexpr bool isWindows = false;
#endif

// The maker's values that the library does not use.
enum : unsigned {
  TOUPCAM_OPTION_BINNING = 23,
  TOUPCAM_OPTION_UPSIDE_DOWN = 35,
  TOUPCAM_OPTION_BYTEORDER = 42,  // of colour-processed frames: 0 red first, 1 blue first
};

enum : unsigned long long {
  TOUPCAM_FLAG_CMOS = 0x1,
  TOUPCAM_FLAG_ROI_HARDWARE = 0x8,
  TOUPCAM_FLAG_ST4 = 0x200,
  TOUPCAM_FLAG_GETTEMPERATURE = 0x400,
  TOUPCAM_FLAG_RAW10 = 0x1000,
  TOUPCAM_FLAG_RAW12 = 0x2000,
  TOUPCAM_FLAG_RAW14 = 0x4000,
  TOUPCAM_FLAG_RAW16 = 0x8000,
  TOUPCAM_FLAG_FAN = 0x10000,
  TOUPCAM_FLAG_TEC_ONOFF = 0x20000,
  TOUPCAM_FLAG_BLACKLEVEL = 0x400000,
  TOUPCAM_FLAG_DDR = 0x2000000,
};

using Hresult = std::int32_t;

constexpr Hresult S_OK = 0;
constexpr Hresult S_FALSE = 1;                  // the value was already set
constexpr Hresult E_UNEXPECTED = -2147418113;   // 0x8000FFFF
constexpr Hresult E_NOTIMPL = -2147467263;      // 0x80004001
constexpr Hresult E_POINTER = -2147467261;      // 0x80004003
constexpr Hresult E_INVALIDARG = -2147024809;   // 0x80070057
constexpr Hresult E_GEN_FAILURE = -2147024865;  // 0x8007001F: cable or power
constexpr Hresult E_BUSY = -2147024726;         // 0x800700AA

// Settings with their own functions instead of an option number.
enum : int {
  settingAutoExposure = 0x10000,
  settingExposure,
  settingGain,
};

constexpr std::int32_t fourCc(std::string_view text) {
  std::uint32_t code = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    code |= std::uint32_t{static_cast<unsigned char>(text[i])} << (8 * i);
  }
  return static_cast<std::int32_t>(code);
}

constexpr std::int32_t rawRggb = fourCc("RGGB");
constexpr std::int32_t rawBggr = fourCc("BGGR");
constexpr std::int32_t rawGrbg = fourCc("GRBG");
constexpr std::int32_t rawGbrg = fourCc("GBRG");
constexpr std::int32_t rawYyyy = fourCc("YYYY");

constexpr const char* defaultModels[] = {"SkyRaiderDS26CTEC", "SkyRaiderDS26MTEC", "SkyRaiderDS6.3",
                                         "SkyRaider2.3(USB2.0)"};

// The patterns are those of frames delivered with the default of the upside-down option.
constexpr CodeOf patternCodes[] = {
    {"mono", rawYyyy}, {"RGGB", rawRggb}, {"BGGR", rawBggr}, {"GRBG", rawGrbg}, {"GBRG", rawGbrg}};

ToupcamText idOf(const SimCamera& model) {
  return nativeText(textOf(model.key)).substr(0, textFieldLength);
}

unsigned long long flagsOf(const SimCamera& model) {
  unsigned long long flags = TOUPCAM_FLAG_CMOS | TOUPCAM_FLAG_ROI_HARDWARE;
  const auto add = [&flags](bool isSo, unsigned long long more) { flags |= isSo ? more : 0; };
  const bool isCooled = model.isCooled != 0;
  const bool isUsb3 = model.isUsb3Camera != 0;
  add(model.isColor == 0, TOUPCAM_FLAG_MONO);
  add(isUsb3, TOUPCAM_FLAG_USB30);
  add(isUsb3 && model.isUsb3Host == 0, TOUPCAM_FLAG_USB30_OVER_USB20);
  add(isCooled, TOUPCAM_FLAG_TEC);
  add(isCooled, TOUPCAM_FLAG_TEC_ONOFF | TOUPCAM_FLAG_FAN | TOUPCAM_FLAG_DDR);
  add(!isCooled, TOUPCAM_FLAG_ST4);
  add(model.hasTemperature != 0, TOUPCAM_FLAG_GETTEMPERATURE);
  add(hasOffset(model), TOUPCAM_FLAG_BLACKLEVEL);
  add(model.bitDepth == 10, TOUPCAM_FLAG_RAW10);
  add(model.bitDepth == 12, TOUPCAM_FLAG_RAW12);
  add(model.bitDepth == 14, TOUPCAM_FLAG_RAW14);
  add(model.bitDepth == 16, TOUPCAM_FLAG_RAW16);
  return flags;
}

// The maker's model data. It must stay valid while the library is loaded, even if the simulated
// cameras change, so no entry is ever removed.
const ToupcamModelV2* lastingModel(const ToupcamText& name, const ToupcamModelV2& model) {
  static std::deque<std::pair<ToupcamText, ToupcamModelV2>> models;
  const auto facts = [](const ToupcamModelV2& each) {
    return std::tuple(each.flag, each.xpixsz, each.ypixsz, each.res[0].width, each.res[0].height);
  };
  for (const auto& [knownName, known] : models) {
    if (knownName == name && facts(known) == facts(model)) {
      return &known;
    }
  }
  auto& [lastingName, lasting] = models.emplace_back(name, model);
  lasting.name = lastingName.c_str();
  return &lasting;
}

void describe(Call& call, const SimCamera& camera, ToupcamDeviceV2& device) {
  const ToupcamText name = nativeText(textOf(camera.name));
  ToupcamModelV2 model{};
  call.set("flag", model.flag, flagsOf(camera));
  model.maxspeed = 2;
  model.preview = 1;
  model.still = 1;
  model.maxfanspeed = camera.isCooled != 0 ? 1 : 0;
  call.set("xpixsz", model.xpixsz, static_cast<float>(camera.pixelSizeUm));
  call.set("ypixsz", model.ypixsz, static_cast<float>(camera.pixelSizeUm));
  call.set("width", model.res[0].width, static_cast<unsigned>(camera.width));
  call.set("height", model.res[0].height, static_cast<unsigned>(camera.height));
  copyText(device.displayname, name);
  copyText(device.id, idOf(camera));
  device.model = lastingModel(name, model);
}

void setUp(Camera& camera) {
  const SimCamera& model = camera.model;
  const double initialGain = clamped(100, model.gainMin, model.gainMax);
  camera.device.controls = {
      {TOUPCAM_OPTION_RAW, 0, 1, 0},
      onlyIf(model.bitDepth > 8, {TOUPCAM_OPTION_BITDEPTH, 0, 1, 0}),
      {TOUPCAM_OPTION_BINNING, 1, 8, 1},
      {TOUPCAM_OPTION_UPSIDE_DOWN, 0, 1, isWindows ? 1.0 : 0.0},
      {TOUPCAM_OPTION_BYTEORDER, 0, 1, isWindows ? 1.0 : 0.0},
      {settingAutoExposure, 0, 2, 1},
      {settingExposure, model.exposureMinUs, model.exposureMaxUs, usualExposureUs(model)},
      {settingGain, model.gainMin, model.gainMax, initialGain},
      onlyIf(hasOffset(model), {TOUPCAM_OPTION_BLACKLEVEL, 0, 0, 0})};
}

bool isOn(const Device& device, int option) {
  return device.value(option) != 0;
}

// Bits per sample with the present depth option.
int sampleBits(const Camera& camera) {
  return isOn(camera.device, TOUPCAM_OPTION_BITDEPTH) ? std::clamp(camera.model.bitDepth, 8, 16)
                                                      : 8;
}

constexpr std::pair<std::int32_t, BayerPattern> bayerPatterns[] = {
    {rawBggr, BayerPattern::Bggr}, {rawGrbg, BayerPattern::Grbg}, {rawGbrg, BayerPattern::Gbrg}};

// The Bayer patterns of frames whose rows are in the reverse order.
constexpr std::pair<std::int32_t, std::int32_t> reversedPatterns[] = {
    {rawRggb, rawGbrg}, {rawGbrg, rawRggb}, {rawBggr, rawGrbg}, {rawGrbg, rawBggr}};

// The frames' Bayer pattern with the present upside-down option. If the option differs from its
// default, the first row has the other colours, unless the number of rows is odd.
std::int32_t deliveredPattern(const Camera& camera) {
  const std::int32_t usual = camera.model.bayerPattern;
  const bool isReversed = isOn(camera.device, TOUPCAM_OPTION_UPSIDE_DOWN) != isWindows;
  return isReversed && camera.model.height % 2 == 0 ? lookUp(reversedPatterns, usual, usual)
                                                    : usual;
}

Layout layoutOf(const Camera& camera) {
  if (isOn(camera.device, TOUPCAM_OPTION_RAW)) {
    return isOn(camera.device, TOUPCAM_OPTION_BITDEPTH) ? Layout::Raw16 : Layout::Raw8;
  }
  if (camera.model.isColor == 0) {
    return Layout::Luma8;
  }
  return isOn(camera.device, TOUPCAM_OPTION_BYTEORDER) ? Layout::Bgr24 : Layout::Rgb24;
}

FrameSettings frameSettings(const Camera& camera) {
  const SimCamera& model = camera.model;
  const Device& device = camera.device;
  FrameSettings settings =
      commonSettings(camera, lookUp(bayerPatterns, deliveredPattern(camera), BayerPattern::Rggb),
                     {settingExposure, settingGain, TOUPCAM_OPTION_BLACKLEVEL});
  settings.layout = layoutOf(camera);
  settings.alignment = Alignment::Right;
  settings.isUpsideDown = isOn(device, TOUPCAM_OPTION_UPSIDE_DOWN);
  settings.isTurned = settings.isUpsideDown != isWindows;
  settings.bin = static_cast<std::int32_t>(device.value(TOUPCAM_OPTION_BINNING));
  if (settings.bin > 1) {
    // The region is in unbinned pixels. Binned lengths are even, like the Bayer pattern.
    const auto binned = [&](std::int32_t length) { return length / settings.bin & ~1; };
    const Region& region = device.region;
    settings.region = {binned(region.x), binned(region.y), binned(region.width),
                       binned(region.height)};
  }
  settings.gain = gainInPercent(model, device.value(settingGain));
  if (isOn(device, settingAutoExposure) && !isOn(device, TOUPCAM_OPTION_RAW)) {
    settings.exposureUs = usualExposureUs(model);
    settings.gain = 1;
  }
  settings.pedestal = device.value(TOUPCAM_OPTION_BLACKLEVEL) / (1 << sampleBits(camera));
  return settings;
}

// Reports the range of one of the device's settings.
template <class Number>
Hresult getRange(Call&& call, HToupcam handle, int id, Number* nMin, Number* nMax, Number* nDef) {
  return call.onOpen(handle, [&](Camera& camera) -> Hresult {
    const Control& control = *camera.device.find(id);
    call.out("nMin", nMin, wholeNumber<Number>(control.minimum));
    call.out("nMax", nMax, wholeNumber<Number>(control.maximum));
    call.out("nDef", nDef, wholeNumber<Number>(control.initial));
    return S_OK;
  });
}

// Sets one of the device's settings.
Hresult put(Camera& camera, int id, double value) {
  Control& control = *camera.device.find(id);
  if (!(value >= control.minimum && value <= control.maximum)) {
    return E_INVALIDARG;
  }
  if (control.value == value) {
    return S_FALSE;
  }
  control.value = value;
  sdk().changed(camera);
  return S_OK;
}

// Sets an option that changes the frames' geometry or depth.
Hresult putGeometry(Camera& camera, int option, double value) {
  const Hresult result = put(camera, option, value);
  if (result == S_OK) {
    sdk().restartFrame(camera);
  }
  return result;
}

Hresult putBlackLevel(Camera& camera, int value) {
  Control* control = camera.device.find(TOUPCAM_OPTION_BLACKLEVEL);
  if (control == nullptr) {
    return E_NOTIMPL;
  }
  control->maximum = 31 << (sampleBits(camera) - 8);
  return put(camera, TOUPCAM_OPTION_BLACKLEVEL, value);
}

Hresult putOption(Camera& camera, unsigned option, int value) {
  switch (option) {
    case TOUPCAM_OPTION_RAW:
      return camera.device.stream.isRunning() ? E_UNEXPECTED
                                              : put(camera, TOUPCAM_OPTION_RAW, value);
    case TOUPCAM_OPTION_BLACKLEVEL:
      return putBlackLevel(camera, value);
    case TOUPCAM_OPTION_BINNING:
      return hasBin(camera.model, value) ? putGeometry(camera, TOUPCAM_OPTION_BINNING, value)
                                         : E_INVALIDARG;
    case TOUPCAM_OPTION_BITDEPTH:
      return camera.device.find(TOUPCAM_OPTION_BITDEPTH) != nullptr
                 ? putGeometry(camera, TOUPCAM_OPTION_BITDEPTH, value)
                 : E_NOTIMPL;
    case TOUPCAM_OPTION_UPSIDE_DOWN:
    case TOUPCAM_OPTION_BYTEORDER:
      return putGeometry(camera, static_cast<int>(option), value);
    default:
      return E_NOTIMPL;
  }
}

// The outputs that can be forced.
constexpr FunctionOutputs outputs[] = {
    {"Toupcam_EnumV2", "result flag xpixsz ypixsz width height model"},
    {"Toupcam_Close", ""},
    {"Toupcam_get_RawFormat", "result fourCc bitsPerPixel"},
    {"Toupcam_get_ExpTimeRange", "result nMin nMax nDef"},
    {"Toupcam_get_ExpoAGainRange", "result nMin nMax nDef"},
    {"Toupcam_get_FinalSize", "result width height"},
    {"Toupcam_PullImageWithRowPitch", "result width height"},
    {"Toupcam_get_Temperature", "result tenthsOfDegree"},
};

}  // namespace

constinit const sim::Maker sim::maker{.sdkName = "toupcam",
                                      .defaultModels = defaultModels,
                                      .patternCodes = patternCodes,
                                      .lacksDepthAt8Bits = true,
                                      .queue = {4, WhenFull::Pause},
                                      .setUp = setUp,
                                      .frameSettings = frameSettings,
                                      .failures = {.noCamera = E_POINTER,
                                                   .closed = E_INVALIDARG,
                                                   .unplugged = E_GEN_FAILURE,
                                                   .refused = E_UNEXPECTED},
                                      .outputs = outputs};

extern "C" {

unsigned Toupcam_EnumV2(ToupcamDeviceV2* devices) {
  Call call(__func__, Buffer{devices});
  return call.run([&]() -> unsigned {
    const auto count = static_cast<unsigned>(sdk().enumerate());
    for (unsigned i = 0; devices != nullptr && i < std::min<unsigned>(count, TOUPCAM_MAX); ++i) {
      const SimCamera& camera = sdk().enumerated(i)->model;
      devices[i] = {};
      describe(call, camera, devices[i]);
      if (Call::forcedOutput("model") == i) {
        devices[i].model = nullptr;
      }
      call.wrote(Quoted{textOf(camera.name)});
    }
    return count;
  });
}

HToupcam Toupcam_Open(const ToupcamChar* id) {
  const ToupcamText wanted = id == nullptr ? ToupcamText() : textIn(id);
  const std::string wantedName = plainText(wanted);
  return Call(__func__, id == nullptr ? Quoted{} : Quoted{wantedName}).run([&]() -> HToupcam {
    const std::size_t count = sdk().enumerate();
    for (std::size_t i = 0; i < count; ++i) {
      Camera& camera = *sdk().enumerated(static_cast<std::int64_t>(i));
      if (id != nullptr && idOf(camera.model) != wanted) {
        continue;
      }
      if (camera.model.isBusy != 0 || camera.device.isOpen) {
        return nullptr;
      }
      return sdk().openHandle(camera);
    }
    return nullptr;
  });
}

void Toupcam_Close(HToupcam handle) {
  Call(__func__, handle).run([&] { static_cast<void>(sdk().closeHandle(handle)); });
}

Hresult Toupcam_get_MaxBitDepth(HToupcam handle) {
  return Call(__func__, handle).onOpen(handle, [](Camera& camera) -> Hresult {
    return camera.model.bitDepth;
  });
}

Hresult Toupcam_get_RawFormat(HToupcam handle, unsigned* fourCc, unsigned* bitsPerPixel) {
  Call call(__func__, handle);
  return call.onOpen(handle, [&](Camera& camera) -> Hresult {
    call.out("fourCc", fourCc, static_cast<unsigned>(deliveredPattern(camera)));
    call.out("bitsPerPixel", bitsPerPixel, static_cast<unsigned>(sampleBits(camera)));
    return S_OK;
  });
}

Hresult Toupcam_get_ExpTimeRange(HToupcam handle, unsigned* nMin, unsigned* nMax, unsigned* nDef) {
  return getRange(Call(__func__, handle), handle, settingExposure, nMin, nMax, nDef);
}

Hresult Toupcam_get_ExpoAGainRange(HToupcam handle, unsigned short* nMin, unsigned short* nMax,
                                   unsigned short* nDef) {
  return getRange(Call(__func__, handle), handle, settingGain, nMin, nMax, nDef);
}

Hresult Toupcam_put_Option(HToupcam handle, unsigned option, int value) {
  return Call(__func__, handle, option, value).onOpen(handle, [&](Camera& camera) -> Hresult {
    return putOption(camera, option, value);
  });
}

Hresult Toupcam_put_Roi(HToupcam handle, unsigned x, unsigned y, unsigned width, unsigned height) {
  return Call(__func__, handle, x, y, width, height).onOpen(handle, [&](Camera& camera) -> Hresult {
    const auto isGood = [](unsigned start, unsigned length, std::int32_t limit) {
      constexpr unsigned smallest = 8;
      return start % 2 == 0 && length % 2 == 0 && length >= smallest &&
             std::int64_t{start} + length <= limit;
    };
    if (x == 0 && y == 0 && width == 0 && height == 0) {
      Sdk::showWholeSensor(camera, 1);
    } else if (isGood(x, width, camera.model.width) && isGood(y, height, camera.model.height)) {
      camera.device.region = {static_cast<std::int32_t>(x), static_cast<std::int32_t>(y),
                              static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)};
    } else {
      return E_INVALIDARG;
    }
    sdk().restartFrame(camera);
    return S_OK;
  });
}

Hresult Toupcam_get_FinalSize(HToupcam handle, int* width, int* height) {
  Call call(__func__, handle);
  return call.onOpen(handle, [&](Camera& camera) -> Hresult {
    const Region region = frameSettings(camera).region;
    call.out("width", width, region.width);
    call.out("height", height, region.height);
    return S_OK;
  });
}

Hresult Toupcam_StartPullModeWithCallback(HToupcam handle, ToupcamEventCallback callback,
                                          void* context) {
  Call call(__func__, handle, callback == nullptr ? "null" : "callback",
            context == nullptr ? "null" : "context");
  return call.onOpen(handle, [&](Camera& camera) -> Hresult {
    if (callback != nullptr) {
      return E_NOTIMPL;
    }
    if (camera.device.stream.isRunning()) {
      return E_BUSY;
    }
    sdk().startStream(camera, false);
    return S_OK;
  });
}

Hresult Toupcam_PullImageWithRowPitch(HToupcam handle, void* data, int bits, int rowPitch,
                                      unsigned* width, unsigned* height) {
  Call call(__func__, handle, Buffer{data}, bits, rowPitch);
  return call.onOpen(handle, [&](Camera& camera) -> Hresult {
    if (!camera.device.stream.isRunning()) {
      return E_UNEXPECTED;
    }
    const FrameSettings* frame = sdk().waitingFrame(camera);
    if (frame == nullptr) {
      return TOUPCAM_E_PENDING;
    }
    const bool isRaw = isOn(camera.device, TOUPCAM_OPTION_RAW);
    const std::int64_t pixelBytes = bytesPerPixel(frame->layout);
    const std::int64_t packed = frame->region.width * pixelBytes;
    const std::int64_t padded = isRaw ? packed : (packed + 3) / 4 * 4;
    const std::int64_t pitch = rowPitch == 0 ? padded : rowPitch == -1 ? packed : rowPitch;
    if (pitch < packed || (!isRaw && bits != 0 && bits != 8 * pixelBytes)) {
      return E_INVALIDARG;
    }
    call.out("width", width, static_cast<unsigned>(frame->region.width));
    call.out("height", height, static_cast<unsigned>(frame->region.height));
    if (data != nullptr) {
      sdk().takeFrame(camera, static_cast<std::uint8_t*>(data), pitch);
    }
    return S_OK;
  });
}

Hresult Toupcam_Stop(HToupcam handle) {
  return Call(__func__, handle).onOpen(handle, [](Camera& camera) -> Hresult {
    sdk().stopStream(camera);
    return S_OK;
  });
}

Hresult Toupcam_put_AutoExpoEnable(HToupcam handle, int mode) {
  return Call(__func__, handle, mode).onOpen(handle, [&](Camera& camera) -> Hresult {
    return put(camera, settingAutoExposure, mode);
  });
}

Hresult Toupcam_put_ExpoTime(HToupcam handle, unsigned microseconds) {
  return Call(__func__, handle, microseconds).onOpen(handle, [&](Camera& camera) -> Hresult {
    return put(camera, settingExposure, microseconds);
  });
}

Hresult Toupcam_put_ExpoAGain(HToupcam handle, unsigned short percent) {
  return Call(__func__, handle, percent).onOpen(handle, [&](Camera& camera) -> Hresult {
    return put(camera, settingGain, percent);
  });
}

Hresult Toupcam_get_Temperature(HToupcam handle, short* tenthsOfDegree) {
  Call call(__func__, handle);
  return call.onOpen(handle, [&](Camera& camera) -> Hresult {
    if (camera.model.hasTemperature == 0) {
      return E_NOTIMPL;
    }
    const double degrees = camera.device.cooler.temperature(sdk().clock.now());
    call.out("tenthsOfDegree", tenthsOfDegree, static_cast<short>(std::lround(10 * degrees)));
    return S_OK;
  });
}

}  // extern "C"

}  // namespace orvane
