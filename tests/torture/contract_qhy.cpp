// The contract of QHYCCD's family.
#include <stdexcept>

#include "torture/contract_family.hpp"

namespace orvane::testing {

namespace {

// The SDK's constants.
constexpr int gainControl = 6;
constexpr int offsetControl = 7;
constexpr int exposureControl = 8;
constexpr int temperatureControl = 14;
constexpr int coolerControl = 18;
constexpr int colorControl = 20;
constexpr int binControls = 20;  // plus the factor: 22 is binning by 2
constexpr int raw16Control = 35;
constexpr int liveMode = 1;

void examine(SdkCalls& device, ContractCamera& camera) {
  const auto available = [&](int control) {
    return device.askFreely("IsQHYCCDControlAvailable", control).code();
  };
  device.demand("SetQHYCCDStreamMode", liveMode);
  device.demand("InitQHYCCD");
  const SdkCall& chip = device.demand("GetQHYCCDChipInfo");
  camera.maxWidth = static_cast<int>(chip.number(2));
  camera.maxHeight = static_cast<int>(chip.number(3));
  camera.pixelSizeUm = chip.number(4);
  camera.bitDepth = static_cast<int>(chip.number(6));

  const std::int64_t color = available(colorControl);
  constexpr int codes[] = {hostNoBayer, hostGbrg, hostGrbg, hostBggr, hostRggb};
  camera.isColor = color >= 1 && color <= 4;
  camera.bayer = camera.isColor ? codes[color] : hostNoBayer;
  camera.isCooled = available(coolerControl) == 0;
  if (available(raw16Control) == 0) {
    camera.formats.push_back(hostRaw16);
  }
  for (const int bin : {2, 3, 4}) {
    if (available(binControls + bin) == 0) {
      camera.bins.push_back(bin);
    }
  }
  constexpr const char* range = "GetQHYCCDParamMinMaxStep";
  device.takeMaxExposure(device.askFreely(range, exposureControl), camera);
  device.takeGain(device.ask(range, gainControl), camera);
}

void discover(SdkCalls& sdk, const Discovery& discovery) {
  if (!discovery.isInitialised) {
    sdk.demand("InitQHYCCDResource");
    discovery.isInitialised = true;
  }
  const std::int64_t count = sdk.ask("ScanQHYCCD").code();
  if (count > 128) {
    throw std::runtime_error("QHY scan failed");
  }
  for (std::int64_t i = 0; i < count; ++i) {
    const SdkCall& id = sdk.checked(sdk.askFreely("GetQHYCCDId", i), "GetQHYCCDId");
    ContractCamera camera;
    camera.id = quoted(id.texts.at(0));
    const SdkCall& model = sdk.askFreely("GetQHYCCDModel", camera.id);
    camera.name = sdk.hasFailed(model) ? "QHYCCD" : model.texts.at(0);
    sdk.whileOpen(camera.id, [&](SdkCalls& device) {
      examine(device, camera);
      discovery.add(device, camera);
    });
  }
}

std::int64_t configure(SdkCalls& device, ContractActive& active, int bin) {
  device.demandAs("QHY stream mode", "SetQHYCCDStreamMode", liveMode);
  device.demand("InitQHYCCD");
  device.demandAs("QHY binning", "SetQHYCCDBinMode", bin, bin);
  device.demandAs("QHY bit depth", "SetQHYCCDBitsMode", active.bits());
  device.demandAs("QHY ROI", "SetQHYCCDResolution", 0, 0, active.width, active.height);
  return device.ask("GetQHYCCDMemLength").code();
}

bool read(SdkCalls& device, const ContractActive& active, int /*bufferLength*/, int /*timeoutMs*/) {
  const SdkCall& frame = device.ask("GetQHYCCDLiveFrame", "buffer");
  if (device.hasFailed(frame)) {
    return false;
  }
  if (frame.number(0) != active.width || frame.number(1) != active.height ||
      frame.number(2) != active.bits() || frame.number(3) != 1) {
    device.refuse("QHY frame geometry changed");
  }
  return true;
}

void apply(SdkCalls& device, std::int64_t exposureUs, int gain, int offset) {
  const auto set = [&](const char* label, int control, auto value) {
    device.demandAs(label, "SetQHYCCDParam", control, static_cast<double>(value));
  };
  set("QHY exposure", exposureControl, exposureUs);
  set("QHY gain", gainControl, gain);
  if (!device.hasFailed(device.ask("IsQHYCCDControlAvailable", offsetControl))) {
    set("QHY offset", offsetControl, offset);
  }
}

double temperature(SdkCalls& device) {
  return device.ask("GetQHYCCDParam", temperatureControl).real();
}

}  // namespace

extern const FamilyContract qhyContract{
    .sdk = familyNamed("qhyccd"),
    .stopCall = "StopQHYCCDLive",
    .discover = discover,
    .configure = configure,
    .start = [](SdkCalls& device) { device.demand("BeginQHYCCDLive"); },
    .read = read,
    .apply = apply,
    .temperature = temperature,
};

}  // namespace orvane::testing
