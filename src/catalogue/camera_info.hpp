// The description of one discovered camera, and the catalogue of all of them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orvane {

/// The camera families, in the order in which they are scanned.
enum class Vendor : std::uint32_t { Asi = 0, PlayerOne = 1, Qhy = 2, ToupTek = 3 };

inline constexpr std::size_t vendorCount = 4;

/// Pixel formats as hosts name them: the codes of oc_open() and of CameraInfo::formats.
enum PixelFormat : std::int32_t {
  Raw8 = 0,
  Raw16 = 1,
  Rgb24 = 2,
  Mono8 = 3,
};

/// Values of CameraInfo::bayer: the colour ids of the SER video format.
enum BayerCode : std::int32_t {
  BayerNone = 0,
  BayerRggb = 8,
  BayerGrbg = 9,
  BayerGbrg = 10,
  BayerBggr = 11,
};

/// One discovered camera; a value type. A value that the scan cannot read keeps its default.
struct CameraInfo {
  Vendor vendor{};
  std::int32_t vendorIndex = 0;  ///< the SDK's camera id, for the SDKs that number their cameras
  std::int32_t maxWidth = 0;     ///< sensor size at bin 1, pixels
  std::int32_t maxHeight = 0;
  std::int32_t bitDepth = 8;       ///< of the sensor's converter
  std::int32_t bayer = BayerNone;  ///< Bayer pattern, a BayerCode
  bool isColor = false;
  bool isCooled = false;
  bool isUsb3Camera = false;  ///< the camera is a USB 3 device
  bool isUsb3Host = false;    ///< it is attached through a USB 3 port
  double pixelSizeUm = 0.0;   ///< pixel pitch, micrometres
  std::string name;           ///< for the user; UTF-8 unless the SDK delivers other bytes
  std::string deviceKey;      ///< the SDK's camera id, for the SDKs that name their cameras
  /// The SDK's own device entry, byte for byte, for the SDKs that open a camera by one.
  std::array<std::byte, 264> toupDevice{};
  std::vector<std::int32_t> bins{1};        ///< binning factors, in the SDK's order
  std::vector<std::int32_t> formats{Raw8};  ///< PixelFormat codes, in the SDK's order
  std::int64_t maxExposureUs = 0;           ///< as the SDK states it, microseconds
  std::int32_t minGain = 0;                 ///< in the SDK's own units
  std::int32_t maxGain = 0;
};

/// Every camera of the last scan; a camera's position is the index that hosts use.
using CameraCatalogue = std::vector<CameraInfo>;

}  // namespace orvane
