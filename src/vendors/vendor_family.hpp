// A camera family is one constant row of functions. It has no state and no lifetime of its own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "capture/active_camera.hpp"

namespace orvane {

/// The host's buffer for a frame, and its length in bytes.
struct FrameBuffer {
  std::uint8_t* data;
  std::int32_t length;
};

/// Settings of an open camera. The caller has checked that the exposure is 1 microsecond or more.
struct CameraSettings {
  std::int32_t exposureUs;
  std::int32_t gain;    ///< in the SDK's own units
  std::int32_t offset;  ///< black level, in the SDK's own units
};

/// One family. Columns are references: a row that lacks one does not compile. Every function
/// reports failure by throwing, and neither retries nor rolls back.
struct VendorFamily {
  Vendor vendor;
  const char* baseName;  ///< of the SDK library, without prefix and extension

  /// A frame's width and height are whole multiples of these.
  std::int32_t widthStep;
  std::int32_t heightStep;

  /// Appends every camera that the SDK sees to the catalogue; leaves none open.
  void (&scan)();
  /// Opens the device of `camera.info` and sets `camera.handle` if the SDK uses handles. After a
  /// failure nothing is open.
  void (&open)(ActiveCamera& camera);
  /// Sets binning, format and the region camera.width x camera.height at the sensor's top left
  /// corner. If the SDK reports the size that it really set, stores it in `camera`.
  void (&configure)(ActiveCamera& camera, std::int32_t bin);
  /// Bytes that the SDK may write for a frame if it can write more than the frame's size; else 0.
  std::int64_t (&frameMemory)(const ActiveCamera& camera);
  /// Starts the stream.
  void (&start)(const ActiveCamera& camera);
  /// Reads one frame into the buffer; false if none becomes ready within the timeout.
  bool (&read)(const ActiveCamera& camera, FrameBuffer buffer, std::int32_t timeoutMs);
  /// Sets exposure, gain and offset, in this order; stops at the first failure.
  void (&apply)(const ActiveCamera& camera, CameraSettings settings);
  /// Degrees Celsius.
  double (&temperature)(const ActiveCamera& camera);
  /// Stops the stream. The SDK's result is ignored.
  void (&stop)(const ActiveCamera& camera);
  /// Closes the device. The SDK's result is ignored.
  void (&close)(const ActiveCamera& camera);
};

/// The `frameMemory` of families whose SDKs never write more than the frame's size.
std::int64_t frameSizeOnly(const ActiveCamera& camera);

/// All families, in the order in which they are scanned: the order of Vendor.
extern const std::array<const VendorFamily*, vendorCount> vendorTable;

/// The family of a camera. An unknown code counts as the last family.
inline const VendorFamily& familyOf(Vendor vendor) {
  const auto position = static_cast<std::size_t>(vendor);
  return *vendorTable[position < vendorCount ? position : vendorCount - 1];
}

}  // namespace orvane
