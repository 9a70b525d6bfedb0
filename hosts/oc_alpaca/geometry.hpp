// The size that the protocol's clients see of a camera.
#pragma once

#include <orvane_desktop_camera.hpp>

namespace orvane::host {

struct SensorSize {
  int width = 0;
  int height = 0;
};

/// The largest size at bin 1 whose division by each bin, rounded down, the camera can deliver.
/// Clients take a full frame of size / bin pixels, and cameras round their frames down to multiples
/// of 8 x 2 pixels after binning.
SensorSize commonSize(const oc::CameraInfo& camera);

}  // namespace orvane::host
