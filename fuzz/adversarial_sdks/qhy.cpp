// An adversarial version of QHYCCD's SDK: the input determines every answer.
#include <cstring>

#include "adversarial_sdks/adversary.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"

namespace orvane::fuzz {

namespace {

// The functions take no length. Callers must provide this many bytes.
using Text = char[256];

std::uint32_t fillText(char* text) {
  adversary().fill(*reinterpret_cast<Text*>(text));
  return static_cast<std::uint32_t>(adversary().result(Vendor::Qhy));
}

void checkId(const char* id) {
  adversary().require(std::strlen(id) <= sizeof(Text), "id without an end");
}

}  // namespace

void addQhy(Sdk& sdk) {
  sdk.add(InitQHYCCDResource, []() -> std::uint32_t { return adversary().qhyResourceResult; });
  sdk.add(ScanQHYCCD, [] { return static_cast<std::uint32_t>(adversary().cameraCount()); });
  sdk.add(GetQHYCCDId, [](std::uint32_t /*index*/, char* id) { return fillText(id); });
  sdk.add(GetQHYCCDModel, [](char* id, char* model) {
    checkId(id);
    return fillText(model);
  });
  sdk.add(OpenQHYCCD, [](char* id) {
    checkId(id);
    return adversary().openedHandle(Vendor::Qhy);
  });
  sdk.addCall<SetQHYCCDStreamMode>(
      [](std::uint8_t mode) { adversary().require(mode == 1, "stream mode that is not live"); });
  sdk.addCall<InitQHYCCD>();
  sdk.addCall<GetQHYCCDChipInfo>([](double* chipWidth, double* chipHeight,
                                    std::uint32_t* imageWidth, std::uint32_t* imageHeight,
                                    double* pixelWidth, double* pixelHeight,
                                    std::uint32_t* bitsPerPixel) {
    Adversary& answers = adversary();
    answers.input.fill(*chipWidth, *chipHeight);
    answers.fillLengths(*imageWidth, *imageHeight);
    answers.input.fill(*pixelWidth, *pixelHeight, *bitsPerPixel);
  });
  sdk.addCall<IsQHYCCDControlAvailable>([](int /*controlId*/) {
    return adversary().isSound() ? adversary().input.byte() % 6U : adversary().input.word();
  });
  sdk.addCall<GetQHYCCDParamMinMaxStep>();
  sdk.addCall<SetQHYCCDParam>([](int /*controlId*/, double value) {
    adversary().require(value == value, "parameter that is no number");
  });
  sdk.addCall<GetQHYCCDParam>([](int /*controlId*/) { return adversary().input.real(); });
  sdk.addCall<SetQHYCCDBinMode>([](std::uint32_t horizontal, std::uint32_t vertical) {
    adversary().require(horizontal == vertical && horizontal >= 1 && horizontal <= 4, "bin mode");
  });
  sdk.addCall<SetQHYCCDBitsMode>([](Device& device, std::uint32_t bits) {
    device.bytesPerPixel = bits / 8;
    adversary().require(bits == 8 || bits == 16, "bits mode");
  });
  sdk.addCall<SetQHYCCDResolution>([](Device& device, std::uint32_t x, std::uint32_t y,
                                      std::uint32_t width, std::uint32_t height) {
    adversary().checkPosition(x, y);
    adversary().setSize(device, width, height);
  });
  sdk.addCall<GetQHYCCDMemLength>([](Device& device) {
    Adversary& answers = adversary();
    const auto length = answers.isSound() ? answers.input.byte() * 1024U
                                          : static_cast<std::uint32_t>(answers.input.number());
    device.frameMemory = length;
    return length;
  });
  sdk.addCall<BeginQHYCCDLive>(
      [](Device& device) { return adversary().started(Vendor::Qhy, device); });
  sdk.addCall<GetQHYCCDLiveFrame>([](const Device& device, std::uint32_t* width,
                                     std::uint32_t* height, std::uint32_t* bitsPerPixel,
                                     std::uint32_t* channels, std::uint8_t* data) {
    Adversary& answers = adversary();
    const bool isSound = answers.isSound();
    *width = static_cast<std::uint32_t>(isSound ? device.frameWidth : answers.length());
    *height = static_cast<std::uint32_t>(isSound ? device.frameHeight : answers.length());
    *bitsPerPixel =
        static_cast<std::uint32_t>(isSound ? device.bytesPerPixel * 8 : answers.input.number());
    *channels = static_cast<std::uint32_t>(isSound ? 1 : answers.input.number());
    answers.deliverFrame(device, data, device.frameBytes());
  });
  sdk.addEnds<StopQHYCCDLive, CloseQHYCCD>();
}

}  // namespace orvane::fuzz
