// The contract of ToupTek's family.
#include <algorithm>
#include <stdexcept>

#include "torture/contract_family.hpp"

namespace orvane::testing {

namespace {

// The SDK's constants.
constexpr std::int64_t mostDevices = 128;
constexpr int rawOption = 4;
constexpr int bitDepthOption = 6;
constexpr int blackLevelOption = 21;
constexpr int packedRows = -1;
constexpr std::int64_t noFrameWaiting = -2147483638;  // 0x8000000A

// The four letters of the Bayer pattern, the first in the lowest byte.
int bayerOfLetters(std::int64_t letters) {
  return letters == 0x42474752   ? hostRggb
         : letters == 0x52474742 ? hostBggr
         : letters == 0x47425247 ? hostGrbg
         : letters == 0x47524247 ? hostGbrg
                                 : hostNoBayer;
}

void examine(SdkCalls& device, ContractCamera& camera) {
  // The only result that is a value, so a failure code is taken as a negative depth: below 9 bits.
  camera.bitDepth = static_cast<int>(device.ask("Toupcam_get_MaxBitDepth").code());
  if (camera.bitDepth > 8) {
    camera.formats.push_back(hostRaw16);
  }
  const SdkCall& format =
      device.checked(device.askFreely("Toupcam_get_RawFormat"), "Toupcam_get_RawFormat");
  if (camera.isColor) {
    camera.bayer = bayerOfLetters(static_cast<std::int64_t>(format.number(0)));
    if (camera.bayer == hostNoBayer) {
      throw std::runtime_error("Unsupported ToupTek raw mosaic");
    }
  }
  device.takeMaxExposure(device.ask("Toupcam_get_ExpTimeRange"), camera);
  device.takeGain(device.ask("Toupcam_get_ExpoAGainRange"), camera);
}

void discover(SdkCalls& sdk, const Discovery& discovery) {
  const SdkCall& enumeration = sdk.ask("Toupcam_EnumV2", "buffer");
  const std::vector<std::string> names = enumeration.texts;
  const auto count = static_cast<std::size_t>(std::min(enumeration.code(), mostDevices));
  // The contract skips entries without a model, which the SDK did not fill.
  for (std::size_t i = 0; i < std::min(count, names.size()); ++i) {
    const SimCamera& model = discovery.modelNamed(names[i]);
    ContractCamera camera = discovery.cameraNamed(names[i]);
    camera.id = quoted(textOf(model.key));
    camera.pixelSizeUm = static_cast<double>(static_cast<float>(model.pixelSizeUm));
    camera.isUsb3Host = camera.isUsb3Camera && camera.isUsb3Host;
    sdk.whileOpen(camera.id, [&](SdkCalls& device) {
      examine(device, camera);
      discovery.add(device, camera);
    });
  }
}

std::int64_t configure(SdkCalls& device, ContractActive& active, int /*bin*/) {
  device.demandAs("ToupTek RAW", "Toupcam_put_Option", rawOption, 1);
  device.demandAs("ToupTek depth", "Toupcam_put_Option", bitDepthOption,
                  active.format == hostRaw16 ? 1 : 0);
  device.demandAs("ToupTek ROI", "Toupcam_put_Roi", 0, 0, active.width, active.height);
  active.takeSizeFrom(device.demandAs("ToupTek size", "Toupcam_get_FinalSize"));
  return 0;
}

void start(SdkCalls& device) {
  device.demandAs("ToupTek start", "Toupcam_StartPullModeWithCallback", "null", "null");
}

bool read(SdkCalls& device, const ContractActive& active, int /*bufferLength*/, int /*timeoutMs*/) {
  const SdkCall& frame =
      device.ask("Toupcam_PullImageWithRowPitch", "buffer", active.bits(), packedRows);
  if (!device.hasFrame(frame, noFrameWaiting, "ToupTek pull frame")) {
    return false;
  }
  if (frame.number(0) != active.width || frame.number(1) != active.height) {
    device.refuse("ToupTek frame geometry changed");
  }
  return true;
}

void apply(SdkCalls& device, std::int64_t exposureUs, int gain, int offset) {
  device.demandAs("ToupTek manual exposure", "Toupcam_put_AutoExpoEnable", 0);
  device.demandAs("ToupTek exposure", "Toupcam_put_ExpoTime", exposureUs);
  if (gain < 0 || gain > 65535) {
    device.refuse("ToupTek gain out of range");
  }
  device.demandAs("ToupTek gain", "Toupcam_put_ExpoAGain", gain);
  device.demandAs("ToupTek black level", "Toupcam_put_Option", blackLevelOption, offset);
}

double temperature(SdkCalls& device) {
  return device.demand("Toupcam_get_Temperature").number(0) / 10;
}

}  // namespace

extern const FamilyContract toupTekContract{
    .sdk = familyNamed("toupcam"),
    .stopCall = "Toupcam_Stop",
    .isFailure = [](std::int64_t code) { return code < 0; },
    .discover = discover,
    .configure = configure,
    .start = start,
    .read = read,
    .apply = apply,
    .temperature = temperature,
};

}  // namespace orvane::testing
