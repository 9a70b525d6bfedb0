// The size that the protocol's clients see of a camera.
#include "oc_alpaca/geometry.hpp"

#include <algorithm>

namespace orvane::host {

SensorSize commonSize(const oc::CameraInfo& camera) {
  constexpr int widthStep = 8;
  constexpr int heightStep = 2;
  SensorSize size{camera.maxWidth, camera.maxHeight};
  for (const int bin : camera.bins) {
    if (bin > 0) {
      // The largest sizes that a division by this bin brings to what it delivers.
      const int width = camera.maxWidth / bin / widthStep * widthStep;
      const int height = camera.maxHeight / bin / heightStep * heightStep;
      size.width = std::min(size.width, bin * width + bin - 1);
      size.height = std::min(size.height, bin * height + bin - 1);
    }
  }
  return size;
}

}  // namespace orvane::host
