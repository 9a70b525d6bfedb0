// The contract of ZWO's family.
#include <algorithm>

#include "torture/contract_family.hpp"

namespace orvane::testing {

namespace {

// The SDK's constants.
constexpr int imgEnd = -1;
constexpr int gainControl = 0;
constexpr int exposureControl = 1;
constexpr int offsetControl = 5;
constexpr int temperatureControl = 8;
constexpr int notAutomatic = 0;
constexpr std::int64_t timeOut = 11;

// The SDK swaps the numbers of RAW16 and RGB24.
int swappedFormat(int format) {
  return format == hostRaw16 ? hostRgb24 : format == hostRgb24 ? hostRaw16 : format;
}

void discover(SdkCalls& sdk, const Discovery& discovery) {
  const auto complete = [](const SimCamera& model, ContractCamera& camera) {
    camera.bins = listOf(model.bins, 0);
    camera.formats = listOf(model.formats, imgEnd);
    std::transform(camera.formats.begin(), camera.formats.end(), camera.formats.begin(),
                   swappedFormat);
  };
  const auto examine = [](SdkCalls& device, ContractCamera& camera) {
    device.demand("ASIInitCamera");
    const double controls = device.demand("ASIGetNumOfControls").number(0);
    for (int c = 0; c < controls; ++c) {
      const SdkCall& caps = device.ask("ASIGetControlCaps", c);
      if (caps.number(0) == gainControl) {
        device.takeGain(caps, camera, 1);
      } else if (caps.number(0) == exposureControl) {
        device.takeMaxExposure(caps, camera, 1);
      }
    }
  };
  discovery.discoverById(sdk, "ASIGetNumOfConnectedCameras", "ASIGetCameraProperty", complete,
                         examine);
}

std::int64_t configure(SdkCalls& device, ContractActive& active, int bin) {
  device.demand("ASIInitCamera");
  device.demand("ASISetROIFormat", active.width, active.height, bin, swappedFormat(active.format));
  device.demand("ASISetStartPos", 0, 0);
  active.takeSizeFrom(device.demand("ASIGetROIFormat"));
  return 0;
}

bool read(SdkCalls& device, const ContractActive& /*active*/, int bufferLength, int timeoutMs) {
  return device.hasFrame(device.ask("ASIGetVideoData", "buffer", bufferLength, timeoutMs), timeOut,
                         "ASIGetVideoData");
}

void apply(SdkCalls& device, std::int64_t exposureUs, int gain, int offset) {
  const auto set = [&](const char* label, int control, std::int64_t value) {
    device.demandAs(label, "ASISetControlValue", control, value, notAutomatic);
  };
  set("ASI exposure", exposureControl, exposureUs);
  set("ASI gain", gainControl, gain);
  const double controls = device.demandAs("ASI controls", "ASIGetNumOfControls").number(0);
  for (int c = 0; c < controls; ++c) {
    const SdkCall& caps = device.demandAs("ASI control caps", "ASIGetControlCaps", c);
    const bool isWritable = caps.number(3) != 0;
    if (caps.number(0) == offsetControl && isWritable) {
      set("ASI offset", offsetControl, offset);
    }
  }
}

double temperature(SdkCalls& device) {
  return device.demand("ASIGetControlValue", temperatureControl).number(0) / 10;
}

}  // namespace

extern const FamilyContract asiContract{
    .sdk = familyNamed("ASICamera2"),
    .stopCall = "ASIStopVideoCapture",
    .widthStep = 8,
    .heightStep = 2,
    .discover = discover,
    .configure = configure,
    .start = [](SdkCalls& device) { device.demand("ASIStartVideoCapture"); },
    .read = read,
    .apply = apply,
    .temperature = temperature,
};

}  // namespace orvane::testing
