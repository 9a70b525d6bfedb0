// An adversarial version of ZWO's SDK: the input determines every answer.
#include "adversarial_sdks/adversary.hpp"
#include "vendors/sdk/asi_sdk.hpp"

namespace orvane::fuzz {

void addAsi(Sdk& sdk) {
  sdk.add(ASIGetNumOfConnectedCameras, []() -> int { return adversary().cameraCount(); });
  sdk.add(ASIGetCameraProperty, [](ASI_CAMERA_INFO* info, int /*index*/) -> int {
    Adversary& answers = adversary();
    answers.fill(info->Name);
    answers.input.fill(info->CameraID);
    answers.fillLengths(info->MaxWidth, info->MaxHeight);
    answers.input.fill(info->IsColorCam, info->BayerPattern);
    answers.fill(info->SupportedBins, 0, 1);
    answers.fill(info->SupportedVideoFormat, ASI_IMG_END, 0);
    answers.input.fill(info->PixelSize, info->IsCoolerCam, info->IsUSB3Host, info->IsUSB3Camera,
                       info->BitDepth);
    return answers.result(Vendor::Asi);
  });
  sdk.add(ASIOpenCamera,
          [](int cameraId) -> int { return adversary().openedId(Vendor::Asi, cameraId); });
  sdk.addCall<ASIInitCamera>();
  sdk.addCall<ASIGetNumOfControls>(
      [](int* count) { *count = adversary().isSound() ? 3 : adversary().input.number(); });
  sdk.addCall<ASIGetControlCaps>([](int index, ASI_CONTROL_CAPS* caps) {
    Adversary& answers = adversary();
    constexpr int types[] = {ASI_GAIN, ASI_EXPOSURE, ASI_OFFSET};
    const bool isOrdinary = index >= 0 && index < 3 && answers.isSound();
    answers.fill(caps->Name);
    caps->ControlType = isOrdinary ? types[index] : answers.input.number();
    caps->IsWritable = isOrdinary ? 1 : answers.input.number();
    answers.input.fill(caps->MinValue, caps->MaxValue);
  });
  sdk.addCall<ASIGetControlValue>();
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
        adversary().input.fill(*bin, *imageType);
      });
  sdk.addCall<ASISetStartPos>([](int x, int y) { adversary().checkPosition(x, y); });
  sdk.addCall<ASIStartVideoCapture>(
      [](Device& device) { return adversary().started(Vendor::Asi, device); });
  sdk.addCall<ASIGetVideoData>(
      [](const Device& device, unsigned char* buffer, long length, int /*waitMs*/) {
        adversary().deliverFrame(device, buffer, length);
      });
  sdk.addEnds<ASIStopVideoCapture, ASICloseCamera>();
}

}  // namespace orvane::fuzz
