// What the scripted SDKs of all makers share.
#include "adversarial_sdks/adversary.hpp"

#include <cstring>
#include <stdexcept>
#include <string_view>

#include "vendors/vendor_family.hpp"

namespace orvane::fuzz {

// Each adds the functions of one SDK. Defined in the file of that SDK.
void addAsi(Sdk& sdk);
void addPlayerOne(Sdk& sdk);
void addQhy(Sdk& sdk);
void addToupTek(Sdk& sdk);

namespace {

// In the order of Vendor.
constexpr void (*families[vendorCount])(Sdk& sdk) = {addAsi, addPlayerOne, addQhy, addToupTek};

}  // namespace

Adversary& adversary() {
  static Adversary instance;
  return instance;
}

Adversary::Adversary() {
  scripted::Platform& script = scripted::platform();
  for (std::size_t i = 0; i < vendorCount; ++i) {
    sdks[i].baseName = vendorTable[i]->baseName;
    sdks[i].script = &script.libraries[sdks[i].baseName];
    families[i](sdks[i]);
  }
  script.admits = [this](const scripted::Library& library, const char* name) {
    return admits(library, name);
  };
}

void Adversary::begin(std::span<const std::uint8_t> bytes) {
  input = Input(bytes);
  violations.clear();
  calls_ = 0;
  for (Sdk& sdk : sdks) {
    sdk.script->canLoad = true;
    sdk.script->missing.clear();
    sdk.open.clear();
  }
  scripted::platform().passed.clear();
}

void Adversary::require(bool holds, const char* rule, const char* culprit) {
  if (!holds) {
    violations.push_back(culprit != nullptr ? std::string(rule) + ": " + culprit : rule);
  }
}

bool Adversary::admits(const scripted::Library& library, const char* name) {
  Sdk& sdk = *std::find_if(sdks.begin(), sdks.end(),
                           [&](const Sdk& one) { return one.script == &library; });
  const bool stops = name == std::string_view(sdk.stopFunction);
  const bool closes = name == std::string_view(sdk.closeFunction);
  const bool isOver = ++calls_ > maxCalls && !stops && !closes;
  require(library.functions.contains(name), "looked up no function of the SDK", name);
  // If the stop or close function is missing, the library cannot stop or close: what stays running
  // or open is not its fault.
  if (stops && library.missing.contains(name)) {
    for (auto& [key, device] : sdk.open) {
      device.isStreaming = false;
    }
  }
  if (closes && library.missing.contains(name)) {
    sdk.open.clear();
  }
  return !isOver;
}

std::int32_t Adversary::result(Vendor vendor) {
  const std::uint8_t choice = input.byte();
  if (choice < 236) {
    return 0;
  }
  if (choice == 255) {
    throw std::runtime_error("thrown by the SDK");
  }
  // The small codes include the makers' time-outs.
  const std::int32_t code = choice < 246 ? choice - 235 : input.number();
  // ToupTek's failures are negative.
  return vendor == Vendor::ToupTek && code > 0 && code < 8 ? -code : code;
}

std::int32_t Adversary::length() {
  const std::uint8_t choice = input.byte();
  return choice < 200 ? 16 + choice : input.number();
}

std::size_t Adversary::fillLength(std::size_t size) {
  const std::uint8_t choice = input.byte();
  return choice < 128 ? choice % 8 : choice < 192 ? size : choice % size;
}

void Adversary::opened(Vendor vendor, std::uintptr_t key) {
  Sdk& sdk = of(vendor);
  require(!sdk.open.contains(key), "opened twice", sdk.baseName);
  sdk.open[key] = Device{};
}

std::int32_t Adversary::openedId(Vendor vendor, int cameraId) {
  const std::int32_t code = result(vendor);
  if (code == 0) {
    opened(vendor, keyOf(cameraId));
  }
  return code;
}

void* Adversary::openedHandle(Vendor vendor) {
  if (!isSound()) {
    return nullptr;
  }
  lastHandle_ += 16;
  opened(vendor, lastHandle_);
  return reinterpret_cast<void*>(lastHandle_);  // NOLINT(performance-no-int-to-ptr): never read
}

Device& Adversary::used(Vendor vendor, std::uintptr_t key, const char* call) {
  auto& open = of(vendor).open;
  const auto found = open.find(key);
  require(found != open.end(), "call on a device that is not open", call);
  return found != open.end() ? found->second : none_;
}

std::int32_t Adversary::started(Vendor vendor, Device& device) {
  const std::int32_t code = result(vendor);
  device.isStreaming = code == 0 || (vendor == Vendor::ToupTek && code > 0);
  return code;
}

void Adversary::stopped(Vendor vendor, std::uintptr_t key) {
  Device& device = used(vendor, key, of(vendor).stopFunction);
  require(device.isStreaming, "stop without a start", of(vendor).baseName);
  device.isStreaming = false;
}

void Adversary::closed(Vendor vendor, std::uintptr_t key) {
  const Device& device = used(vendor, key, of(vendor).closeFunction);
  require(!device.isStreaming, "closed while streaming", of(vendor).baseName);
  of(vendor).open.erase(key);
}

void Adversary::setSize(Device& device, std::int64_t width, std::int64_t height) {
  device.frameWidth = width;
  device.frameHeight = height;
  require(width >= 1 && height >= 1, "region of no pixels");
}

void Adversary::reportSize(Device& device, int* width, int* height) {
  if (!isSound()) {
    device.frameWidth = length();
    device.frameHeight = length();
  }
  *width = static_cast<int>(device.frameWidth);
  *height = static_cast<int>(device.frameHeight);
}

void Adversary::deliverFrame(const Device& device, void* buffer, std::int64_t length) {
  require(device.isStreaming, "frame asked for without a stream");
  require(device.frameBytes() <= length, "buffer shorter than a frame");
  std::memset(buffer, 0x5A, static_cast<std::size_t>(length));
}

std::size_t Adversary::openDevices() const {
  std::size_t count = 0;
  for (const Sdk& sdk : sdks) {
    count += sdk.open.size();
  }
  return count;
}

std::size_t Adversary::runningStreams() const {
  std::size_t count = 0;
  for (const Sdk& sdk : sdks) {
    for (const auto& [key, device] : sdk.open) {
      count += device.isStreaming ? 1 : 0;
    }
  }
  return count;
}

}  // namespace orvane::fuzz
