// ZWO's ASICamera2 with functions that return at once: cameras of 64 x 48 pixels, or of any size
// with prepared frames.
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "instant_sdk.hpp"
#include "vendors/sdk/asi_sdk.hpp"

namespace orvane {

namespace {

// The environment variable ORVANE_INSTANT_SIZE ("1936x1096") gives the camera that size and frames
// for the benchmark of recording. They are filled in advance, so that delivering one is only a
// copy. Without it the camera delivers nothing.
class PreparedFrames {
 public:
  PreparedFrames() {
    const char* const size = std::getenv("ORVANE_INSTANT_SIZE");  // NOLINT(concurrency-mt-unsafe)
    // NOLINTNEXTLINE(cert-err34-c): only the benchmark of recording sets it
    if (size == nullptr || std::sscanf(size, "%dx%d", &width, &height) != 2) {
      return;
    }
    std::minstd_rand random(1);
    for (std::vector<std::uint8_t>& frame : frames_) {
      frame.resize(bytes(3));
      for (std::uint8_t& byte : frame) {
        byte = static_cast<std::uint8_t>(random() >> 16);
      }
    }
  }

  // Copies the next frame into the buffer.
  void deliver(std::uint8_t* buffer, std::size_t bytesPerPixel) {
    if (!frames_[next_].empty()) {
      std::memcpy(buffer, frames_[next_].data(), bytes(bytesPerPixel));
      next_ = (next_ + 1) % frames_.size();
    }
  }

  int width = benchmarks::instantWidth;
  int height = benchmarks::instantHeight;

 private:
  std::size_t bytes(std::size_t bytesPerPixel) const {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * bytesPerPixel;
  }

  std::size_t next_ = 0;
  std::array<std::vector<std::uint8_t>, 4> frames_;
};

PreparedFrames frames;
std::size_t bytesPerPixel = 1;

}  // namespace

extern "C" {

int ASIGetNumOfConnectedCameras() {
  return benchmarks::instantCameraCount();
}

int ASIGetCameraProperty(ASI_CAMERA_INFO* info, int /*index*/) {
  info->Name[0] = 'i';
  info->MaxWidth = frames.width;
  info->MaxHeight = frames.height;
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
  *width = frames.width;
  *height = frames.height;
  return 0;
}

int ASIGetVideoData(int /*cameraId*/, unsigned char* buffer, long /*bufferSize*/, int /*waitMs*/) {
  frames.deliver(buffer, bytesPerPixel);
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
