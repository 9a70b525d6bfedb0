// Player One's SDK, answering whatever the input says.
#include <cstring>

#include "lying_sdks/liar.hpp"
#include "vendors/sdk/playerone_sdk.hpp"

namespace orvane::fuzz {

namespace {

std::uintptr_t keyOf(int cameraId) {
  return static_cast<std::uintptr_t>(static_cast<unsigned>(cameraId));
}

Device& used(int cameraId, const char* call) {
  return liar().used(Vendor::PlayerOne, keyOf(cameraId), call);
}

// Any eight bytes, as a number or as a double.
POAConfigValue anyValue() {
  POAConfigValue value{.floatValue = 0.0};
  if (liar().isSound()) {
    value.intValue = liar().input.number();
  } else {
    value.floatValue = liar().input.real();
  }
  return value;
}

}  // namespace

void addPlayerOne(Sdk& sdk) {
  sdk.baseName = "PlayerOneCamera";
  sdk.stopFunction = "POAStopExposure";
  sdk.closeFunction = "POACloseCamera";

  ORVANE_SCRIPT(
      sdk, POAGetCameraCount, +[]() -> int {
        return liar().isSound() ? 1 + liar().input.byte() % 3 : liar().input.number();
      });
  ORVANE_SCRIPT(
      sdk, POAGetCameraProperties, +[](int /*index*/, POACameraProperties* properties) -> int {
        Liar& lie = liar();
        lie.fill(properties->cameraModelName);
        properties->cameraID = lie.input.number();
        properties->maxWidth = lie.length();
        properties->maxHeight = lie.length();
        properties->bitDepth = lie.input.number();
        properties->isColorCamera = lie.input.number();
        properties->isHasCooler = lie.input.number();
        properties->isUSB3Speed = lie.input.number();
        properties->bayerPattern = lie.input.number();
        properties->pixelSize = lie.input.real();
        lie.fill(properties->bins, 0, 1);
        lie.fill(properties->imgFormats, POA_END, 0);
        return lie.result();
      });
  ORVANE_SCRIPT(
      sdk, POAOpenCamera, +[](int cameraId) -> int {
        const int result = liar().result();
        if (result == 0) {
          liar().opened(Vendor::PlayerOne, keyOf(cameraId));
        }
        return result;
      });
  ORVANE_SCRIPT(
      sdk, POAInitCamera, +[](int cameraId) -> int {
        used(cameraId, "POAInitCamera");
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, POACloseCamera, +[](int cameraId) -> int {
        liar().closed(Vendor::PlayerOne, keyOf(cameraId));
        return liar().input.number();
      });
  ORVANE_SCRIPT(
      sdk, POAGetConfigAttributesByConfigID,
      +[](int cameraId, int /*configId*/, POAConfigAttributes* attributes) -> int {
        used(cameraId, "POAGetConfigAttributesByConfigID");
        attributes->minValue = anyValue();
        attributes->maxValue = anyValue();
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, POASetConfig,
      +[](int cameraId, int /*configId*/, POAConfigValue /*value*/, int /*isAuto*/) -> int {
        used(cameraId, "POASetConfig");
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, POAGetConfig,
      +[](int cameraId, int /*configId*/, POAConfigValue* value, int* isAuto) -> int {
        used(cameraId, "POAGetConfig");
        *value = anyValue();
        *isAuto = liar().input.number();
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, POASetImageStartPos, +[](int cameraId, int x, int y) -> int {
        used(cameraId, "POASetImageStartPos");
        liar().require(x == 0 && y == 0, "region that is not at the corner");
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, POASetImageSize, +[](int cameraId, int width, int height) -> int {
        Device& device = used(cameraId, "POASetImageSize");
        device.frameWidth = width;
        device.frameHeight = height;
        liar().require(width >= 1 && height >= 1, "region of no pixels");
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, POAGetImageSize, +[](int cameraId, int* width, int* height) -> int {
        Liar& lie = liar();
        Device& device = used(cameraId, "POAGetImageSize");
        if (!lie.isSound()) {
          device.frameWidth = lie.length();
          device.frameHeight = lie.length();
        }
        *width = static_cast<int>(device.frameWidth);
        *height = static_cast<int>(device.frameHeight);
        return lie.result();
      });
  ORVANE_SCRIPT(
      sdk, POASetImageBin, +[](int cameraId, int bin) -> int {
        used(cameraId, "POASetImageBin");
        liar().require(bin != 0, "bin 0");
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, POASetImageFormat, +[](int cameraId, int format) -> int {
        used(cameraId, "POASetImageFormat").bytesPerPixel = format == 1 ? 2 : format == 2 ? 3 : 1;
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, POAStartExposure, +[](int cameraId, int isSingleFrame) -> int {
        Device& device = used(cameraId, "POAStartExposure");
        liar().require(isSingleFrame == POA_FALSE, "single frame started");
        const int result = liar().result();
        device.isStreaming = result == 0;
        return result;
      });
  ORVANE_SCRIPT(
      sdk, POAStopExposure, +[](int cameraId) -> int {
        liar().stopped(Vendor::PlayerOne, keyOf(cameraId));
        return liar().input.number();
      });
  ORVANE_SCRIPT(
      sdk, POAImageReady, +[](int cameraId, int* isReady) -> int {
        used(cameraId, "POAImageReady");
        *isReady = liar().isSound() ? POA_TRUE : liar().input.number();
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, POAGetImageData,
      +[](int cameraId, unsigned char* buffer, long length, int /*waitMs*/) -> int {
        const Device& device = used(cameraId, "POAGetImageData");
        liar().require(device.isStreaming, "frame asked for without a stream");
        liar().require(device.frameWidth * device.frameHeight * device.bytesPerPixel <= length,
                       "buffer shorter than a frame");
        std::memset(buffer, 0x5A, static_cast<std::size_t>(length));  // all that it may
        return liar().result();
      });
}

}  // namespace orvane::fuzz
