// The contract of Player One's family.
#include "torture/contract_family.hpp"

namespace orvane::testing {

namespace {

// The SDK's constants.
constexpr int formatEnd = -1;
constexpr int exposureConfig = 0;
constexpr int gainConfig = 1;
constexpr int temperatureConfig = 3;
constexpr int offsetConfig = 7;
constexpr int isFalse = 0;
constexpr std::int64_t timeOut = 9;

void discover(SdkCalls& sdk, const Discovery& discovery) {
  const auto complete = [](const SimCamera& model, ContractCamera& camera) {
    camera.isUsb3Camera = camera.isUsb3Host;  // this SDK has only one flag
    camera.bins = listOf(model.bins, 0, 8);
    camera.formats = listOf(model.formats, formatEnd);
  };
  const auto examine = [](SdkCalls& device, ContractCamera& camera) {
    constexpr const char* attributes = "POAGetConfigAttributesByConfigID";
    device.demand("POAInitCamera");
    device.takeGain(device.ask(attributes, gainConfig), camera);
    device.takeMaxExposure(device.ask(attributes, exposureConfig), camera);
  };
  discovery.discoverById(sdk, "POAGetCameraCount", "POAGetCameraProperties", complete, examine);
}

std::int64_t configure(SdkCalls& device, ContractActive& active, int bin) {
  device.demand("POAInitCamera");
  device.demand("POASetImageBin", bin);
  device.demand("POASetImageFormat", active.format);
  device.demand("POASetImageSize", active.width, active.height);
  device.demand("POASetImageStartPos", 0, 0);
  active.takeSizeFrom(device.demand("POAGetImageSize"));
  return 0;
}

bool read(SdkCalls& device, const ContractActive& /*active*/, int bufferLength, int timeoutMs) {
  return device.demand("POAImageReady").number(0) == 1 &&
         device.hasFrame(device.ask("POAGetImageData", "buffer", bufferLength, timeoutMs), timeOut,
                         "POAGetImageData");
}

void apply(SdkCalls& device, std::int64_t exposureUs, int gain, int offset) {
  const auto set = [&](const char* label, int config, auto value) {
    device.demandAs(label, "POASetConfig", config, static_cast<double>(value), isFalse);
  };
  set("POA exposure", exposureConfig, exposureUs);
  set("POA gain", gainConfig, gain);
  set("POA offset", offsetConfig, offset);
}

double temperature(SdkCalls& device) {
  return device.demand("POAGetConfig", temperatureConfig).number(0);
}

}  // namespace

extern const FamilyContract playerOneContract{
    .sdk = familyNamed("PlayerOneCamera"),
    .stopCall = "POAStopExposure",
    .discover = discover,
    .configure = configure,
    .start = [](SdkCalls& device) { device.demand("POAStartExposure", isFalse); },
    .read = read,
    .apply = apply,
    .temperature = temperature,
};

}  // namespace orvane::testing
