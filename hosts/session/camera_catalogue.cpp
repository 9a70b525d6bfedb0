// The SDK directory, the cameras that a scan finds there, and facts derived from their
// descriptions.
#include "session/camera_catalogue.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <numeric>
#include <system_error>
#include <utility>

#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

std::filesystem::path fullSdkDirectory(const std::string& named) {
  const std::filesystem::path directory = pathFromUtf8(named);
  std::error_code ignored;
  if (!std::filesystem::is_directory(directory, ignored)) {
    throw UsageError("There is no directory " + inQuotes(named) + ".");
  }
  return std::filesystem::absolute(directory).make_preferred();
}

oc::Scan presentable(oc::Scan found) {
  found.error = validUtf8(found.error);
  for (oc::CameraInfo& camera : found.cameras) {
    camera.name = validUtf8(camera.name);
    if (!std::isfinite(camera.pixelSizeUm)) {
      camera.pixelSizeUm = std::numeric_limits<double>::quiet_NaN();
    }
  }
  return found;
}

oc::Scan readCatalogue(const std::string& sdkDirectory) {
  return presentable(oc::scan(utf8FromPath(fullSdkDirectory(sdkDirectory))));
}

nlohmann::ordered_json descriptionOf(const oc::CameraInfo& camera) {
  std::string text = validUtf8(camera.json);
  if (std::isnan(camera.pixelSizeUm)) {
    // JSON has no such number. The key cannot occur in a name, where quotation marks are escaped.
    const std::string key = "\"pixelSizeUm\":";
    const std::size_t start = text.find(key) + key.size();
    text.replace(start, text.find_first_of(",}", start) - start, "null");
  }
  return nlohmann::ordered_json::parse(text);
}

int usualGain(const oc::CameraInfo& camera) {
  const std::int64_t range = std::int64_t{camera.maxGain} - camera.minGain;
  return static_cast<int>(camera.minGain + (hasGainRange(camera) ? range / 3 : 0));
}

int middleGain(const oc::CameraInfo& camera) {
  return hasGainRange(camera) ? std::midpoint(camera.minGain, camera.maxGain) : camera.minGain;
}

}  // namespace orvane::host
