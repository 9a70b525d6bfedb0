// QHYCCD's SDK, answering whatever the input says.
#include <algorithm>
#include <cstring>

#include "lying_sdks/handles.hpp"
#include "lying_sdks/liar.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"

namespace orvane::fuzz {

namespace {

// The SDK is told no length; this many bytes are what its callers provide by agreement.
using Text = char[256];

Device& used(void* handle, const char* call) {
  return liar().used(Vendor::Qhy, keyOf(handle), call);
}

std::uint32_t result() {
  return static_cast<std::uint32_t>(liar().result());
}

}  // namespace

void addQhy(Sdk& sdk) {
  sdk.baseName = "qhyccd";
  sdk.stopFunction = "StopQHYCCDLive";
  sdk.closeFunction = "CloseQHYCCD";

  ORVANE_SCRIPT(
      sdk, InitQHYCCDResource, +[]() -> std::uint32_t { return liar().qhyResourceResult; });
  ORVANE_SCRIPT(
      sdk, ScanQHYCCD, +[]() -> std::uint32_t {
        return liar().isSound() ? 1U + liar().input.byte() % 3U
                                : static_cast<std::uint32_t>(liar().input.number());
      });
  ORVANE_SCRIPT(
      sdk, GetQHYCCDId, +[](std::uint32_t /*index*/, char* id) -> std::uint32_t {
        liar().fill(*reinterpret_cast<Text*>(id));
        return result();
      });
  ORVANE_SCRIPT(
      sdk, GetQHYCCDModel, +[](char* id, char* model) -> std::uint32_t {
        liar().require(std::strlen(id) <= sizeof(Text), "id without an end");
        liar().fill(*reinterpret_cast<Text*>(model));
        return result();
      });
  ORVANE_SCRIPT(
      sdk, OpenQHYCCD, +[](char* id) -> void* {
        liar().require(std::strlen(id) <= sizeof(Text), "id without an end");
        return openHandle(Vendor::Qhy);
      });
  ORVANE_SCRIPT(
      sdk, CloseQHYCCD, +[](void* handle) -> std::uint32_t {
        liar().closed(Vendor::Qhy, keyOf(handle));
        return liar().input.word();
      });
  ORVANE_SCRIPT(
      sdk, SetQHYCCDStreamMode, +[](void* handle, std::uint8_t mode) -> std::uint32_t {
        used(handle, "SetQHYCCDStreamMode");
        liar().require(mode == 1, "stream mode that is not live");
        return result();
      });
  ORVANE_SCRIPT(
      sdk, InitQHYCCD, +[](void* handle) -> std::uint32_t {
        used(handle, "InitQHYCCD");
        return result();
      });
  ORVANE_SCRIPT(
      sdk, GetQHYCCDChipInfo,
      +[](void* handle, double* chipWidth, double* chipHeight, std::uint32_t* imageWidth,
          std::uint32_t* imageHeight, double* pixelWidth, double* pixelHeight,
          std::uint32_t* bitsPerPixel) -> std::uint32_t {
        Liar& lie = liar();
        used(handle, "GetQHYCCDChipInfo");
        *chipWidth = lie.input.real();
        *chipHeight = lie.input.real();
        *imageWidth = static_cast<std::uint32_t>(lie.length());
        *imageHeight = static_cast<std::uint32_t>(lie.length());
        *pixelWidth = lie.input.real();
        *pixelHeight = lie.input.real();
        *bitsPerPixel = static_cast<std::uint32_t>(lie.input.number());
        return result();
      });
  ORVANE_SCRIPT(
      sdk, IsQHYCCDControlAvailable, +[](void* handle, int /*controlId*/) -> std::uint32_t {
        used(handle, "IsQHYCCDControlAvailable");
        return liar().isSound() ? liar().input.byte() % 6U : liar().input.word();
      });
  ORVANE_SCRIPT(
      sdk, GetQHYCCDParamMinMaxStep,
      +[](void* handle, int /*controlId*/, double* minimum, double* maximum,
          double* step) -> std::uint32_t {
        used(handle, "GetQHYCCDParamMinMaxStep");
        *minimum = liar().input.real();
        *maximum = liar().input.real();
        *step = liar().input.real();
        return result();
      });
  ORVANE_SCRIPT(
      sdk, SetQHYCCDParam, +[](void* handle, int /*controlId*/, double value) -> std::uint32_t {
        used(handle, "SetQHYCCDParam");
        liar().require(value == value, "parameter that is no number");
        return result();
      });
  ORVANE_SCRIPT(
      sdk, GetQHYCCDParam, +[](void* handle, int /*controlId*/) -> double {
        used(handle, "GetQHYCCDParam");
        return liar().input.real();
      });
  ORVANE_SCRIPT(
      sdk, SetQHYCCDBinMode,
      +[](void* handle, std::uint32_t horizontal, std::uint32_t vertical) -> std::uint32_t {
        used(handle, "SetQHYCCDBinMode");
        liar().require(horizontal == vertical && horizontal >= 1 && horizontal <= 4, "bin mode");
        return result();
      });
  ORVANE_SCRIPT(
      sdk, SetQHYCCDBitsMode, +[](void* handle, std::uint32_t bits) -> std::uint32_t {
        used(handle, "SetQHYCCDBitsMode").bytesPerPixel = bits / 8;
        liar().require(bits == 8 || bits == 16, "bits mode");
        return result();
      });
  ORVANE_SCRIPT(
      sdk, SetQHYCCDResolution,
      +[](void* handle, std::uint32_t x, std::uint32_t y, std::uint32_t width,
          std::uint32_t height) -> std::uint32_t {
        Device& device = used(handle, "SetQHYCCDResolution");
        device.frameWidth = width;
        device.frameHeight = height;
        liar().require(x == 0 && y == 0, "region that is not at the corner");
        liar().require(width >= 1 && height >= 1, "region of no pixels");
        return result();
      });
  ORVANE_SCRIPT(
      sdk, GetQHYCCDMemLength, +[](void* handle) -> std::uint32_t {
        Liar& lie = liar();
        Device& device = used(handle, "GetQHYCCDMemLength");
        const auto length = lie.isSound() ? lie.input.byte() * 1024U
                                          : static_cast<std::uint32_t>(lie.input.number());
        device.frameMemory = length;
        return length;
      });
  ORVANE_SCRIPT(
      sdk, BeginQHYCCDLive, +[](void* handle) -> std::uint32_t {
        Device& device = used(handle, "BeginQHYCCDLive");
        const std::uint32_t code = result();
        device.isStreaming = code == 0;
        return code;
      });
  ORVANE_SCRIPT(
      sdk, StopQHYCCDLive, +[](void* handle) -> std::uint32_t {
        liar().stopped(Vendor::Qhy, keyOf(handle));
        return liar().input.word();
      });
  ORVANE_SCRIPT(
      sdk, GetQHYCCDLiveFrame,
      +[](void* handle, std::uint32_t* width, std::uint32_t* height, std::uint32_t* bitsPerPixel,
          std::uint32_t* channels, std::uint8_t* data) -> std::uint32_t {
        Liar& lie = liar();
        const Device& device = used(handle, "GetQHYCCDLiveFrame");
        lie.require(device.isStreaming, "frame asked for without a stream");
        const bool isSound = lie.isSound();
        *width = static_cast<std::uint32_t>(isSound ? device.frameWidth : lie.length());
        *height = static_cast<std::uint32_t>(isSound ? device.frameHeight : lie.length());
        *bitsPerPixel =
            static_cast<std::uint32_t>(isSound ? device.bytesPerPixel * 8 : lie.input.number());
        *channels = isSound ? 1 : static_cast<std::uint32_t>(lie.input.number());
        // All that it may: what it said a frame takes, or the frame where that is more.
        const std::int64_t bytes = std::max(
            device.frameMemory, device.frameWidth * device.frameHeight * device.bytesPerPixel);
        std::memset(data, 0x5A, static_cast<std::size_t>(bytes));
        return result();
      });
}

}  // namespace orvane::fuzz
