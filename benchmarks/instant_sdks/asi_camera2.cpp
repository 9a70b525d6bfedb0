// ZWO's ASICamera2 with functions that return at once: cameras of 64 x 48 pixels, or of any size
// with prepared frames.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "instant_sdk.hpp"
#include "vendors/sdk/asi_sdk.hpp"

namespace orvane {

namespace {

int frameWidth = benchmarks::instantWidth;
int frameHeight = benchmarks::instantHeight;
int bytesPerPixel = 1;

std::size_t frameBytes() {
  return static_cast<std::size_t>(frameWidth) * static_cast<std::size_t>(frameHeight) *
         static_cast<std::size_t>(bytesPerPixel);
}

// The environment variable ORVANE_INSTANT_SIZE ("1936x1096") gives the camera that size and frames
// for the benchmark of recording. They are filled in advance, for the largest format, so that
// delivering one is only a copy. Without it there are none, and the camera delivers nothing.
const std::vector<std::vector<std::uint8_t>> preparedFrames = [] {
  std::vector<std::vector<std::uint8_t>> frames;
  const char* const size = std::getenv("ORVANE_INSTANT_SIZE");  // NOLINT(concurrency-mt-unsafe)
  // NOLINTNEXTLINE(cert-err34-c): only the benchmark of recording sets it
  if (size != nullptr && std::sscanf(size, "%dx%d", &frameWidth, &frameHeight) == 2) {
    frames.assign(4, std::vector<std::uint8_t>(3 * frameBytes()));
    std::minstd_rand random(1);
    for (std::vector<std::uint8_t>& frame : frames) {
      std::generate(frame.begin(), frame.end(),
                    [&] { return static_cast<std::uint8_t>(random() >> 16); });
    }
  }
  return frames;
}();

}  // namespace

extern "C" {

int ASIGetNumOfConnectedCameras() {
  return benchmarks::instantCameraCount();
}

int ASIGetCameraProperty(ASI_CAMERA_INFO* info, int /*index*/) {
  info->Name[0] = 'i';
  info->MaxWidth = frameWidth;
  info->MaxHeight = frameHeight;
  info->SupportedBins[0] = 1;
  info->SupportedVideoFormat[1] = ASI_IMG_RGB24;
  info->SupportedVideoFormat[2] = ASI_IMG_RAW16;
  info->SupportedVideoFormat[3] = ASI_IMG_END;
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

int ASISetROIFormat(int /*cameraId*/, int /*width*/, int /*height*/, int /*bin*/, int imageType) {
  bytesPerPixel = imageType == ASI_IMG_RGB24 ? 3 : imageType == ASI_IMG_RAW16 ? 2 : 1;
  return 0;
}

int ASIGetROIFormat(int /*cameraId*/, int* width, int* height, int* /*bin*/, int* /*imageType*/) {
  *width = frameWidth;
  *height = frameHeight;
  return 0;
}

int ASIGetVideoData(int /*cameraId*/, unsigned char* buffer, long /*bufferSize*/, int /*waitMs*/) {
  if (!preparedFrames.empty()) {
    static std::size_t next = 0;
    std::memcpy(buffer, preparedFrames[next++ % preparedFrames.size()].data(), frameBytes());
  }
  return 0;
}

RETURNS_ZERO(int, ASIOpenCamera, int)
RETURNS_ZERO(int, ASIInitCamera, int)
RETURNS_ZERO(int, ASICloseCamera, int)
RETURNS_ZERO(int, ASISetControlValue, int, int, long, int)
RETURNS_ZERO(int, ASISetStartPos, int, int, int)
RETURNS_ZERO(int, ASIStartVideoCapture, int)
RETURNS_ZERO(int, ASIStopVideoCapture, int)

}  // extern "C"

}  // namespace orvane
