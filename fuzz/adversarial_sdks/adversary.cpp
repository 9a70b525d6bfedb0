// What the scripted SDKs of all makers share.
#include "adversarial_sdks/adversary.hpp"

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

void Adversary::noteViolation(const char* rule, const char* culprit) {
  violations.push_back(culprit != nullptr ? std::string(rule) + ": " + culprit : rule);
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

std::int32_t Adversary::result() {
  const std::uint8_t choice = input.byte();
  if (choice < 236) {
    return 0;
  }
  if (choice < 246) {
    return choice - 235;  // small codes, which include the makers' time-outs
  }
  if (choice == 255) {
    throw std::runtime_error("thrown by the SDK");
  }
  return input.number();
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
