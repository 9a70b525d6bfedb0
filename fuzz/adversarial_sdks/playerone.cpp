// An adversarial version of Player One's SDK: the input determines every answer.
#include <cstring>

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

  sdk.add(POAGetCameraCount, []() -> int {
    return adversary().isSound() ? 1 + adversary().input.byte() % 3 : adversary().input.number();
  });
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
    return answers.result();
  });
  sdk.add(POAOpenCamera, [](int cameraId) -> int {
    const int result = adversary().result();
    if (result == 0) {
      adversary().opened(Vendor::PlayerOne, keyOf(cameraId));
    }
    return result;
  });
  sdk.add(POAInitCamera, [](int cameraId) -> int {
    used(cameraId, POAInitCamera);
    return adversary().result();
  });
  sdk.add(POACloseCamera, [](int cameraId) -> int {
    adversary().closed(Vendor::PlayerOne, keyOf(cameraId));
    return adversary().input.number();
  });
  sdk.add(POAGetConfigAttributesByConfigID,
          [](int cameraId, int /*configId*/, POAConfigAttributes* attributes) -> int {
            used(cameraId, POAGetConfigAttributesByConfigID);
            attributes->minValue = anyValue();
            attributes->maxValue = anyValue();
            return adversary().result();
          });
  sdk.add(POASetConfig,
          [](int cameraId, int /*configId*/, POAConfigValue /*value*/, int /*isAuto*/) -> int {
            used(cameraId, POASetConfig);
            return adversary().result();
          });
  sdk.add(POAGetConfig,
          [](int cameraId, int /*configId*/, POAConfigValue* value, int* isAuto) -> int {
            used(cameraId, POAGetConfig);
            *value = anyValue();
            *isAuto = adversary().input.number();
            return adversary().result();
          });
  sdk.add(POASetImageStartPos, [](int cameraId, int x, int y) -> int {
    used(cameraId, POASetImageStartPos);
    adversary().require(x == 0 && y == 0, "region that is not at the corner");
    return adversary().result();
  });
  sdk.add(POASetImageSize, [](int cameraId, int width, int height) -> int {
    Device& device = used(cameraId, POASetImageSize);
    device.frameWidth = width;
    device.frameHeight = height;
    adversary().require(width >= 1 && height >= 1, "region of no pixels");
    return adversary().result();
  });
  sdk.add(POAGetImageSize, [](int cameraId, int* width, int* height) -> int {
    Adversary& answers = adversary();
    Device& device = used(cameraId, POAGetImageSize);
    if (!answers.isSound()) {
      device.frameWidth = answers.length();
      device.frameHeight = answers.length();
    }
    *width = static_cast<int>(device.frameWidth);
    *height = static_cast<int>(device.frameHeight);
    return answers.result();
  });
  sdk.add(POASetImageBin, [](int cameraId, int bin) -> int {
    used(cameraId, POASetImageBin);
    adversary().require(bin != 0, "bin 0");
    return adversary().result();
  });
  sdk.add(POASetImageFormat, [](int cameraId, int format) -> int {
    used(cameraId, POASetImageFormat).bytesPerPixel = format == 1 ? 2 : format == 2 ? 3 : 1;
    return adversary().result();
  });
  sdk.add(POAStartExposure, [](int cameraId, int isSingleFrame) -> int {
    Device& device = used(cameraId, POAStartExposure);
    adversary().require(isSingleFrame == POA_FALSE, "single frame started");
    const int result = adversary().result();
    device.isStreaming = result == 0;
    return result;
  });
  sdk.add(POAStopExposure, [](int cameraId) -> int {
    adversary().stopped(Vendor::PlayerOne, keyOf(cameraId));
    return adversary().input.number();
  });
  sdk.add(POAImageReady, [](int cameraId, int* isReady) -> int {
    used(cameraId, POAImageReady);
    *isReady = adversary().isSound() ? POA_TRUE : adversary().input.number();
    return adversary().result();
  });
  sdk.add(
      POAGetImageData, [](int cameraId, unsigned char* buffer, long length, int /*waitMs*/) -> int {
        const Device& device = used(cameraId, POAGetImageData);
        adversary().require(device.isStreaming, "frame asked for without a stream");
        adversary().require(device.frameWidth * device.frameHeight * device.bytesPerPixel <= length,
                            "buffer shorter than a frame");
        std::memset(buffer, 0x5A,
                    static_cast<std::size_t>(length));  // the whole length that it was given
        return adversary().result();
      });
}

}  // namespace orvane::fuzz
