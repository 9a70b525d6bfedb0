// An adversarial version of ToupTek's SDK: the input determines every answer.
#include <cstring>

#include "adversarial_sdks/adversary.hpp"
#include "vendors/sdk/toupcam_sdk.hpp"

namespace orvane::fuzz {

namespace {

// Negative codes are failures, positive ones are successes.
std::int32_t result() {
  const std::int32_t code = adversary().result();
  return code > 0 && code < 8 ? -code : code;
}

// A model as the SDK would hold it: constant data that outlives every call.
const ToupcamModelV2* anyModel() {
  static std::array<ToupcamModelV2, TOUPCAM_MAX> models{};
  static std::size_t next = 0;
  Adversary& answers = adversary();
  ToupcamModelV2& model = models[next++ % models.size()];
  model.name = nullptr;  // the library does not read it
  model.flag = answers.isSound() ? answers.input.byte() : answers.input.longWord();
  model.xpixsz = static_cast<float>(answers.input.number());
  model.res[0].width = static_cast<unsigned>(answers.length());
  model.res[0].height = static_cast<unsigned>(answers.length());
  return &model;
}

}  // namespace

void addToupTek(Sdk& sdk) {
  sdk.stopFunction = Toupcam_Stop.name();
  sdk.closeFunction = Toupcam_Close.name();

  sdk.add(Toupcam_EnumV2, [](ToupcamDeviceV2* devices) -> unsigned {
    Adversary& answers = adversary();
    const auto count = answers.isSound() ? 1U + answers.input.byte() % 3U
                                         : static_cast<unsigned>(answers.input.number());
    // Reports any count, but fills at most TOUPCAM_MAX entries.
    for (unsigned i = 0; i < std::min<unsigned>(count, TOUPCAM_MAX); ++i) {
      answers.fill(devices[i].displayname);
      answers.fill(devices[i].id);
      devices[i].model = answers.isSound() ? anyModel() : nullptr;
    }
    return count;
  });
  sdk.add(Toupcam_Open, [](const ToupcamChar* id) -> HToupcam {
    std::size_t length = 0;
    while (id[length] != ToupcamChar{}) {
      ++length;
    }
    adversary().require(length <= 64, "id without an end");
    return adversary().openedHandle(Vendor::ToupTek);
  });
  sdk.add(Toupcam_Close,
          [](HToupcam handle) { adversary().closed(Vendor::ToupTek, keyOf(handle)); });
  sdk.add(Toupcam_get_MaxBitDepth, [](HToupcam handle) -> std::int32_t {
    used(handle, Toupcam_get_MaxBitDepth);
    return adversary().isSound() ? 12 : adversary().input.number();
  });
  sdk.add(Toupcam_get_RawFormat,
          [](HToupcam handle, unsigned* fourCc, unsigned* bitsPerPixel) -> std::int32_t {
            Adversary& answers = adversary();
            used(handle, Toupcam_get_RawFormat);
            constexpr unsigned codes[] = {0x42474752, 0x52474742, 0x47425247, 0x47524247};
            *fourCc = answers.isSound() ? codes[answers.input.byte() % 4U] : answers.input.word();
            *bitsPerPixel = static_cast<unsigned>(answers.input.number());
            return result();
          });
  sdk.add(Toupcam_get_ExpTimeRange,
          [](HToupcam handle, unsigned* nMin, unsigned* nMax, unsigned* nDef) -> std::int32_t {
            used(handle, Toupcam_get_ExpTimeRange);
            for (unsigned* out : {nMin, nMax, nDef}) {
              *out = static_cast<unsigned>(adversary().input.number());
            }
            return result();
          });
  sdk.add(Toupcam_get_ExpoAGainRange,
          [](HToupcam handle, unsigned short* nMin, unsigned short* nMax,
             unsigned short* nDef) -> std::int32_t {
            used(handle, Toupcam_get_ExpoAGainRange);
            for (unsigned short* out : {nMin, nMax, nDef}) {
              *out = static_cast<unsigned short>(adversary().input.number());
            }
            return result();
          });
  sdk.add(Toupcam_put_Option, [](HToupcam handle, unsigned option, int value) -> std::int32_t {
    Device& device = used(handle, Toupcam_put_Option);
    if (option == TOUPCAM_OPTION_BITDEPTH) {
      device.bytesPerPixel = value != 0 ? 2 : 1;
    }
    return result();
  });
  sdk.add(
      Toupcam_put_Roi,
      [](HToupcam handle, unsigned x, unsigned y, unsigned width, unsigned height) -> std::int32_t {
        Device& device = used(handle, Toupcam_put_Roi);
        device.frameWidth = width;
        device.frameHeight = height;
        adversary().require(x == 0 && y == 0, "region that is not at the corner");
        adversary().require(width >= 1 && height >= 1, "region of no pixels");
        return result();
      });
  sdk.add(Toupcam_get_FinalSize, [](HToupcam handle, int* width, int* height) -> std::int32_t {
    Adversary& answers = adversary();
    Device& device = used(handle, Toupcam_get_FinalSize);
    if (!answers.isSound()) {
      device.frameWidth = answers.length();
      device.frameHeight = answers.length();
    }
    *width = static_cast<int>(device.frameWidth);
    *height = static_cast<int>(device.frameHeight);
    return result();
  });
  sdk.add(Toupcam_StartPullModeWithCallback,
          [](HToupcam handle, ToupcamEventCallback callback, void* context) -> std::int32_t {
            Device& device = used(handle, Toupcam_StartPullModeWithCallback);
            adversary().require(callback == nullptr && context == nullptr, "callback registered");
            const std::int32_t code = result();
            device.isStreaming = code >= 0;
            return code;
          });
  sdk.add(
      Toupcam_PullImageWithRowPitch,
      [](HToupcam handle, void* data, int bits, int rowPitch, unsigned* width,
         unsigned* height) -> std::int32_t {
        Adversary& answers = adversary();
        const Device& device = used(handle, Toupcam_PullImageWithRowPitch);
        answers.require(device.isStreaming, "frame asked for without a stream");
        answers.require(bits == device.bytesPerPixel * 8 && rowPitch == -1, "rows that do not fit");
        const bool isSound = answers.isSound();
        *width = static_cast<unsigned>(isSound ? device.frameWidth : answers.length());
        *height = static_cast<unsigned>(isSound ? device.frameHeight : answers.length());
        const std::int64_t bytes = device.frameWidth * device.frameHeight * device.bytesPerPixel;
        std::memset(data, 0x5A, static_cast<std::size_t>(bytes));
        return answers.isSound() ? result() : TOUPCAM_E_PENDING;
      });
  sdk.add(Toupcam_Stop, [](HToupcam handle) -> std::int32_t {
    adversary().stopped(Vendor::ToupTek, keyOf(handle));
    return adversary().input.number();
  });
  sdk.add(Toupcam_put_AutoExpoEnable, [](HToupcam handle, int mode) -> std::int32_t {
    used(handle, Toupcam_put_AutoExpoEnable);
    adversary().require(mode == 0, "automatic exposure switched on");
    return result();
  });
  sdk.add(Toupcam_put_ExpoTime, [](HToupcam handle, unsigned microseconds) -> std::int32_t {
    used(handle, Toupcam_put_ExpoTime);
    adversary().require(microseconds >= 1 && microseconds <= 2147483647U, "exposure out of range");
    return result();
  });
  sdk.add(Toupcam_put_ExpoAGain, [](HToupcam handle, unsigned short /*percent*/) -> std::int32_t {
    used(handle, Toupcam_put_ExpoAGain);
    return result();
  });
  sdk.add(Toupcam_get_Temperature, [](HToupcam handle, short* tenths) -> std::int32_t {
    used(handle, Toupcam_get_Temperature);
    *tenths = static_cast<short>(adversary().input.number());
    return result();
  });
}

}  // namespace orvane::fuzz
