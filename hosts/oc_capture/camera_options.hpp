// The options with which every subcommand that opens a camera is told which and how.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "imaging/frame_correction.hpp"
#include "imaging/frame_layout.hpp"

namespace orvane::host {

/// What is not given is left to the camera.
struct CameraChoice {
  std::string sdkDirectory;
  std::string camera;  ///< index or part of the name
  std::optional<int> width;
  std::optional<int> height;
  int bin = 1;
  std::optional<PixelFormat> format;
  std::int64_t exposureUs = 0;
  std::optional<int> gain;
  int offset = 0;
  int discard = 0;  ///< frames to throw away after the camera was opened
  FrameCorrection correction;
};

/// A correction of frames as typed.
struct CorrectionTexts {
  bool flips = false;
  bool swapsRedAndBlue = false;
  std::optional<std::string> bayer;
};

/// The choice as typed.
struct CameraTexts {
  std::string sdkDirectory, camera;
  std::optional<std::string> width, height, format, gain;
  std::string bin = "1", exposure = "20ms", offset = "10", discard = "0";
  CorrectionTexts correction;
};

/// Throws UsageError with a sentence about the first text that is wrong.
CameraChoice readCameraTexts(const CameraTexts& texts);

/// Throws UsageError when there is no such Bayer pattern.
FrameCorrection readCorrectionTexts(const CorrectionTexts& texts);

/// An optional whole number of an option. Throws UsageError.
std::optional<int> readOptionalNumber(const char* option, const std::optional<std::string>& text,
                                      int smallest, int largest);

}  // namespace orvane::host
