// An adversarial version of ToupTek's SDK: the input determines every answer.
#include "adversarial_sdks/adversary.hpp"
#include "vendors/sdk/toupcam_sdk.hpp"

namespace orvane::fuzz {

namespace {

// A model as the SDK would hold it: constant data that outlives every call.
const ToupcamModelV2* anyModel() {
  static std::array<ToupcamModelV2, TOUPCAM_MAX> models{};
  static std::size_t next = 0;
  Adversary& answers = adversary();
  ToupcamModelV2& model = models[next++ % models.size()];
  model.name = nullptr;  // the library does not read it
  model.flag = answers.isSound() ? answers.input.byte() : answers.input.longWord();
  model.xpixsz = static_cast<float>(answers.input.number());
  answers.fillLengths(model.res[0].width, model.res[0].height);
  return &model;
}

}  // namespace

void addToupTek(Sdk& sdk) {
  sdk.add(Toupcam_EnumV2, [](ToupcamDeviceV2* devices) -> unsigned {
    Adversary& answers = adversary();
    const auto count = static_cast<unsigned>(answers.cameraCount());
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
  sdk.addCall<Toupcam_get_MaxBitDepth>(
      []() { return adversary().isSound() ? 12 : adversary().input.number(); });
  sdk.addCall<Toupcam_get_RawFormat>([](unsigned* fourCc, unsigned* bitsPerPixel) {
    Adversary& answers = adversary();
    constexpr unsigned codes[] = {0x42474752, 0x52474742, 0x47425247, 0x47524247};
    *fourCc = answers.isSound() ? codes[answers.input.byte() % 4U] : answers.input.word();
    answers.input.fill(*bitsPerPixel);
  });
  sdk.addCall<Toupcam_get_ExpTimeRange>();
  sdk.addCall<Toupcam_get_ExpoAGainRange>();
  sdk.addCall<Toupcam_put_Option>([](Device& device, unsigned option, int value) {
    if (option == TOUPCAM_OPTION_BITDEPTH) {
      device.bytesPerPixel = value != 0 ? 2 : 1;
    }
  });
  sdk.addCall<Toupcam_put_Roi>(
      [](Device& device, unsigned x, unsigned y, unsigned width, unsigned height) {
        adversary().checkPosition(x, y);
        adversary().setSize(device, width, height);
      });
  sdk.addCall<Toupcam_get_FinalSize>([](Device& device, int* width, int* height) {
    adversary().reportSize(device, width, height);
  });
  sdk.addCall<Toupcam_StartPullModeWithCallback>(
      [](Device& device, ToupcamEventCallback callback, void* context) {
        adversary().require(callback == nullptr && context == nullptr, "callback registered");
        return adversary().started(Vendor::ToupTek, device);
      });
  sdk.addCall<Toupcam_PullImageWithRowPitch>([](const Device& device, void* data, int bits,
                                                int rowPitch, unsigned* width, unsigned* height) {
    Adversary& answers = adversary();
    answers.require(bits == device.bytesPerPixel * 8 && rowPitch == -1, "rows that do not fit");
    const bool isSound = answers.isSound();
    *width = static_cast<unsigned>(isSound ? device.frameWidth : answers.length());
    *height = static_cast<unsigned>(isSound ? device.frameHeight : answers.length());
    answers.deliverFrame(device, data, device.frameBytes());
    return answers.isSound() ? answers.result(Vendor::ToupTek) : TOUPCAM_E_PENDING;
  });
  sdk.addCall<Toupcam_put_AutoExpoEnable>(
      [](int mode) { adversary().require(mode == 0, "automatic exposure switched on"); });
  sdk.addCall<Toupcam_put_ExpoTime>([](unsigned microseconds) {
    adversary().require(microseconds >= 1 && microseconds <= 2147483647U, "exposure out of range");
  });
  sdk.addCall<Toupcam_put_ExpoAGain>();
  sdk.addCall<Toupcam_get_Temperature>();
  sdk.addEnds<Toupcam_Stop, Toupcam_Close>();
}

}  // namespace orvane::fuzz
