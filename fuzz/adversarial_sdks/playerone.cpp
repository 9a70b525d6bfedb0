// An adversarial version of Player One's SDK: the input determines every answer.
#include "adversarial_sdks/adversary.hpp"
#include "vendors/sdk/playerone_sdk.hpp"

namespace orvane::fuzz {

namespace {

// Any eight bytes, read as an integer or as a double.
POAConfigValue anyValue() {
  POAConfigValue value{.floatValue = 0.0};
  if (adversary().isSound()) {
    value.intValue = adversary().input.number();
  } else {
    value.floatValue = adversary().input.real();
  }
  return value;
}

}  // namespace

void addPlayerOne(Sdk& sdk) {
  sdk.add(POAGetCameraCount, []() -> int { return adversary().cameraCount(); });
  sdk.add(POAGetCameraProperties, [](int /*index*/, POACameraProperties* properties) -> int {
    Adversary& answers = adversary();
    answers.fill(properties->cameraModelName);
    answers.input.fill(properties->cameraID);
    answers.fillLengths(properties->maxWidth, properties->maxHeight);
    answers.input.fill(properties->bitDepth, properties->isColorCamera, properties->isHasCooler,
                       properties->isUSB3Speed, properties->bayerPattern, properties->pixelSize);
    answers.fill(properties->bins, 0, 1);
    answers.fill(properties->imgFormats, POA_END, 0);
    return answers.result(Vendor::PlayerOne);
  });
  sdk.add(POAOpenCamera,
          [](int cameraId) -> int { return adversary().openedId(Vendor::PlayerOne, cameraId); });
  sdk.addCall<POAInitCamera>();
  sdk.addCall<POAGetConfigAttributesByConfigID>(
      [](int /*configId*/, POAConfigAttributes* attributes) {
        attributes->minValue = anyValue();
        attributes->maxValue = anyValue();
      });
  sdk.addCall<POASetConfig>();
  sdk.addCall<POAGetConfig>([](int /*configId*/, POAConfigValue* value, int* isAuto) {
    *value = anyValue();
    *isAuto = adversary().input.number();
  });
  sdk.addCall<POASetImageStartPos>([](int x, int y) { adversary().checkPosition(x, y); });
  sdk.addCall<POASetImageSize>(
      [](Device& device, int width, int height) { adversary().setSize(device, width, height); });
  sdk.addCall<POAGetImageSize>([](Device& device, int* width, int* height) {
    adversary().reportSize(device, width, height);
  });
  sdk.addCall<POASetImageBin>([](int bin) { adversary().require(bin != 0, "bin 0"); });
  sdk.addCall<POASetImageFormat>([](Device& device, int format) {
    device.bytesPerPixel = format == 1 ? 2 : format == 2 ? 3 : 1;
  });
  sdk.addCall<POAStartExposure>([](Device& device, int isSingleFrame) {
    adversary().require(isSingleFrame == POA_FALSE, "single frame started");
    return adversary().started(Vendor::PlayerOne, device);
  });
  sdk.addCall<POAImageReady>([](int* isReady) {
    *isReady = adversary().isSound() ? POA_TRUE : adversary().input.number();
  });
  sdk.addCall<POAGetImageData>(
      [](const Device& device, unsigned char* buffer, long length, int /*waitMs*/) {
        adversary().deliverFrame(device, buffer, length);
      });
  sdk.addEnds<POAStopExposure, POACloseCamera>();
}

}  // namespace orvane::fuzz
