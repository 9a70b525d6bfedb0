// The contract of ZWO's family.
#include <algorithm>

#include "torture/contract_family.hpp"

namespace orvane::testing {

namespace {

// The SDK's constants.
constexpr int imgEnd = -1;
enum Control : int { gainControl = 0, exposureControl = 1, offsetControl = 5 };
constexpr const char* temperatureControl = "8";
constexpr const char* notAutomatic = "0";
constexpr std::int64_t timeOut = 11;

// The SDK swaps the numbers of RAW16 and RGB24.
int swappedFormat(int format) {
  return format == hostRaw16 ? hostRgb24 : format == hostRgb24 ? hostRaw16 : format;
}

void discover(SdkCalls& calls, const Discovery& discovery) {
  const auto complete = [](const SimCamera& model, ContractCamera& camera) {
    camera.bins = listOf(model.bins, 0);
    camera.formats = listOf(model.formats, imgEnd);
    std::transform(camera.formats.begin(), camera.formats.end(), camera.formats.begin(),
                   swappedFormat);
  };
  const auto examine = [&](ContractCamera& camera) {
    calls.demand("ASIInitCamera", {camera.id});
    const auto controls =
        static_cast<std::int64_t>(calls.demand("ASIGetNumOfControls", {camera.id}).number(0));
    for (std::int64_t c = 0; c < controls; ++c) {
      const SdkCall& caps = calls.ask("ASIGetControlCaps", {camera.id, logged(c)});
      const auto control = static_cast<int>(caps.number(0));
      if (control == gainControl) {
        calls.takeGain(caps, camera, 1);
      } else if (control == exposureControl) {
        calls.takeMaxExposure(caps, camera, 1);
      }
    }
  };
  discovery.discoverById(calls, "ASIGetNumOfConnectedCameras", "ASIGetCameraProperty", complete,
                         examine);
}

std::int64_t configure(SdkCalls& calls, ContractActive& active, int bin) {
  const std::string& device = active.device;
  calls.demand("ASIInitCamera", {device});
  calls.demand("ASISetROIFormat",
               {device, active.widthText(), active.heightText(), std::to_string(bin),
                std::to_string(swappedFormat(active.format))});
  calls.demand("ASISetStartPos", {device, "0", "0"});
  active.takeSizeFrom(calls.demand("ASIGetROIFormat", {device}));
  return 0;
}

void start(SdkCalls& calls, const std::string& device) {
  calls.demand("ASIStartVideoCapture", {device});
}

bool read(SdkCalls& calls, const ContractActive& active, const std::string& bufferLength,
          const std::string& timeoutMs) {
  const SdkCall& frame =
      calls.ask("ASIGetVideoData", {active.device, "buffer", bufferLength, timeoutMs});
  if (frame.code() == timeOut) {
    return false;
  }
  calls.checked(frame, "ASIGetVideoData");
  return true;
}

void apply(SdkCalls& calls, const std::string& device, std::int64_t exposureUs, int gain,
           int offset) {
  const auto set = [&](const char* label, Control control, std::int64_t value) {
    calls.demandAs(label, "ASISetControlValue",
                   {device, std::to_string(control), logged(value), notAutomatic});
  };
  set("ASI exposure", exposureControl, exposureUs);
  set("ASI gain", gainControl, gain);
  const auto controls = static_cast<std::int64_t>(
      calls.demandAs("ASI controls", "ASIGetNumOfControls", {device}).number(0));
  for (std::int64_t c = 0; c < controls; ++c) {
    const SdkCall& caps =
        calls.demandAs("ASI control caps", "ASIGetControlCaps", {device, logged(c)});
    const bool isWritable = caps.number(3) != 0;
    if (static_cast<int>(caps.number(0)) == offsetControl && isWritable) {
      set("ASI offset", offsetControl, offset);
    }
  }
}

double temperature(SdkCalls& calls, const std::string& device) {
  return calls.demand("ASIGetControlValue", {device, temperatureControl}).number(0) / 10;
}

}  // namespace

extern const FamilyContract asiContract{
    .sdk = familyNamed("ASICamera2"),
    .stopCall = "ASIStopVideoCapture",
    .widthStep = 8,
    .heightStep = 2,
    .discover = discover,
    .configure = configure,
    .start = start,
    .read = read,
    .apply = apply,
    .temperature = temperature,
};

}  // namespace orvane::testing
