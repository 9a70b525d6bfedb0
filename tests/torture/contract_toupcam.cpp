// The contract of ToupTek's family.
#include <algorithm>
#include <stdexcept>

#include "torture/contract_family.hpp"

namespace orvane::testing {

namespace {

// The SDK's constants.
constexpr std::int64_t mostDevices = 128;
constexpr const char* rawOption = "4";
constexpr const char* bitDepthOption = "6";
constexpr const char* blackLevelOption = "21";
constexpr const char* packedRows = "-1";
constexpr std::int64_t noFrameWaiting = -2147483638;  // 0x8000000A

// The four letters of the Bayer pattern, the first in the lowest byte.
int bayerOfLetters(std::int64_t letters) {
  return letters == 0x42474752   ? hostRggb
         : letters == 0x52474742 ? hostBggr
         : letters == 0x47425247 ? hostGrbg
         : letters == 0x47524247 ? hostGbrg
                                 : hostNoBayer;
}

void examine(SdkCalls& calls, const std::string& handle, ContractCamera& camera) {
  // The only result that is a value, so a failure code is taken as a negative depth: below 9 bits.
  camera.bitDepth = static_cast<int>(calls.ask("Toupcam_get_MaxBitDepth", {handle}).code());
  if (camera.bitDepth > 8) {
    camera.formats.push_back(hostRaw16);
  }
  const SdkCall& format =
      calls.checked(calls.askFreely("Toupcam_get_RawFormat", {handle}), "Toupcam_get_RawFormat");
  if (camera.isColor) {
    camera.bayer = bayerOfLetters(static_cast<std::int64_t>(format.number(0)));
    if (camera.bayer == hostNoBayer) {
      throw std::runtime_error("Unsupported ToupTek raw mosaic");
    }
  }
  calls.takeMaxExposure(calls.ask("Toupcam_get_ExpTimeRange", {handle}), camera);
  calls.takeGain(calls.ask("Toupcam_get_ExpoAGainRange", {handle}), camera);
}

void discover(SdkCalls& calls, const Discovery& discovery) {
  const SdkCall& enumeration = calls.ask("Toupcam_EnumV2", {"buffer"});
  const std::vector<std::string> names = enumeration.texts;
  const auto count = static_cast<std::size_t>(std::min(enumeration.code(), mostDevices));
  // The contract skips entries without a model, which the SDK did not fill.
  for (std::size_t i = 0; i < std::min(count, names.size()); ++i) {
    const SimCamera& model = discovery.modelNamed(names[i]);
    ContractCamera camera = discovery.cameraNamed(names[i]);
    camera.id = quoted(textOf(model.key));
    camera.pixelSizeUm = static_cast<double>(static_cast<float>(model.pixelSizeUm));
    camera.isUsb3Host = camera.isUsb3Camera && camera.isUsb3Host;
    calls.whileOpen(camera.id, [&](const std::string& handle) {
      examine(calls, handle, camera);
      discovery.add(calls, camera);
    });
  }
}

std::int64_t configure(SdkCalls& calls, ContractActive& active, int /*bin*/) {
  const std::string& device = active.device;
  calls.demandAs("ToupTek RAW", "Toupcam_put_Option", {device, rawOption, "1"});
  calls.demandAs("ToupTek depth", "Toupcam_put_Option",
                 {device, bitDepthOption, active.format == hostRaw16 ? "1" : "0"});
  calls.demandAs("ToupTek ROI", "Toupcam_put_Roi",
                 {device, "0", "0", active.widthText(), active.heightText()});
  active.takeSizeFrom(calls.demandAs("ToupTek size", "Toupcam_get_FinalSize", {device}));
  return 0;
}

void start(SdkCalls& calls, const std::string& device) {
  calls.demandAs("ToupTek start", "Toupcam_StartPullModeWithCallback", {device, "null", "null"});
}

bool read(SdkCalls& calls, const ContractActive& active, const std::string& /*bufferLength*/,
          const std::string& /*timeoutMs*/) {
  const SdkCall& frame =
      calls.ask("Toupcam_PullImageWithRowPitch",
                {active.device, "buffer", std::to_string(active.bits()), packedRows});
  if (frame.code() == noFrameWaiting) {
    return false;
  }
  calls.checked(frame, "ToupTek pull frame");
  if (frame.number(0) != active.width || frame.number(1) != active.height) {
    calls.refuse("ToupTek frame geometry changed");
  }
  return true;
}

void apply(SdkCalls& calls, const std::string& device, std::int64_t exposureUs, int gain,
           int offset) {
  calls.demandAs("ToupTek manual exposure", "Toupcam_put_AutoExpoEnable", {device, "0"});
  calls.demandAs("ToupTek exposure", "Toupcam_put_ExpoTime", {device, logged(exposureUs)});
  if (gain < 0 || gain > 65535) {
    calls.refuse("ToupTek gain out of range");
  }
  calls.demandAs("ToupTek gain", "Toupcam_put_ExpoAGain", {device, std::to_string(gain)});
  calls.demandAs("ToupTek black level", "Toupcam_put_Option",
                 {device, blackLevelOption, std::to_string(offset)});
}

double temperature(SdkCalls& calls, const std::string& device) {
  return calls.demand("Toupcam_get_Temperature", {device}).number(0) / 10;
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
