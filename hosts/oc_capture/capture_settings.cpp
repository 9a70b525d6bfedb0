// A camera's settings, held against what the chosen camera can do.
#include "oc_capture/capture_settings.hpp"

#include <algorithm>

#include "system/argument_values.hpp"
#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

// One of the values that the camera lists.
template <class Value, class Text>
void requireListed(const CameraDescription& camera, const char* what, Value wanted,
                   const std::vector<Value>& offered, Text text) {
  if (std::find(offered.begin(), offered.end(), wanted) != offered.end()) {
    return;
  }
  const std::string list = joined(offered, ", ", text);
  throw UsageError(camera.name + " has no " + what + " " + std::string(text(wanted)) +
                   "; it offers " + (list.empty() ? "none" : list) + ".");
}

int sideOf(const CameraDescription& camera, const char* option, std::optional<int> wanted,
           int longest) {
  if (wanted && *wanted > longest) {
    throw UsageError(std::string(option) + " can be " + std::to_string(longest) + " at most with " +
                     camera.name + ".");
  }
  return wanted.value_or(longest);
}

PixelFormat formatOf(const CameraDescription& camera, std::optional<PixelFormat> wanted) {
  if (!wanted && camera.formats.empty()) {
    throw UsageError(camera.name + " offers no pixel format.");
  }
  const PixelFormat format = wanted ? *wanted : camera.formats.front();
  requireListed(camera, "format", format, camera.formats, formatName);
  return format;
}

int gainOf(const CameraDescription& camera, std::optional<int> wanted) {
  if (!wanted) {
    const std::int64_t range = std::int64_t{camera.maxGain} - camera.minGain;
    return static_cast<int>(camera.minGain + (camera.hasGainRange() ? range / 3 : 0));
  }
  if (camera.hasGainRange() && (*wanted < camera.minGain || *wanted > camera.maxGain)) {
    throw UsageError("--gain can be " + std::to_string(camera.minGain) + " to " +
                     std::to_string(camera.maxGain) + " with " + camera.name + ".");
  }
  return *wanted;
}

}  // namespace

CameraSettings settingsFor(const CameraChoice& choice, const CameraDescription& camera) {
  CameraSettings settings;
  settings.width = sideOf(camera, "--width", choice.width, camera.maxWidth);
  settings.height = sideOf(camera, "--height", choice.height, camera.maxHeight);
  settings.bin = choice.bin;
  requireListed(camera, "bin", settings.bin, camera.bins,
                [](int bin) { return std::to_string(bin); });
  settings.format = formatOf(camera, choice.format);
  settings.exposureUs = choice.exposureUs;
  if (camera.hasLongestExposure() && settings.exposureUs > camera.maxExposureUs) {
    throw UsageError("--exposure can be " + durationText(camera.maxExposureUs) + " at most with " +
                     camera.name + ".");
  }
  settings.gain = gainOf(camera, choice.gain);
  settings.offset = choice.offset;
  // Refused now and not with the camera open.
  correctedLayout({settings.width, settings.height, settings.format, BayerPattern::None},
                  choice.correction);
  return settings;
}

}  // namespace orvane::host
