// An adversarial version of QHYCCD's SDK: the input determines every answer.
#include <algorithm>
#include <cstring>

#include "adversarial_sdks/adversary.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"

namespace orvane::fuzz {

namespace {

// The function takes no length. Callers must provide this many bytes.
using Text = char[256];

std::uint32_t result() {
  return static_cast<std::uint32_t>(adversary().result());
}

}  // namespace

void addQhy(Sdk& sdk) {
  sdk.stopFunction = StopQHYCCDLive.name();
  sdk.closeFunction = CloseQHYCCD.name();

  sdk.add(InitQHYCCDResource, []() -> std::uint32_t { return adversary().qhyResourceResult; });
  sdk.add(ScanQHYCCD, []() -> std::uint32_t {
    return adversary().isSound() ? 1U + adversary().input.byte() % 3U
                                 : static_cast<std::uint32_t>(adversary().input.number());
  });
  sdk.add(GetQHYCCDId, [](std::uint32_t /*index*/, char* id) -> std::uint32_t {
    adversary().fill(*reinterpret_cast<Text*>(id));
    return result();
  });
  sdk.add(GetQHYCCDModel, [](char* id, char* model) -> std::uint32_t {
    adversary().require(std::strlen(id) <= sizeof(Text), "id without an end");
    adversary().fill(*reinterpret_cast<Text*>(model));
    return result();
  });
  sdk.add(OpenQHYCCD, [](char* id) -> void* {
    adversary().require(std::strlen(id) <= sizeof(Text), "id without an end");
    return adversary().openedHandle(Vendor::Qhy);
  });
  sdk.add(CloseQHYCCD, [](void* handle) -> std::uint32_t {
    adversary().closed(Vendor::Qhy, keyOf(handle));
    return adversary().input.word();
  });
  sdk.add(SetQHYCCDStreamMode, [](void* handle, std::uint8_t mode) -> std::uint32_t {
    used(handle, SetQHYCCDStreamMode);
    adversary().require(mode == 1, "stream mode that is not live");
    return result();
  });
  sdk.add(InitQHYCCD, [](void* handle) -> std::uint32_t {
    used(handle, InitQHYCCD);
    return result();
  });
  sdk.add(GetQHYCCDChipInfo,
          [](void* handle, double* chipWidth, double* chipHeight, std::uint32_t* imageWidth,
             std::uint32_t* imageHeight, double* pixelWidth, double* pixelHeight,
             std::uint32_t* bitsPerPixel) -> std::uint32_t {
            Adversary& answers = adversary();
            used(handle, GetQHYCCDChipInfo);
            *chipWidth = answers.input.real();
            *chipHeight = answers.input.real();
            *imageWidth = static_cast<std::uint32_t>(answers.length());
            *imageHeight = static_cast<std::uint32_t>(answers.length());
            *pixelWidth = answers.input.real();
            *pixelHeight = answers.input.real();
            *bitsPerPixel = static_cast<std::uint32_t>(answers.input.number());
            return result();
          });
  sdk.add(IsQHYCCDControlAvailable, [](void* handle, int /*controlId*/) -> std::uint32_t {
    used(handle, IsQHYCCDControlAvailable);
    return adversary().isSound() ? adversary().input.byte() % 6U : adversary().input.word();
  });
  sdk.add(GetQHYCCDParamMinMaxStep,
          [](void* handle, int /*controlId*/, double* minimum, double* maximum,
             double* step) -> std::uint32_t {
            used(handle, GetQHYCCDParamMinMaxStep);
            *minimum = adversary().input.real();
            *maximum = adversary().input.real();
            *step = adversary().input.real();
            return result();
          });
  sdk.add(SetQHYCCDParam, [](void* handle, int /*controlId*/, double value) -> std::uint32_t {
    used(handle, SetQHYCCDParam);
    adversary().require(value == value, "parameter that is no number");
    return result();
  });
  sdk.add(GetQHYCCDParam, [](void* handle, int /*controlId*/) -> double {
    used(handle, GetQHYCCDParam);
    return adversary().input.real();
  });
  sdk.add(SetQHYCCDBinMode,
          [](void* handle, std::uint32_t horizontal, std::uint32_t vertical) -> std::uint32_t {
            used(handle, SetQHYCCDBinMode);
            adversary().require(horizontal == vertical && horizontal >= 1 && horizontal <= 4,
                                "bin mode");
            return result();
          });
  sdk.add(SetQHYCCDBitsMode, [](void* handle, std::uint32_t bits) -> std::uint32_t {
    used(handle, SetQHYCCDBitsMode).bytesPerPixel = bits / 8;
    adversary().require(bits == 8 || bits == 16, "bits mode");
    return result();
  });
  sdk.add(SetQHYCCDResolution,
          [](void* handle, std::uint32_t x, std::uint32_t y, std::uint32_t width,
             std::uint32_t height) -> std::uint32_t {
            Device& device = used(handle, SetQHYCCDResolution);
            device.frameWidth = width;
            device.frameHeight = height;
            adversary().require(x == 0 && y == 0, "region that is not at the corner");
            adversary().require(width >= 1 && height >= 1, "region of no pixels");
            return result();
          });
  sdk.add(GetQHYCCDMemLength, [](void* handle) -> std::uint32_t {
    Adversary& answers = adversary();
    Device& device = used(handle, GetQHYCCDMemLength);
    const auto length = answers.isSound() ? answers.input.byte() * 1024U
                                          : static_cast<std::uint32_t>(answers.input.number());
    device.frameMemory = length;
    return length;
  });
  sdk.add(BeginQHYCCDLive, [](void* handle) -> std::uint32_t {
    Device& device = used(handle, BeginQHYCCDLive);
    const std::uint32_t code = result();
    device.isStreaming = code == 0;
    return code;
  });
  sdk.add(StopQHYCCDLive, [](void* handle) -> std::uint32_t {
    adversary().stopped(Vendor::Qhy, keyOf(handle));
    return adversary().input.word();
  });
  sdk.add(GetQHYCCDLiveFrame,
          [](void* handle, std::uint32_t* width, std::uint32_t* height, std::uint32_t* bitsPerPixel,
             std::uint32_t* channels, std::uint8_t* data) -> std::uint32_t {
            Adversary& answers = adversary();
            const Device& device = used(handle, GetQHYCCDLiveFrame);
            answers.require(device.isStreaming, "frame asked for without a stream");
            const bool isSound = answers.isSound();
            *width = static_cast<std::uint32_t>(isSound ? device.frameWidth : answers.length());
            *height = static_cast<std::uint32_t>(isSound ? device.frameHeight : answers.length());
            *bitsPerPixel = static_cast<std::uint32_t>(isSound ? device.bytesPerPixel * 8
                                                               : answers.input.number());
            *channels = isSound ? 1 : static_cast<std::uint32_t>(answers.input.number());
            // The most that it may write: the reported memory length, or the frame if that is
            // larger.
            const std::int64_t bytes = std::max(
                device.frameMemory, device.frameWidth * device.frameHeight * device.bytesPerPixel);
            std::memset(data, 0x5A, static_cast<std::size_t>(bytes));
            return result();
          });
}

}  // namespace orvane::fuzz
