// The options with which every subcommand that opens a camera is told which and how.
#include "oc_capture/camera_options.hpp"

#include <limits>

#include "system/argument_values.hpp"
#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr int smallestInt = std::numeric_limits<int>::min();
constexpr int largestInt = std::numeric_limits<int>::max();

std::optional<PixelFormat> readFormatText(const std::optional<std::string>& text) {
  if (!text) {
    return std::nullopt;
  }
  const auto format = formatFromName(*text);
  if (!format) {
    throw UsageError("--format needs raw8, raw16, rgb24 or mono8, not " + inQuotes(*text) + ".");
  }
  return format;
}

std::int64_t readExposureText(const std::string& text) {
  const std::int64_t microseconds = parseDuration("--exposure", text);
  if (microseconds > largestInt) {
    throw UsageError("--exposure can be 2147483647us at most.");
  }
  return microseconds;
}

std::optional<BayerPattern> readBayerPatternText(const std::optional<std::string>& text) {
  if (!text) {
    return std::nullopt;
  }
  const auto bayer = bayerFromName(*text);
  if (!bayer) {
    throw UsageError("--bayer needs RGGB, GRBG, GBRG, BGGR or none, not " + inQuotes(*text) + ".");
  }
  return bayer;
}

}  // namespace

std::optional<int> readOptionalNumber(const char* option, const std::optional<std::string>& text,
                                      int smallest, int largest) {
  if (!text) {
    return std::nullopt;
  }
  return parseWholeNumber(option, *text, smallest, largest);
}

FrameCorrection readCorrectionTexts(const CorrectionTexts& texts) {
  return {texts.flips, texts.swapsRedAndBlue, readBayerPatternText(texts.bayer)};
}

CameraChoice readCameraTexts(const CameraTexts& texts) {
  CameraChoice choice;
  choice.sdkDirectory = texts.sdkDirectory;
  choice.camera = texts.camera;
  choice.width = readOptionalNumber("--width", texts.width, 1, largestInt);
  choice.height = readOptionalNumber("--height", texts.height, 1, largestInt);
  choice.bin = parseWholeNumber("--bin", texts.bin, 1, largestInt);
  choice.format = readFormatText(texts.format);
  choice.exposureUs = readExposureText(texts.exposure);
  choice.gain = readOptionalNumber("--gain", texts.gain, smallestInt, largestInt);
  choice.offset = parseWholeNumber("--offset", texts.offset, smallestInt, largestInt);
  choice.discard = parseWholeNumber("--discard", texts.discard, 0, largestInt);
  choice.correction = readCorrectionTexts(texts.correction);
  return choice;
}

}  // namespace orvane::host
