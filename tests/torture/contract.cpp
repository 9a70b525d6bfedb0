// The contract of the thirteen functions, step by step.
#include "torture/contract.hpp"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <stdexcept>

namespace orvane::testing {

namespace {

constexpr std::size_t asi = 0;
constexpr std::size_t playerOne = 1;
constexpr std::size_t qhy = 2;
constexpr std::size_t toupTek = 3;

constexpr std::int64_t noFrameWaiting = -2147483638;  // ToupTek: 0x8000000A

using Inputs = std::initializer_list<std::string>;

const SdkCall& ask(Transcript& did, std::size_t family, const char* function, Inputs inputs) {
  return did.call(sdkNames[family], function, inputs);
}

// The same where the library may allocate before the call.
const SdkCall& askFreely(Transcript& did, std::size_t family, const char* function, Inputs inputs) {
  did.allocate();
  return ask(did, family, function, inputs);
}

// What the library itself refuses; there may be no memory for its words.
[[noreturn]] void refuse(Transcript& did, const char* message) {
  did.allocate();
  throw std::runtime_error(message);
}

// The first failed result ends what was being done. ToupTek fails with negative results, the others
// with any but 0.
const SdkCall& checked(const SdkCall& call, const std::string& label) {
  const bool isToupTek = call.function.starts_with("Toupcam_");
  const std::int64_t code = call.code();
  if (isToupTek ? code < 0 : code != 0) {
    throw std::runtime_error(label + ": " + std::to_string(code));
  }
  return call;
}

// Failures in here cost what is in here, and nobody hears of them.
template <class Body>
void swallowing(Body body) {
  try {
    body();
  } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): that is the purpose
  }
}

std::string textOf(const char (&field)[256]) {
  return {field, std::find(field, field + sizeof field, '\0')};
}

template <std::size_t size>
std::vector<int> listOf(const std::int32_t (&numbers)[size], int end, std::size_t most) {
  std::vector<int> list;
  for (std::size_t i = 0; i < std::min(size, most) && numbers[i] != end; ++i) {
    list.push_back(numbers[i]);
  }
  return list;
}

int bayerOfNumber(int number) {
  constexpr int codes[] = {8, 11, 9, 10};
  return number >= 0 && number < 4 ? codes[number] : 0;
}

int bayerOfLetters(std::int64_t letters) {
  return letters == 0x42474752   ? 8   // RGGB
         : letters == 0x52474742 ? 11  // BGGR
         : letters == 0x47425247 ? 9   // GRBG
         : letters == 0x47524247 ? 10  // GBRG
                                 : 0;
}

// ZWO numbers raw 16 bit and RGB the other way round.
int asiFormat(int format) {
  return format == 1 ? 2 : format == 2 ? 1 : format;
}

std::int64_t bytesPerPixel(int format) {
  return format == 1 ? 2 : format == 2 ? 3 : 1;
}

bool contains(const std::vector<int>& list, int number) {
  return std::find(list.begin(), list.end(), number) != list.end();
}

std::string jsonList(const std::vector<int>& numbers) {
  std::string text = "[";
  for (const int number : numbers) {
    text += (text.size() > 1 ? "," : "") + std::to_string(number);
  }
  return text + "]";
}

}  // namespace

int Contract::scan(Transcript& did) {
  if (isOpen()) {
    error_ = "Stop the preview before rescanning";
    return -1;
  }
  catalogue_.clear();
  error_.clear();
  libraries_.clear();
  for (std::size_t family = 0; family < sdkCount; ++family) {
    const std::string name = sdkNames[family];
    if (!isLoaded_[family]) {
      did.allocate();
      isLoaded_[family] = did.load(name);
    }
    if (!isLoaded_[family]) {
      continue;
    }
    did.allocate();
    libraries_ += (libraries_.empty() ? "" : ", ") + name;
    try {
      switch (family) {
        case asi:
          discoverAsi(did);
          break;
        case playerOne:
          discoverPlayerOne(did);
          break;
        case qhy:
          discoverQhy(did);
          break;
        default:
          discoverToupTek(did);
      }
    } catch (const std::exception& failure) {
      error_ += (error_.empty() ? "" : "; ") + std::string(failure.what());
    }
  }
  return static_cast<int>(catalogue_.size());
}

const SimCamera& Contract::shown(std::size_t family, const std::string& name) const {
  for (const SimCamera& camera : world_[family]) {
    if (textOf(camera.name) == name) {
      return camera;
    }
  }
  throw Violation{"no camera is named " + name};
}

void Contract::discoverAsi(Transcript& did) {
  const std::int64_t count = ask(did, asi, "ASIGetNumOfConnectedCameras", {}).code();
  for (std::int64_t i = 0; i < count; ++i) {
    const SdkCall& property =
        checked(askFreely(did, asi, "ASIGetCameraProperty", {logged(i)}), "ASIGetCameraProperty");
    const SimCamera& model = shown(asi, property.texts.at(0));
    Camera camera;
    camera.family = asi;
    camera.id = logged(std::int64_t{model.id});
    camera.name = textOf(model.name);
    camera.maxWidth = model.width;
    camera.maxHeight = model.height;
    camera.bitDepth = model.bitDepth;
    camera.pixelSizeUm = model.pixelSizeUm;
    camera.isColor = model.isColor != 0;
    camera.isCooled = model.isCooled != 0;
    camera.isUsb3Camera = model.isUsb3Camera != 0;
    camera.isUsb3Host = model.isUsb3Host != 0;
    camera.bayer = camera.isColor ? bayerOfNumber(model.mosaic) : 0;
    camera.bins = listOf(model.bins, 0, 16);
    camera.formats = listOf(model.formats, -1, 8);
    std::transform(camera.formats.begin(), camera.formats.end(), camera.formats.begin(), asiFormat);
    if (askFreely(did, asi, "ASIOpenCamera", {camera.id}).code() == 0) {
      swallowing([&] {
        checked(ask(did, asi, "ASIInitCamera", {camera.id}), "ASIInitCamera");
        const SdkCall& controls =
            checked(ask(did, asi, "ASIGetNumOfControls", {camera.id}), "ASI controls");
        const auto controlCount = static_cast<std::int64_t>(controls.number(0));
        for (std::int64_t c = 0; c < controlCount; ++c) {
          const SdkCall& caps = ask(did, asi, "ASIGetControlCaps", {camera.id, logged(c)});
          if (caps.code() != 0) {
            continue;
          }
          if (caps.number(0) == 0) {
            camera.minGain = static_cast<int>(caps.number(1));
            camera.maxGain = static_cast<int>(caps.number(2));
          } else if (caps.number(0) == 1) {
            camera.maxExposureUs = static_cast<std::int64_t>(caps.number(2));
          }
        }
      });
      ask(did, asi, "ASICloseCamera", {camera.id});
    }
    did.allocate();
    catalogue_.push_back(camera);
  }
}

void Contract::discoverPlayerOne(Transcript& did) {
  const std::int64_t count = ask(did, playerOne, "POAGetCameraCount", {}).code();
  for (std::int64_t i = 0; i < count; ++i) {
    const SdkCall& properties = checked(
        askFreely(did, playerOne, "POAGetCameraProperties", {logged(i)}), "POAGetCameraProperties");
    const SimCamera& model = shown(playerOne, properties.texts.at(0));
    Camera camera;
    camera.family = playerOne;
    camera.id = logged(std::int64_t{model.id});
    camera.name = textOf(model.name);
    camera.maxWidth = model.width;
    camera.maxHeight = model.height;
    camera.bitDepth = model.bitDepth;
    camera.pixelSizeUm = model.pixelSizeUm;
    camera.isColor = model.isColor != 0;
    camera.isCooled = model.isCooled != 0;
    camera.isUsb3Camera = model.isUsb3Host != 0;  // the one flag that this SDK has
    camera.isUsb3Host = model.isUsb3Host != 0;
    camera.bayer = camera.isColor ? bayerOfNumber(model.mosaic) : 0;
    camera.bins = listOf(model.bins, 0, 8);
    camera.formats = listOf(model.formats, -1, 8);
    if (askFreely(did, playerOne, "POAOpenCamera", {camera.id}).code() == 0) {
      swallowing([&] {
        checked(ask(did, playerOne, "POAInitCamera", {camera.id}), "POAInitCamera");
        const SdkCall& gain =
            ask(did, playerOne, "POAGetConfigAttributesByConfigID", {camera.id, "1"});
        if (gain.code() == 0) {
          camera.minGain = static_cast<int>(gain.number(0));
          camera.maxGain = static_cast<int>(gain.number(1));
        }
        const SdkCall& exposure =
            ask(did, playerOne, "POAGetConfigAttributesByConfigID", {camera.id, "0"});
        if (exposure.code() == 0) {
          camera.maxExposureUs = static_cast<std::int64_t>(exposure.number(1));
        }
      });
      ask(did, playerOne, "POACloseCamera", {camera.id});
    }
    did.allocate();
    catalogue_.push_back(camera);
  }
}

void Contract::discoverQhy(Transcript& did) {
  if (!isQhyReady_) {
    checked(ask(did, qhy, "InitQHYCCDResource", {}), "InitQHYCCDResource");
    isQhyReady_ = true;
  }
  const std::int64_t count = ask(did, qhy, "ScanQHYCCD", {}).code();
  if (count > 128) {
    throw std::runtime_error("QHY scan failed");
  }
  for (std::int64_t i = 0; i < count; ++i) {
    const SdkCall& id = checked(askFreely(did, qhy, "GetQHYCCDId", {logged(i)}), "GetQHYCCDId");
    Camera camera;
    camera.family = qhy;
    camera.id = quoted(id.texts.at(0));
    const SdkCall& model = askFreely(did, qhy, "GetQHYCCDModel", {camera.id});
    camera.name = model.code() == 0 ? model.texts.at(0) : "QHYCCD";
    const std::string handle = askFreely(did, qhy, "OpenQHYCCD", {camera.id}).result;
    if (handle == "null") {
      continue;
    }
    try {
      examineQhy(handle, camera, did);
      did.allocate();
      catalogue_.push_back(camera);
    } catch (const std::exception&) {
      ask(did, qhy, "CloseQHYCCD", {handle});
      throw;
    }
    ask(did, qhy, "CloseQHYCCD", {handle});
  }
}

void Contract::examineQhy(const std::string& handle, Camera& camera, Transcript& did) {
  const auto isAvailable = [&](int control) {
    return askFreely(did, qhy, "IsQHYCCDControlAvailable", {handle, std::to_string(control)})
        .code();
  };
  checked(ask(did, qhy, "SetQHYCCDStreamMode", {handle, "1"}), "SetQHYCCDStreamMode");
  checked(ask(did, qhy, "InitQHYCCD", {handle}), "InitQHYCCD");
  const SdkCall& chip = checked(ask(did, qhy, "GetQHYCCDChipInfo", {handle}), "GetQHYCCDChipInfo");
  camera.maxWidth = static_cast<int>(chip.number(2));
  camera.maxHeight = static_cast<int>(chip.number(3));
  camera.pixelSizeUm = chip.number(4);
  camera.bitDepth = static_cast<int>(chip.number(6));

  const std::int64_t color = isAvailable(20);
  constexpr int codes[] = {0, 10, 9, 11, 8};
  camera.isColor = color >= 1 && color <= 4;
  camera.bayer = camera.isColor ? codes[color] : 0;
  camera.isCooled = isAvailable(18) == 0;
  if (isAvailable(35) == 0) {
    camera.formats.push_back(1);
  }
  for (const int bin : {2, 3, 4}) {
    if (isAvailable(20 + bin) == 0) {
      camera.bins.push_back(bin);
    }
  }
  const SdkCall& exposure = askFreely(did, qhy, "GetQHYCCDParamMinMaxStep", {handle, "8"});
  if (exposure.code() == 0) {
    camera.maxExposureUs = static_cast<std::int64_t>(exposure.number(1));
  }
  const SdkCall& gain = ask(did, qhy, "GetQHYCCDParamMinMaxStep", {handle, "6"});
  if (gain.code() == 0) {
    camera.minGain = static_cast<int>(gain.number(0));
    camera.maxGain = static_cast<int>(gain.number(1));
  }
}

void Contract::discoverToupTek(Transcript& did) {
  const SdkCall& enumeration = ask(did, toupTek, "Toupcam_EnumV2", {"buffer"});
  const std::vector<std::string> names = enumeration.texts;
  const auto count = static_cast<std::size_t>(std::min<std::int64_t>(enumeration.code(), 128));
  // Entries that the SDK did not fill have no model, and are passed over.
  for (std::size_t i = 0; i < std::min(count, names.size()); ++i) {
    const SimCamera& model = shown(toupTek, names[i]);
    Camera camera;
    camera.family = toupTek;
    camera.id = quoted(textOf(model.key));
    camera.name = textOf(model.name);
    camera.maxWidth = model.width;
    camera.maxHeight = model.height;
    camera.pixelSizeUm = static_cast<double>(static_cast<float>(model.pixelSizeUm));
    camera.isColor = model.isColor != 0;
    camera.isCooled = model.isCooled != 0;
    camera.isUsb3Camera = model.isUsb3Camera != 0;
    camera.isUsb3Host = camera.isUsb3Camera && model.isUsb3Host != 0;
    const std::string handle = askFreely(did, toupTek, "Toupcam_Open", {camera.id}).result;
    if (handle == "null") {
      continue;
    }
    try {
      examineToupTek(handle, camera, did);
      did.allocate();
      catalogue_.push_back(camera);
    } catch (const std::exception&) {
      ask(did, toupTek, "Toupcam_Close", {handle});
      throw;
    }
    ask(did, toupTek, "Toupcam_Close", {handle});
  }
}

void Contract::examineToupTek(const std::string& handle, Camera& camera, Transcript& did) {
  // The one result that is a value: a failure, being negative, is taken for a depth below 9.
  camera.bitDepth = static_cast<int>(ask(did, toupTek, "Toupcam_get_MaxBitDepth", {handle}).code());
  if (camera.bitDepth > 8) {
    camera.formats.push_back(1);
  }
  const SdkCall& format =
      checked(askFreely(did, toupTek, "Toupcam_get_RawFormat", {handle}), "Toupcam_get_RawFormat");
  if (camera.isColor) {
    camera.bayer = bayerOfLetters(static_cast<std::int64_t>(format.number(0)));
    if (camera.bayer == 0) {
      throw std::runtime_error("Unsupported ToupTek raw mosaic");
    }
  }
  const SdkCall& exposure = ask(did, toupTek, "Toupcam_get_ExpTimeRange", {handle});
  if (exposure.code() >= 0) {
    camera.maxExposureUs = static_cast<std::int64_t>(exposure.number(1));
  }
  const SdkCall& gain = ask(did, toupTek, "Toupcam_get_ExpoAGainRange", {handle});
  if (gain.code() >= 0) {
    camera.minGain = static_cast<int>(gain.number(0));
    camera.maxGain = static_cast<int>(gain.number(1));
  }
}

std::string Contract::info(int index, Transcript& did) const {
  if (index < 0 || index >= static_cast<int>(catalogue_.size())) {
    return "{}";
  }
  did.allocate();
  const Camera& camera = catalogue_[static_cast<std::size_t>(index)];
  const auto truth = [](bool value) { return value ? "true" : "false"; };
  std::array<char, 32> pixel{};
  static_cast<void>(std::snprintf(pixel.data(), pixel.size(), "%.6g", camera.pixelSizeUm));
  return "{\"id\":" + std::to_string(index) + ",\"name\":" + quoted(camera.name) +
         ",\"maxWidth\":" + std::to_string(camera.maxWidth) +
         ",\"maxHeight\":" + std::to_string(camera.maxHeight) +
         ",\"bitDepth\":" + std::to_string(camera.bitDepth) + ",\"pixelSizeUm\":" + pixel.data() +
         ",\"isColor\":" + truth(camera.isColor) + ",\"isCooled\":" + truth(camera.isCooled) +
         ",\"isUsb3Camera\":" + truth(camera.isUsb3Camera) +
         ",\"isUsb3Host\":" + truth(camera.isUsb3Host) + ",\"bins\":" + jsonList(camera.bins) +
         ",\"formats\":" + jsonList(camera.formats) +
         ",\"depths\":" + (contains(camera.formats, 1) ? "[8,16]" : "[8]") +
         ",\"maxExposureUs\":" + std::to_string(camera.maxExposureUs) +
         ",\"minGain\":" + std::to_string(camera.minGain) +
         ",\"maxGain\":" + std::to_string(camera.maxGain) +
         ",\"bayer\":" + std::to_string(camera.bayer) + "}";
}

int Contract::open(const OpenArguments& arguments, Transcript& did) {
  try {
    openOrThrow(arguments, did);
    return 1;
  } catch (const std::exception& failure) {
    error_ = failure.what();
    close(did);
    return 0;
  }
}

void Contract::openOrThrow(const OpenArguments& arguments, Transcript& did) {
  close(did);
  error_.clear();
  if (arguments.index < 0 || arguments.index >= static_cast<int>(catalogue_.size())) {
    refuse(did, "Camera not found; rescan");
  }
  did.allocate();
  active_.camera = catalogue_[static_cast<std::size_t>(arguments.index)];
  const Camera& camera = active_.camera;
  if (arguments.bin == 0 || !contains(camera.bins, arguments.bin) ||
      !contains(camera.formats, arguments.format)) {
    refuse(did, "Unsupported bin or format");
  }
  if (arguments.width <= 0 || arguments.height <= 0 || arguments.width > camera.maxWidth ||
      arguments.height > camera.maxHeight) {
    refuse(did, "Invalid capture dimensions");
  }
  int width = std::min(camera.maxWidth / arguments.bin, arguments.width);
  int height = std::min(camera.maxHeight / arguments.bin, arguments.height);
  if (camera.family == asi) {
    width = width / 8 * 8;
    height = height / 2 * 2;
  }
  if (width < 1 || height < 1) {
    refuse(did, "ROI is too small for binning");
  }
  active_.width = width;
  active_.height = height;
  active_.format = arguments.format;

  constexpr const char* openFunctions[] = {"ASIOpenCamera", "POAOpenCamera", "OpenQHYCCD",
                                           "Toupcam_Open"};
  const char* const function = openFunctions[camera.family];
  const SdkCall& opening = askFreely(did, camera.family, function, {camera.id});
  if (camera.family == qhy || camera.family == toupTek) {
    if (opening.result == "null") {
      throw std::runtime_error(std::string(function) + " failed");
    }
    active_.device = opening.result;
  } else {
    checked(opening, function);
    active_.device = camera.id;
  }
  active_.openIndex = arguments.index;

  const std::int64_t memory = configure(arguments.bin, did);
  const std::int64_t size = std::max(
      std::int64_t{active_.height} * active_.width * bytesPerPixel(active_.format), memory);
  if (size < 1 || size > 1073741824) {
    refuse(did, "Invalid frame buffer size");
  }
  active_.bufferSize = static_cast<int>(size);
  applyOrThrow(arguments.exposureUs, arguments.gain, arguments.offset, did);
  start(did);
  active_.isStreaming = true;
}

// Returns the frame memory that the SDK asks for, where it does.
std::int64_t Contract::configure(int bin, Transcript& did) {
  const std::string& device = active_.device;
  const std::string width = std::to_string(active_.width);
  const std::string height = std::to_string(active_.height);
  const auto takeSizeFrom = [this](const SdkCall& size) {
    active_.width = static_cast<int>(size.number(0, active_.width));
    active_.height = static_cast<int>(size.number(1, active_.height));
  };
  const auto demand = [&](const char* function, Inputs inputs) -> const SdkCall& {
    return checked(ask(did, active_.camera.family, function, inputs), function);
  };
  const auto demandAs = [&](const char* label, const char* function, Inputs inputs) {
    checked(ask(did, active_.camera.family, function, inputs), label);
  };
  switch (active_.camera.family) {
    case asi:
      demand("ASIInitCamera", {device});
      demand("ASISetROIFormat", {device, width, height, std::to_string(bin),
                                 std::to_string(asiFormat(active_.format))});
      demand("ASISetStartPos", {device, "0", "0"});
      takeSizeFrom(demand("ASIGetROIFormat", {device}));
      return 0;
    case playerOne:
      demand("POAInitCamera", {device});
      demand("POASetImageBin", {device, std::to_string(bin)});
      demand("POASetImageFormat", {device, std::to_string(active_.format)});
      demand("POASetImageSize", {device, width, height});
      demand("POASetImageStartPos", {device, "0", "0"});
      takeSizeFrom(demand("POAGetImageSize", {device}));
      return 0;
    case qhy:
      demandAs("QHY stream mode", "SetQHYCCDStreamMode", {device, "1"});
      demand("InitQHYCCD", {device});
      demandAs("QHY binning", "SetQHYCCDBinMode",
               {device, std::to_string(bin), std::to_string(bin)});
      demandAs("QHY bit depth", "SetQHYCCDBitsMode", {device, active_.format == 1 ? "16" : "8"});
      demandAs("QHY ROI", "SetQHYCCDResolution", {device, "0", "0", width, height});
      return ask(did, qhy, "GetQHYCCDMemLength", {device}).code();
    default:
      demandAs("ToupTek RAW", "Toupcam_put_Option", {device, "4", "1"});
      demandAs("ToupTek depth", "Toupcam_put_Option",
               {device, "6", active_.format == 1 ? "1" : "0"});
      demandAs("ToupTek ROI", "Toupcam_put_Roi", {device, "0", "0", width, height});
      takeSizeFrom(checked(ask(did, toupTek, "Toupcam_get_FinalSize", {device}), "ToupTek size"));
      return 0;
  }
}

void Contract::start(Transcript& did) const {
  const std::string& device = active_.device;
  switch (active_.camera.family) {
    case asi:
      checked(ask(did, asi, "ASIStartVideoCapture", {device}), "ASIStartVideoCapture");
      break;
    case playerOne:
      checked(ask(did, playerOne, "POAStartExposure", {device, "0"}), "POAStartExposure");
      break;
    case qhy:
      checked(ask(did, qhy, "BeginQHYCCDLive", {device}), "BeginQHYCCDLive");
      break;
    default:
      checked(ask(did, toupTek, "Toupcam_StartPullModeWithCallback", {device, "null", "null"}),
              "ToupTek start");
  }
}

int Contract::read(bool hasBuffer, int bufferLength, int timeoutMs, Transcript& did) {
  try {
    return readOrThrow(hasBuffer, bufferLength, timeoutMs, did);
  } catch (const std::exception& failure) {
    error_ = failure.what();
    return -1;
  }
}

int Contract::readOrThrow(bool hasBuffer, int bufferLength, int timeoutMs, Transcript& did) const {
  if (!active_.isStreaming || !hasBuffer || bufferLength < active_.bufferSize) {
    refuse(did, "Camera closed or buffer too small");
  }
  const std::string& device = active_.device;
  const std::string length = std::to_string(bufferLength);
  const std::string timeout = std::to_string(timeoutMs);
  const int bits = active_.format == 1 ? 16 : 8;
  switch (active_.camera.family) {
    case asi: {
      const SdkCall& frame = ask(did, asi, "ASIGetVideoData", {device, "buffer", length, timeout});
      if (frame.code() == 11) {
        return 0;
      }
      checked(frame, "ASIGetVideoData");
      break;
    }
    case playerOne: {
      if (checked(ask(did, playerOne, "POAImageReady", {device}), "POAImageReady").number(0) != 1) {
        return 0;
      }
      const SdkCall& frame =
          ask(did, playerOne, "POAGetImageData", {device, "buffer", length, timeout});
      if (frame.code() == 9) {
        return 0;
      }
      checked(frame, "POAGetImageData");
      break;
    }
    case qhy: {
      const SdkCall& frame = ask(did, qhy, "GetQHYCCDLiveFrame", {device, "buffer"});
      if (frame.code() != 0) {
        return 0;
      }
      if (frame.number(0) != active_.width || frame.number(1) != active_.height ||
          frame.number(2) != bits || frame.number(3) != 1) {
        refuse(did, "QHY frame geometry changed");
      }
      break;
    }
    default: {
      const SdkCall& frame = ask(did, toupTek, "Toupcam_PullImageWithRowPitch",
                                 {device, "buffer", std::to_string(bits), "-1"});
      if (frame.code() == noFrameWaiting) {
        return 0;
      }
      checked(frame, "ToupTek pull frame");
      if (frame.number(0) != active_.width || frame.number(1) != active_.height) {
        refuse(did, "ToupTek frame geometry changed");
      }
    }
  }
  return static_cast<int>(std::int64_t{active_.height} * active_.width *
                          bytesPerPixel(active_.format));
}

int Contract::apply(std::int64_t exposureUs, int gain, int offset, Transcript& did) {
  try {
    if (!active_.isStreaming) {
      refuse(did, "Camera closed");
    }
    applyOrThrow(exposureUs, gain, offset, did);
    return 1;
  } catch (const std::exception& failure) {
    error_ = failure.what();
    return 0;
  }
}

void Contract::applyOrThrow(std::int64_t exposureUs, int gain, int offset, Transcript& did) const {
  if (exposureUs < 1 || exposureUs > std::numeric_limits<std::int32_t>::max()) {
    refuse(did, "Exposure out of range");
  }
  const std::string& device = active_.device;
  const auto demandAs = [&](const char* label, const char* function,
                            Inputs inputs) -> const SdkCall& {
    return checked(ask(did, active_.camera.family, function, inputs), label);
  };
  switch (active_.camera.family) {
    case asi: {
      demandAs("ASI exposure", "ASISetControlValue", {device, "1", logged(exposureUs), "0"});
      demandAs("ASI gain", "ASISetControlValue", {device, "0", std::to_string(gain), "0"});
      const auto controlCount = static_cast<std::int64_t>(
          demandAs("ASI controls", "ASIGetNumOfControls", {device}).number(0));
      for (std::int64_t c = 0; c < controlCount; ++c) {
        const SdkCall& caps =
            demandAs("ASI control caps", "ASIGetControlCaps", {device, logged(c)});
        if (caps.number(0) == 5 && caps.number(3) != 0) {
          demandAs("ASI offset", "ASISetControlValue", {device, "5", std::to_string(offset), "0"});
        }
      }
      break;
    }
    case playerOne:
      demandAs("POA exposure", "POASetConfig",
               {device, "0", logged(static_cast<double>(exposureUs)), "0"});
      demandAs("POA gain", "POASetConfig", {device, "1", logged(static_cast<double>(gain)), "0"});
      demandAs("POA offset", "POASetConfig",
               {device, "7", logged(static_cast<double>(offset)), "0"});
      break;
    case qhy:
      demandAs("QHY exposure", "SetQHYCCDParam",
               {device, "8", logged(static_cast<double>(exposureUs))});
      demandAs("QHY gain", "SetQHYCCDParam", {device, "6", logged(static_cast<double>(gain))});
      if (ask(did, qhy, "IsQHYCCDControlAvailable", {device, "7"}).code() == 0) {
        demandAs("QHY offset", "SetQHYCCDParam",
                 {device, "7", logged(static_cast<double>(offset))});
      }
      break;
    default:
      demandAs("ToupTek manual exposure", "Toupcam_put_AutoExpoEnable", {device, "0"});
      demandAs("ToupTek exposure", "Toupcam_put_ExpoTime", {device, logged(exposureUs)});
      if (gain < 0 || gain > 65535) {
        refuse(did, "ToupTek gain out of range");
      }
      demandAs("ToupTek gain", "Toupcam_put_ExpoAGain", {device, std::to_string(gain)});
      demandAs("ToupTek black level", "Toupcam_put_Option", {device, "21", std::to_string(offset)});
  }
}

double Contract::temperature(Transcript& did) const {
  double celsius = std::numeric_limits<double>::quiet_NaN();
  if (isOpen()) {
    swallowing([&] { celsius = temperatureOrThrow(did); });
  }
  return celsius;
}

double Contract::temperatureOrThrow(Transcript& did) const {
  const std::string& device = active_.device;
  switch (active_.camera.family) {
    case asi:
      return checked(ask(did, asi, "ASIGetControlValue", {device, "8"}), "").number(0) / 10;
    case playerOne:
      return checked(ask(did, playerOne, "POAGetConfig", {device, "3"}), "").number(0);
    case qhy:
      return ask(did, qhy, "GetQHYCCDParam", {device, "14"}).real();
    default:
      return checked(ask(did, toupTek, "Toupcam_get_Temperature", {device}), "").number(0) / 10;
  }
}

void Contract::close(Transcript& did) {
  if (!isOpen()) {
    return;
  }
  constexpr const char* stops[] = {"ASIStopVideoCapture", "POAStopExposure", "StopQHYCCDLive",
                                   "Toupcam_Stop"};
  constexpr const char* closes[] = {"ASICloseCamera", "POACloseCamera", "CloseQHYCCD",
                                    "Toupcam_Close"};
  const std::size_t family = active_.camera.family;
  if (active_.isStreaming) {
    swallowing([&] { ask(did, family, stops[family], {active_.device}); });
  }
  swallowing([&] { ask(did, family, closes[family], {active_.device}); });
  active_.openIndex = -1;
  active_.isStreaming = false;
  active_.bufferSize = 0;
}

}  // namespace orvane::testing
