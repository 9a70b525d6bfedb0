// The contract of the thirteen functions, step by step.
#include "torture/contract.hpp"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <stdexcept>

namespace orvane::testing {

// Each is defined at the end of contract_<family>.cpp.
extern const FamilyContract asiContract;
extern const FamilyContract playerOneContract;
extern const FamilyContract qhyContract;
extern const FamilyContract toupTekContract;

namespace {

// In scan order.
constexpr const FamilyContract* families[sdkCount] = {&asiContract, &playerOneContract,
                                                      &qhyContract, &toupTekContract};

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
      SdkCalls sdk(*families[family], did);
      families[family]->discover(sdk, {world_[family], isInitialised_, catalogue_, family});
    } catch (const std::exception& failure) {
      error_ += (error_.empty() ? "" : "; ") + std::string(failure.what());
    }
  }
  return static_cast<int>(catalogue_.size());
}

std::string Contract::info(int index, Transcript& did) const {
  if (index < 0 || index >= static_cast<int>(catalogue_.size())) {
    return "{}";
  }
  did.allocate();
  const ContractCamera& camera = catalogue_[static_cast<std::size_t>(index)];
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
         ",\"depths\":" + (contains(camera.formats, hostRaw16) ? "[8,16]" : "[8]") +
         ",\"maxExposureUs\":" + std::to_string(camera.maxExposureUs) +
         ",\"minGain\":" + std::to_string(camera.minGain) +
         ",\"maxGain\":" + std::to_string(camera.maxGain) +
         ",\"bayer\":" + std::to_string(camera.bayer) + "}";
}

template <class Body>
int Contract::remembering(int failed, Body body) {
  try {
    return body();
  } catch (const std::exception& failure) {
    error_ = failure.what();
    return failed;
  }
}

int Contract::open(const OpenArguments& arguments, Transcript& did) {
  const int opened = remembering(0, [&] {
    openOrThrow(arguments, did);
    return 1;
  });
  if (opened == 0) {
    close(did);
  }
  return opened;
}

void Contract::openOrThrow(const OpenArguments& arguments, Transcript& did) {
  close(did);
  error_.clear();
  if (arguments.index < 0 || arguments.index >= static_cast<int>(catalogue_.size())) {
    did.refuse("Camera not found; rescan");
  }
  did.allocate();
  active_.camera = catalogue_[static_cast<std::size_t>(arguments.index)];
  const ContractCamera& camera = active_.camera;
  if (arguments.bin == 0 || !contains(camera.bins, arguments.bin) ||
      !contains(camera.formats, arguments.format)) {
    did.refuse("Unsupported bin or format");
  }
  if (arguments.width <= 0 || arguments.height <= 0 || arguments.width > camera.maxWidth ||
      arguments.height > camera.maxHeight) {
    did.refuse("Invalid capture dimensions");
  }
  const FamilyContract& family = rules();
  const auto inSteps = [](int size, int step) { return size / step * step; };
  const int width =
      inSteps(std::min(camera.maxWidth / arguments.bin, arguments.width), family.widthStep);
  const int height =
      inSteps(std::min(camera.maxHeight / arguments.bin, arguments.height), family.heightStep);
  if (width < 1 || height < 1) {
    did.refuse("ROI is too small for binning");
  }
  active_.width = width;
  active_.height = height;
  active_.format = arguments.format;

  SdkCalls sdk(family, did);
  const SdkCall& opening = sdk.checked(sdk.open(camera.id), family.sdk.openCall);
  active_.device = sdk.deviceOf(opening);
  active_.openIndex = arguments.index;

  SdkCalls calls = device(did);
  const std::int64_t memory = family.configure(calls, active_, arguments.bin);
  const std::int64_t size = std::max(active_.frameBytes(), memory);
  if (size < 1 || size > 1073741824) {
    did.refuse("Invalid frame buffer size");
  }
  active_.bufferSize = static_cast<int>(size);
  applyOrThrow(calls, arguments.exposureUs, arguments.gain, arguments.offset);
  family.start(calls);
  active_.isStreaming = true;
}

int Contract::read(const std::uint8_t* buffer, int bufferLength, int timeoutMs, Transcript& did) {
  return remembering(-1, [&] {
    if (!active_.isStreaming || buffer == nullptr || bufferLength < active_.bufferSize) {
      did.refuse("Camera closed or buffer too small");
    }
    SdkCalls calls = device(did);
    const bool isThere = rules().read(calls, active_, bufferLength, timeoutMs);
    return isThere ? static_cast<int>(active_.frameBytes()) : 0;
  });
}

int Contract::apply(std::int64_t exposureUs, int gain, int offset, Transcript& did) {
  return remembering(0, [&] {
    if (!active_.isStreaming) {
      did.refuse("Camera closed");
    }
    SdkCalls calls = device(did);
    applyOrThrow(calls, exposureUs, gain, offset);
    return 1;
  });
}

void Contract::applyOrThrow(SdkCalls& calls, std::int64_t exposureUs, int gain, int offset) const {
  if (exposureUs < 1 || exposureUs > std::numeric_limits<std::int32_t>::max()) {
    calls.refuse("Exposure out of range");
  }
  rules().apply(calls, exposureUs, gain, offset);
}

double Contract::temperature(Transcript& did) const {
  double celsius = std::numeric_limits<double>::quiet_NaN();
  if (isOpen()) {
    swallowing([&] {
      SdkCalls calls = device(did);
      celsius = rules().temperature(calls);
    });
  }
  return celsius;
}

void Contract::close(Transcript& did) {
  if (!isOpen()) {
    return;
  }
  SdkCalls calls = device(did);
  if (active_.isStreaming) {
    swallowing([&] { calls.ask(rules().stopCall); });
  }
  swallowing([&] { calls.close(); });
  active_.openIndex = -1;
  active_.isStreaming = false;
  active_.bufferSize = 0;
}

const FamilyContract& Contract::rules() const {
  return *families[active_.camera.family];
}

}  // namespace orvane::testing
