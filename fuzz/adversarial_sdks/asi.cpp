// An adversarial version of ZWO's SDK: the input determines every answer.
#include <cstring>

#include "adversarial_sdks/adversary.hpp"
#include "vendors/sdk/asi_sdk.hpp"

namespace orvane::fuzz {

namespace {

std::int64_t bytesOfType(int imageType) {
  return imageType == ASI_IMG_RAW16 ? 2 : imageType == ASI_IMG_RGB24 ? 3 : 1;
}

}  // namespace

void addAsi(Sdk& sdk) {
  sdk.stopFunction = ASIStopVideoCapture.name();
  sdk.closeFunction = ASICloseCamera.name();

  sdk.add(ASIGetNumOfConnectedCameras, []() -> int {
    return adversary().isSound() ? 1 + adversary().input.byte() % 3 : adversary().input.number();
  });
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
    return answers.result();
  });
  sdk.add(ASIOpenCamera, [](int cameraId) -> int {
    const int result = adversary().result();
    if (result == 0) {
      adversary().opened(Vendor::Asi, keyOf(cameraId));
    }
    return result;
  });
  sdk.add(ASIInitCamera, [](int cameraId) -> int {
    used(cameraId, ASIInitCamera);
    return adversary().result();
  });
  sdk.add(ASICloseCamera, [](int cameraId) -> int {
    adversary().closed(Vendor::Asi, keyOf(cameraId));
    return adversary().input.number();
  });
  sdk.add(ASIGetNumOfControls, [](int cameraId, int* count) -> int {
    used(cameraId, ASIGetNumOfControls);
    *count = adversary().isSound() ? 3 : adversary().input.number();
    return adversary().result();
  });
  sdk.add(ASIGetControlCaps, [](int cameraId, int index, ASI_CONTROL_CAPS* caps) -> int {
    Adversary& answers = adversary();
    used(cameraId, ASIGetControlCaps);
    constexpr int types[] = {ASI_GAIN, ASI_EXPOSURE, ASI_OFFSET};
    const bool isOrdinary = index >= 0 && index < 3 && answers.isSound();
    answers.fill(caps->Name);
    caps->ControlType = isOrdinary ? types[index] : answers.input.number();
    caps->IsWritable = isOrdinary ? 1 : answers.input.number();
    caps->MinValue = answers.input.number();
    caps->MaxValue = answers.input.number();
    return answers.result();
  });
  sdk.add(ASIGetControlValue, [](int cameraId, int /*type*/, long* value, int* isAuto) -> int {
    used(cameraId, ASIGetControlValue);
    *value = adversary().input.number();
    *isAuto = adversary().input.number();
    return adversary().result();
  });
  sdk.add(ASISetControlValue,
          [](int cameraId, int /*type*/, long /*value*/, int /*isAuto*/) -> int {
            used(cameraId, ASISetControlValue);
            return adversary().result();
          });
  sdk.add(ASISetROIFormat,
          [](int cameraId, int width, int height, int /*bin*/, int imageType) -> int {
            Device& device = used(cameraId, ASISetROIFormat);
            device.frameWidth = width;
            device.frameHeight = height;
            device.bytesPerPixel = bytesOfType(imageType);
            adversary().require(!device.isStreaming, "format set while streaming");
            adversary().require(width >= 1 && width % 8 == 0 && height >= 1 && height % 2 == 0,
                                "region that is not in steps of 8 x 2");
            return adversary().result();
          });
  sdk.add(ASIGetROIFormat,
          [](int cameraId, int* width, int* height, int* bin, int* imageType) -> int {
            Adversary& answers = adversary();
            Device& device = used(cameraId, ASIGetROIFormat);
            if (!answers.isSound()) {
              device.frameWidth = answers.length();
              device.frameHeight = answers.length();
            }
            *width = static_cast<int>(device.frameWidth);
            *height = static_cast<int>(device.frameHeight);
            *bin = answers.input.number();
            *imageType = answers.input.number();
            return answers.result();
          });
  sdk.add(ASISetStartPos, [](int cameraId, int x, int y) -> int {
    used(cameraId, ASISetStartPos);
    adversary().require(x == 0 && y == 0, "region that is not at the corner");
    return adversary().result();
  });
  sdk.add(ASIStartVideoCapture, [](int cameraId) -> int {
    Device& device = used(cameraId, ASIStartVideoCapture);
    const int result = adversary().result();
    device.isStreaming = result == 0;
    return result;
  });
  sdk.add(ASIStopVideoCapture, [](int cameraId) -> int {
    adversary().stopped(Vendor::Asi, keyOf(cameraId));
    return adversary().input.number();
  });
  sdk.add(
      ASIGetVideoData, [](int cameraId, unsigned char* buffer, long length, int /*waitMs*/) -> int {
        const Device& device = used(cameraId, ASIGetVideoData);
        adversary().require(device.isStreaming, "frame asked for without a stream");
        adversary().require(device.frameWidth * device.frameHeight * device.bytesPerPixel <= length,
                            "buffer shorter than a frame");
        std::memset(buffer, 0x5A,
                    static_cast<std::size_t>(length));  // the whole length that it was given
        return adversary().result();
      });
}

}  // namespace orvane::fuzz
