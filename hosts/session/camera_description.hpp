// What a host knows about one camera: the library's description of it, read.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "imaging/frame_layout.hpp"

namespace orvane::host {

struct CameraDescription {
  int id = 0;
  std::string name;  ///< valid UTF-8
  int maxWidth = 0;
  int maxHeight = 0;
  int bitDepth = 0;
  double pixelSizeUm = 0;  ///< NaN when the SDK gave no number
  bool isColor = false;
  bool isCooled = false;
  bool isUsb3Camera = false;
  bool isUsb3Host = false;
  std::vector<int> bins;
  std::vector<PixelFormat> formats;  ///< those that this program knows
  std::int64_t maxExposureUs = 0;
  int minGain = 0;
  int maxGain = 0;
  BayerPattern bayer = BayerPattern::None;

  /// A camera that could not be asked, being in use elsewhere, has neither of these.
  bool hasGainRange() const { return minGain < maxGain; }
  bool hasLongestExposure() const { return maxExposureUs > 0; }
};

/// Reads the text that oc_info() returned as JSON, keys in their order. Makers' SDKs put things
/// into it that JSON does not allow: bytes of a name that are not UTF-8 become U+FFFD, and a pixel
/// size that is not a number becomes null.
///
/// Throws CameraError with a sentence that names the camera's index.
nlohmann::ordered_json readCameraJson(int index, std::string_view text);

/// The same in the form that a program works with. Throws CameraError where a key is missing or its
/// value is not of its kind.
CameraDescription describeCamera(int index, const nlohmann::ordered_json& json);

}  // namespace orvane::host
