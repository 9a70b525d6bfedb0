// What the scripted SDKs of all makers share.
#include "adversarial_sdks/adversary.hpp"

#include <stdexcept>

namespace orvane::fuzz {

Adversary& adversary() {
  static Adversary instance;
  return instance;
}

Adversary::Adversary() {
  addAsi(of(Vendor::Asi));
  addPlayerOne(of(Vendor::PlayerOne));
  addQhy(of(Vendor::Qhy));
  addToupTek(of(Vendor::ToupTek));
}

void Adversary::begin(std::span<const std::uint8_t> bytes) {
  input = Input(bytes);
  violations.clear();
  calls_ = 0;
  for (Sdk& sdk : sdks) {
    sdk.canLoad = true;
    sdk.missing.clear();
    sdk.open.clear();
  }
}

void Adversary::noteViolation(const char* rule, const char* culprit) {
  violations.push_back(culprit != nullptr ? std::string(rule) + ": " + culprit : rule);
}

platform::FunctionAddress Adversary::find(Sdk& sdk, const char* name) {
  const bool stops = name == std::string_view(sdk.stopFunction);
  const bool closes = name == std::string_view(sdk.closeFunction);
  const bool isOver = ++calls_ > maxCalls && !stops && !closes;
  const auto found = sdk.functions.find(std::string_view(name));
  require(found != sdk.functions.end(), "looked up no function of the SDK", name);
  if (found != sdk.functions.end() && !isOver && !sdk.missing.contains(std::string_view(name))) {
    return found->second;
  }
  if (stops) {
    for (auto& [key, device] : sdk.open) {
      device.isStreaming = false;
    }
  }
  if (closes) {
    sdk.open.clear();
  }
  return nullptr;
}

std::int32_t Adversary::result() {
  const std::uint8_t choice = input.byte();
  if (choice < 236) {
    return 0;
  }
  if (choice < 246) {
    return choice - 235;  // small codes, the makers' time-outs among them
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
