// What a camera family can do: one constant row of functions per family. A family has no state of
// its own and no lifetime, so a row says everything about it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "capture/active_camera.hpp"

namespace orvane {

/// Where a frame goes: the host's buffer and its length in bytes.
struct FrameBuffer {
  std::uint8_t* data;
  std::int32_t length;
};

/// What is set on an open camera. The exposure is checked: 1 microsecond or more.
struct CameraSettings {
  std::int32_t exposureUs;
  std::int32_t gain;    ///< in the SDK's own units
  std::int32_t offset;  ///< black level, in the SDK's own units
};

/// One family. Columns are references: a row that lacks one does not compile. Every function
/// reports failure by throwing; nothing is retried or taken back.
struct VendorFamily {
  Vendor vendor;
  const char* baseName;  ///< of the SDK library, without prefix and ending

  /// A frame's width and height are whole multiples of these.
  std::int32_t widthStep;
  std::int32_t heightStep;

  /// Appends every camera that the SDK sees to the catalogue; leaves none open.
  void (&scan)();
  /// Opens the device of `camera.info` and sets `camera.handle` where the SDK gives one. After a
  /// failure nothing is open.
  void (&open)(ActiveCamera& camera);
  /// Sets binning, format and the region camera.width x camera.height at the sensor's top left
  /// corner, and writes back to `camera` the size that the SDK made of it, where it tells.
  void (&configure)(ActiveCamera& camera, std::int32_t bin);
  /// Bytes that the SDK may write for a frame, where it can be more than the frame has; 0
  /// elsewhere.
  std::int64_t (&frameMemory)(const ActiveCamera& camera);
  /// Starts the stream.
  void (&start)(const ActiveCamera& camera);
  /// Has one frame written into the buffer; false when none is ready within the wait.
  bool (&read)(const ActiveCamera& camera, FrameBuffer buffer, std::int32_t timeoutMs);
  /// Sets exposure, gain and offset, in this order; the first failure ends it.
  void (&apply)(const ActiveCamera& camera, CameraSettings settings);
  /// Degrees Celsius.
  double (&temperature)(const ActiveCamera& camera);
  /// Stops the stream. The SDK's result does not matter.
  void (&stop)(const ActiveCamera& camera);
  /// Releases the device. The SDK's result does not matter.
  void (&close)(const ActiveCamera& camera);
};

/// The `frameMemory` of families whose SDKs write the frame's own size and no more.
std::int64_t frameSizeOnly(const ActiveCamera& camera);

/// All families, in the order in which they are scanned: the order of Vendor.
extern const std::array<const VendorFamily*, vendorCount> vendorTable;

/// The family of a camera. A code that is none of Vendor's counts as the last family.
inline const VendorFamily& familyOf(Vendor vendor) {
  const auto position = static_cast<std::size_t>(vendor);
  return *vendorTable[position < vendorCount ? position : vendorCount - 1];
}

}  // namespace orvane
