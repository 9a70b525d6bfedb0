// An adversarial version of ZWO's SDK: the input determines every answer.
#include "adversarial_sdks/adversary.hpp"
#include "vendors/sdk/asi_sdk.hpp"

namespace orvane::fuzz {

void addAsi(Sdk& sdk) {
  sdk.stopFunction = ASIStopVideoCapture.name();
  sdk.closeFunction = ASICloseCamera.name();

  sdk.add(ASIGetNumOfConnectedCameras, []() -> int { return adversary().cameraCount(); });
  sdk.add(ASIGetCameraProperty, [](ASI_CAMERA_INFO* info, int /*index*/) -> int {
    Adversary& answers = adversary();
    answers.fill(info->Name);
    info->CameraID = answers.input.number();
    info->MaxWidth = answers.length();
    info->MaxHeight = answers.length();
    info->IsColorCam = answers.input.number();
    info->BayerPattern = answers.input.number();
    answers.fill(info->SupportedBins, 0, 1);
    answers.fill(info->SupportedVideoFormat, ASI_IMG_END, 0);
    info->PixelSize = answers.input.real();
    info->IsCoolerCam = answers.input.number();
    info->IsUSB3Host = answers.input.number();
    info->IsUSB3Camera = answers.input.number();
    info->BitDepth = answers.input.number();
    return answers.result(Vendor::Asi);
  });
  sdk.add(ASIOpenCamera,
          [](int cameraId) -> int { return adversary().openedId(Vendor::Asi, cameraId); });
  sdk.addCall<ASIInitCamera>();
  sdk.add(ASICloseCamera, [](int cameraId) -> int {
    adversary().closed(Vendor::Asi, keyOf(cameraId));
    return adversary().input.number();
  });
  sdk.addCall<ASIGetNumOfControls>([](const Device& /*device*/, int* count) {
    *count = adversary().isSound() ? 3 : adversary().input.number();
  });
  sdk.addCall<ASIGetControlCaps>([](const Device& /*device*/, int index, ASI_CONTROL_CAPS* caps) {
    Adversary& answers = adversary();
    constexpr int types[] = {ASI_GAIN, ASI_EXPOSURE, ASI_OFFSET};
    const bool isOrdinary = index >= 0 && index < 3 && answers.isSound();
    answers.fill(caps->Name);
    caps->ControlType = isOrdinary ? types[index] : answers.input.number();
    caps->IsWritable = isOrdinary ? 1 : answers.input.number();
    caps->MinValue = answers.input.number();
    caps->MaxValue = answers.input.number();
  });
  sdk.addCall<ASIGetControlValue>(
      [](const Device& /*device*/, int /*type*/, long* value, int* isAuto) {
        *value = adversary().input.number();
        *isAuto = adversary().input.number();
      });
  sdk.addCall<ASISetControlValue>();
  sdk.addCall<ASISetROIFormat>([](Device& device, int width, int height, int /*bin*/, int type) {
    adversary().setSize(device, width, height);
    device.bytesPerPixel = type == ASI_IMG_RAW16 ? 2 : type == ASI_IMG_RGB24 ? 3 : 1;
    adversary().require(!device.isStreaming, "format set while streaming");
    adversary().require(width % 8 == 0 && height % 2 == 0, "region that is not in steps of 8 x 2");
  });
  sdk.addCall<ASIGetROIFormat>(
      [](Device& device, int* width, int* height, int* bin, int* imageType) {
        adversary().reportSize(device, width, height);
        *bin = adversary().input.number();
        *imageType = adversary().input.number();
      });
  sdk.addCall<ASISetStartPos>(
      [](const Device& /*device*/, int x, int y) { adversary().checkPosition(x, y); });
  sdk.addCall<ASIStartVideoCapture>(
      [](Device& device) { return adversary().started(Vendor::Asi, device); });
  sdk.add(ASIStopVideoCapture, [](int cameraId) -> int {
    adversary().stopped(Vendor::Asi, keyOf(cameraId));
    return adversary().input.number();
  });
  sdk.addCall<ASIGetVideoData>(
      [](const Device& device, unsigned char* buffer, long length, int /*waitMs*/) {
        adversary().deliverFrame(device, buffer, length);
      });
}

}  // namespace orvane::fuzz
