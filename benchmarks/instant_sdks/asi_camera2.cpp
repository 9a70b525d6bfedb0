// ZWO's ASICamera2 with functions that return at once: cameras of 64 x 48 pixels, or of any size
// with prepared frames.
#include "instant_cameras.hpp"
#include "prepared_frames.hpp"
#include "simulated_sdk.hpp"
#include "vendors/sdk/asi_sdk.hpp"

namespace orvane {

namespace {

benchmarks::PreparedFrames frames;
int format = ASI_IMG_RAW8;

std::size_t bytesPerPixel() {
  return format == ASI_IMG_RGB24 ? 3 : format == ASI_IMG_RAW16 ? 2 : 1;
}

}  // namespace

extern "C" {

int ASIGetNumOfConnectedCameras() {
  return benchmarks::instantCameraCount();
}

int ASIGetCameraProperty(ASI_CAMERA_INFO* info, int /*index*/) {
  info->Name[0] = 'i';
  info->MaxWidth = frames.width();
  info->MaxHeight = frames.height();
  info->SupportedBins[0] = 1;
  info->SupportedVideoFormat[1] = ASI_IMG_RGB24;
  info->SupportedVideoFormat[2] = ASI_IMG_RAW16;
  info->SupportedVideoFormat[3] = ASI_IMG_END;
  return 0;
}

int ASIOpenCamera(int /*cameraId*/) {
  return 0;
}
int ASIInitCamera(int /*cameraId*/) {
  return 0;
}
int ASICloseCamera(int /*cameraId*/) {
  return 0;
}

int ASIGetNumOfControls(int /*cameraId*/, int* count) {
  *count = 3;
  return 0;
}

int ASIGetControlCaps(int /*cameraId*/, int controlIndex, ASI_CONTROL_CAPS* caps) {
  caps->ControlType = controlIndex == 2 ? ASI_OFFSET : controlIndex;
  caps->IsWritable = 1;
  return 0;
}

int ASIGetControlValue(int /*cameraId*/, int /*controlType*/, long* value, int* isAuto) {
  *value = 200;
  *isAuto = 0;
  return 0;
}

int ASISetControlValue(int /*cameraId*/, int /*controlType*/, long /*value*/, int /*isAuto*/) {
  return 0;
}

int ASISetROIFormat(int /*cameraId*/, int /*width*/, int /*height*/, int /*bin*/, int imageType) {
  format = imageType;
  return 0;
}

int ASIGetROIFormat(int /*cameraId*/, int* width, int* height, int* /*bin*/, int* /*imageType*/) {
  *width = frames.width();
  *height = frames.height();
  return 0;
}

int ASISetStartPos(int /*cameraId*/, int /*x*/, int /*y*/) {
  return 0;
}
int ASIStartVideoCapture(int /*cameraId*/) {
  return 0;
}
int ASIStopVideoCapture(int /*cameraId*/) {
  return 0;
}

int ASIGetVideoData(int /*cameraId*/, unsigned char* buffer, long /*bufferSize*/, int /*waitMs*/) {
  if (frames.arePrepared()) {
    frames.deliver(buffer, frames.pixels() * bytesPerPixel());
  }
  return 0;
}

}  // extern "C"

}  // namespace orvane
