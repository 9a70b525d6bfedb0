// The contract of QHYCCD's family.
#include <stdexcept>

#include "torture/contract_family.hpp"

namespace orvane::testing {

namespace {

// The SDK's constants.
enum Control : int {
  gainControl = 6,
  offsetControl = 7,
  exposureControl = 8,
  temperatureControl = 14,
  coolerControl = 18,
  colorControl = 20,
  binControls = 20,  // plus the factor: 22 is binning by 2
  raw16Control = 35,
};
constexpr const char* liveMode = "1";

void examine(SdkCalls& calls, const std::string& handle, ContractCamera& camera) {
  const auto available = [&](int control) {
    return calls.askFreely("IsQHYCCDControlAvailable", {handle, std::to_string(control)}).code();
  };
  calls.demand("SetQHYCCDStreamMode", {handle, liveMode});
  calls.demand("InitQHYCCD", {handle});
  const SdkCall& chip = calls.demand("GetQHYCCDChipInfo", {handle});
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
  calls.takeMaxExposure(calls.askFreely(range, {handle, std::to_string(exposureControl)}), camera);
  calls.takeGain(calls.ask(range, {handle, std::to_string(gainControl)}), camera);
}

void discover(SdkCalls& calls, const Discovery& discovery) {
  if (!discovery.isInitialised) {
    calls.demand("InitQHYCCDResource", {});
    discovery.isInitialised = true;
  }
  const std::int64_t count = calls.ask("ScanQHYCCD", {}).code();
  if (count > 128) {
    throw std::runtime_error("QHY scan failed");
  }
  for (std::int64_t i = 0; i < count; ++i) {
    const SdkCall& id = calls.checked(calls.askFreely("GetQHYCCDId", {logged(i)}), "GetQHYCCDId");
    ContractCamera camera;
    camera.id = quoted(id.texts.at(0));
    const SdkCall& model = calls.askFreely("GetQHYCCDModel", {camera.id});
    camera.name = calls.hasFailed(model) ? "QHYCCD" : model.texts.at(0);
    calls.whileOpen(camera.id, [&](const std::string& handle) {
      examine(calls, handle, camera);
      discovery.add(calls, camera);
    });
  }
}

std::int64_t configure(SdkCalls& calls, ContractActive& active, int bin) {
  const std::string& device = active.device;
  const std::string factor = std::to_string(bin);
  calls.demandAs("QHY stream mode", "SetQHYCCDStreamMode", {device, liveMode});
  calls.demand("InitQHYCCD", {device});
  calls.demandAs("QHY binning", "SetQHYCCDBinMode", {device, factor, factor});
  calls.demandAs("QHY bit depth", "SetQHYCCDBitsMode", {device, std::to_string(active.bits())});
  calls.demandAs("QHY ROI", "SetQHYCCDResolution",
                 {device, "0", "0", active.widthText(), active.heightText()});
  return calls.ask("GetQHYCCDMemLength", {device}).code();
}

void start(SdkCalls& calls, const std::string& device) {
  calls.demand("BeginQHYCCDLive", {device});
}

bool read(SdkCalls& calls, const ContractActive& active, const std::string& /*bufferLength*/,
          const std::string& /*timeoutMs*/) {
  const SdkCall& frame = calls.ask("GetQHYCCDLiveFrame", {active.device, "buffer"});
  if (calls.hasFailed(frame)) {
    return false;
  }
  if (frame.number(0) != active.width || frame.number(1) != active.height ||
      frame.number(2) != active.bits() || frame.number(3) != 1) {
    calls.refuse("QHY frame geometry changed");
  }
  return true;
}

void apply(SdkCalls& calls, const std::string& device, std::int64_t exposureUs, int gain,
           int offset) {
  const auto set = [&](const char* label, Control control, double value) {
    calls.demandAs(label, "SetQHYCCDParam", {device, std::to_string(control), logged(value)});
  };
  set("QHY exposure", exposureControl, static_cast<double>(exposureUs));
  set("QHY gain", gainControl, gain);
  if (!calls.hasFailed(
          calls.ask("IsQHYCCDControlAvailable", {device, std::to_string(offsetControl)}))) {
    set("QHY offset", offsetControl, offset);
  }
}

double temperature(SdkCalls& calls, const std::string& device) {
  return calls.ask("GetQHYCCDParam", {device, std::to_string(temperatureControl)}).real();
}

}  // namespace

extern const FamilyContract qhyContract{
    .sdk = familyNamed("qhyccd"),
    .stopCall = "StopQHYCCDLive",
    .discover = discover,
    .configure = configure,
    .start = start,
    .read = read,
    .apply = apply,
    .temperature = temperature,
};

}  // namespace orvane::testing
