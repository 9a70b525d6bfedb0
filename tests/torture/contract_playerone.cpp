// The contract of Player One's family.
#include "torture/contract_family.hpp"

namespace orvane::testing {

namespace {

// The SDK's constants.
constexpr int formatEnd = -1;
constexpr const char* exposureConfig = "0";
constexpr const char* gainConfig = "1";
constexpr const char* temperatureConfig = "3";
constexpr const char* offsetConfig = "7";
constexpr const char* isFalse = "0";
constexpr std::int64_t timeOut = 9;

void discover(SdkCalls& calls, const Discovery& discovery) {
  const auto complete = [](const SimCamera& model, ContractCamera& camera) {
    camera.isUsb3Camera = camera.isUsb3Host;  // this SDK has only one flag
    camera.bins = listOf(model.bins, 0, 8);
    camera.formats = listOf(model.formats, formatEnd);
  };
  const auto examine = [&](ContractCamera& camera) {
    constexpr const char* attributes = "POAGetConfigAttributesByConfigID";
    calls.demand("POAInitCamera", {camera.id});
    calls.takeGain(calls.ask(attributes, {camera.id, gainConfig}), camera);
    calls.takeMaxExposure(calls.ask(attributes, {camera.id, exposureConfig}), camera);
  };
  discovery.discoverById(calls, "POAGetCameraCount", "POAGetCameraProperties", complete, examine);
}

std::int64_t configure(SdkCalls& calls, ContractActive& active, int bin) {
  const std::string& device = active.device;
  calls.demand("POAInitCamera", {device});
  calls.demand("POASetImageBin", {device, std::to_string(bin)});
  calls.demand("POASetImageFormat", {device, std::to_string(active.format)});
  calls.demand("POASetImageSize", {device, active.widthText(), active.heightText()});
  calls.demand("POASetImageStartPos", {device, "0", "0"});
  active.takeSizeFrom(calls.demand("POAGetImageSize", {device}));
  return 0;
}

void start(SdkCalls& calls, const std::string& device) {
  calls.demand("POAStartExposure", {device, isFalse});
}

bool read(SdkCalls& calls, const ContractActive& active, const std::string& bufferLength,
          const std::string& timeoutMs) {
  if (calls.demand("POAImageReady", {active.device}).number(0) != 1) {
    return false;
  }
  const SdkCall& frame =
      calls.ask("POAGetImageData", {active.device, "buffer", bufferLength, timeoutMs});
  if (frame.code() == timeOut) {
    return false;
  }
  calls.checked(frame, "POAGetImageData");
  return true;
}

void apply(SdkCalls& calls, const std::string& device, std::int64_t exposureUs, int gain,
           int offset) {
  const auto set = [&](const char* label, const char* config, double value) {
    calls.demandAs(label, "POASetConfig", {device, config, logged(value), isFalse});
  };
  set("POA exposure", exposureConfig, static_cast<double>(exposureUs));
  set("POA gain", gainConfig, gain);
  set("POA offset", offsetConfig, offset);
}

double temperature(SdkCalls& calls, const std::string& device) {
  return calls.demand("POAGetConfig", {device, temperatureConfig}).number(0);
}

}  // namespace

extern const FamilyContract playerOneContract{
    .sdk = familyNamed("PlayerOneCamera"),
    .stopCall = "POAStopExposure",
    .discover = discover,
    .configure = configure,
    .start = start,
    .read = read,
    .apply = apply,
    .temperature = temperature,
};

}  // namespace orvane::testing
