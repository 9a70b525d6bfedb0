// ZWO's SDK, answering whatever the input says.
#include <cstring>

#include "lying_sdks/liar.hpp"
#include "vendors/sdk/asi_sdk.hpp"

namespace orvane::fuzz {

namespace {

std::uintptr_t keyOf(int cameraId) {
  return static_cast<std::uintptr_t>(static_cast<unsigned>(cameraId));
}

Device& used(int cameraId, const char* call) {
  return liar().used(Vendor::Asi, keyOf(cameraId), call);
}

std::int64_t bytesOfType(int imageType) {
  return imageType == ASI_IMG_RAW16 ? 2 : imageType == ASI_IMG_RGB24 ? 3 : 1;
}

}  // namespace

void addAsi(Sdk& sdk) {
  sdk.baseName = "ASICamera2";
  sdk.stopFunction = "ASIStopVideoCapture";
  sdk.closeFunction = "ASICloseCamera";

  ORVANE_SCRIPT(
      sdk, ASIGetNumOfConnectedCameras, +[]() -> int {
        return liar().isSound() ? 1 + liar().input.byte() % 3 : liar().input.number();
      });
  ORVANE_SCRIPT(
      sdk, ASIGetCameraProperty, +[](ASI_CAMERA_INFO* info, int /*index*/) -> int {
        Liar& lie = liar();
        lie.fill(info->Name);
        info->CameraID = lie.input.number();
        info->MaxWidth = lie.length();
        info->MaxHeight = lie.length();
        info->IsColorCam = lie.input.number();
        info->BayerPattern = lie.input.number();
        lie.fill(info->SupportedBins, 0, 1);
        lie.fill(info->SupportedVideoFormat, ASI_IMG_END, 0);
        info->PixelSize = lie.input.real();
        info->IsCoolerCam = lie.input.number();
        info->IsUSB3Host = lie.input.number();
        info->IsUSB3Camera = lie.input.number();
        info->BitDepth = lie.input.number();
        return lie.result();
      });
  ORVANE_SCRIPT(
      sdk, ASIOpenCamera, +[](int cameraId) -> int {
        const int result = liar().result();
        if (result == 0) {
          liar().opened(Vendor::Asi, keyOf(cameraId));
        }
        return result;
      });
  ORVANE_SCRIPT(
      sdk, ASIInitCamera, +[](int cameraId) -> int {
        used(cameraId, "ASIInitCamera");
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, ASICloseCamera, +[](int cameraId) -> int {
        liar().closed(Vendor::Asi, keyOf(cameraId));
        return liar().input.number();
      });
  ORVANE_SCRIPT(
      sdk, ASIGetNumOfControls, +[](int cameraId, int* count) -> int {
        used(cameraId, "ASIGetNumOfControls");
        *count = liar().isSound() ? 3 : liar().input.number();
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, ASIGetControlCaps, +[](int cameraId, int index, ASI_CONTROL_CAPS* caps) -> int {
        Liar& lie = liar();
        used(cameraId, "ASIGetControlCaps");
        constexpr int types[] = {ASI_GAIN, ASI_EXPOSURE, ASI_OFFSET};
        const bool isOrdinary = index >= 0 && index < 3 && lie.isSound();
        lie.fill(caps->Name);
        caps->ControlType = isOrdinary ? types[index] : lie.input.number();
        caps->IsWritable = isOrdinary ? 1 : lie.input.number();
        caps->MinValue = lie.input.number();
        caps->MaxValue = lie.input.number();
        return lie.result();
      });
  ORVANE_SCRIPT(
      sdk, ASIGetControlValue, +[](int cameraId, int /*type*/, long* value, int* isAuto) -> int {
        used(cameraId, "ASIGetControlValue");
        *value = liar().input.number();
        *isAuto = liar().input.number();
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, ASISetControlValue,
      +[](int cameraId, int /*type*/, long /*value*/, int /*isAuto*/) -> int {
        used(cameraId, "ASISetControlValue");
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, ASISetROIFormat,
      +[](int cameraId, int width, int height, int /*bin*/, int imageType) -> int {
        Device& device = used(cameraId, "ASISetROIFormat");
        device.frameWidth = width;
        device.frameHeight = height;
        device.bytesPerPixel = bytesOfType(imageType);
        liar().require(!device.isStreaming, "format set while streaming");
        liar().require(width >= 1 && width % 8 == 0 && height >= 1 && height % 2 == 0,
                       "region that is not in steps of 8 x 2");
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, ASIGetROIFormat,
      +[](int cameraId, int* width, int* height, int* bin, int* imageType) -> int {
        Liar& lie = liar();
        Device& device = used(cameraId, "ASIGetROIFormat");
        if (!lie.isSound()) {
          device.frameWidth = lie.length();
          device.frameHeight = lie.length();
        }
        *width = static_cast<int>(device.frameWidth);
        *height = static_cast<int>(device.frameHeight);
        *bin = lie.input.number();
        *imageType = lie.input.number();
        return lie.result();
      });
  ORVANE_SCRIPT(
      sdk, ASISetStartPos, +[](int cameraId, int x, int y) -> int {
        used(cameraId, "ASISetStartPos");
        liar().require(x == 0 && y == 0, "region that is not at the corner");
        return liar().result();
      });
  ORVANE_SCRIPT(
      sdk, ASIStartVideoCapture, +[](int cameraId) -> int {
        Device& device = used(cameraId, "ASIStartVideoCapture");
        const int result = liar().result();
        device.isStreaming = result == 0;
        return result;
      });
  ORVANE_SCRIPT(
      sdk, ASIStopVideoCapture, +[](int cameraId) -> int {
        liar().stopped(Vendor::Asi, keyOf(cameraId));
        return liar().input.number();
      });
  ORVANE_SCRIPT(
      sdk, ASIGetVideoData,
      +[](int cameraId, unsigned char* buffer, long length, int /*waitMs*/) -> int {
        const Device& device = used(cameraId, "ASIGetVideoData");
        liar().require(device.isStreaming, "frame asked for without a stream");
        liar().require(device.frameWidth * device.frameHeight * device.bytesPerPixel <= length,
                       "buffer shorter than a frame");
        std::memset(buffer, 0x5A, static_cast<std::size_t>(length));  // all that it may
        return liar().result();
      });
}

}  // namespace orvane::fuzz
