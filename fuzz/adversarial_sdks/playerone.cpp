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
  sdk.stopFunction = POAStopExposure.name();
  sdk.closeFunction = POACloseCamera.name();

  sdk.add(POAGetCameraCount, []() -> int { return adversary().cameraCount(); });
  sdk.add(POAGetCameraProperties, [](int /*index*/, POACameraProperties* properties) -> int {
    Adversary& answers = adversary();
    answers.fill(properties->cameraModelName);
    properties->cameraID = answers.input.number();
    properties->maxWidth = answers.length();
    properties->maxHeight = answers.length();
    properties->bitDepth = answers.input.number();
    properties->isColorCamera = answers.input.number();
    properties->isHasCooler = answers.input.number();
    properties->isUSB3Speed = answers.input.number();
    properties->bayerPattern = answers.input.number();
    properties->pixelSize = answers.input.real();
    answers.fill(properties->bins, 0, 1);
    answers.fill(properties->imgFormats, POA_END, 0);
    return answers.result(Vendor::PlayerOne);
  });
  sdk.add(POAOpenCamera,
          [](int cameraId) -> int { return adversary().openedId(Vendor::PlayerOne, cameraId); });
  sdk.addCall<POAInitCamera>();
  sdk.add(POACloseCamera, [](int cameraId) -> int {
    adversary().closed(Vendor::PlayerOne, keyOf(cameraId));
    return adversary().input.number();
  });
  sdk.addCall<POAGetConfigAttributesByConfigID>(
      [](const Device& /*device*/, int /*configId*/, POAConfigAttributes* attributes) {
        attributes->minValue = anyValue();
        attributes->maxValue = anyValue();
      });
  sdk.addCall<POASetConfig>();
  sdk.addCall<POAGetConfig>(
      [](const Device& /*device*/, int /*configId*/, POAConfigValue* value, int* isAuto) {
        *value = anyValue();
        *isAuto = adversary().input.number();
      });
  sdk.addCall<POASetImageStartPos>(
      [](const Device& /*device*/, int x, int y) { adversary().checkPosition(x, y); });
  sdk.addCall<POASetImageSize>(
      [](Device& device, int width, int height) { adversary().setSize(device, width, height); });
  sdk.addCall<POAGetImageSize>([](Device& device, int* width, int* height) {
    adversary().reportSize(device, width, height);
  });
  sdk.addCall<POASetImageBin>(
      [](const Device& /*device*/, int bin) { adversary().require(bin != 0, "bin 0"); });
  sdk.addCall<POASetImageFormat>([](Device& device, int format) {
    device.bytesPerPixel = format == 1 ? 2 : format == 2 ? 3 : 1;
  });
  sdk.addCall<POAStartExposure>([](Device& device, int isSingleFrame) {
    adversary().require(isSingleFrame == POA_FALSE, "single frame started");
    return adversary().started(Vendor::PlayerOne, device);
  });
  sdk.add(POAStopExposure, [](int cameraId) -> int {
    adversary().stopped(Vendor::PlayerOne, keyOf(cameraId));
    return adversary().input.number();
  });
  sdk.addCall<POAImageReady>([](const Device& /*device*/, int* isReady) {
    *isReady = adversary().isSound() ? POA_TRUE : adversary().input.number();
  });
  sdk.addCall<POAGetImageData>(
      [](const Device& device, unsigned char* buffer, long length, int /*waitMs*/) {
        adversary().deliverFrame(device, buffer, length);
      });
}

}  // namespace orvane::fuzz
