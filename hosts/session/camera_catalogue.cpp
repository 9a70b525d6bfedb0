// The cameras that a scan found, described.
#include "session/camera_catalogue.hpp"

#include <algorithm>

#include "session/camera_session.hpp"
#include "session/sdk_directory.hpp"
#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

std::vector<std::string> split(const std::string& text, const std::string& separator) {
  std::vector<std::string> parts;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find(separator, start), text.size());
    parts.push_back(text.substr(start, end - start));
    start = end + separator.size();
  }
  return parts;
}

}  // namespace

CameraCatalogue readCatalogue(const std::string& sdkDirectory) {
  const ScanResult scan = scanCameras(utf8FromPath(fullSdkDirectory(sdkDirectory)));

  CameraCatalogue catalogue{
      split(scan.libraries, ", "), validUtf8(scan.error), {}, nlohmann::ordered_json::array()};
  for (std::size_t position = 0; position < scan.infos.size(); ++position) {
    const int index = static_cast<int>(position);
    try {
      const auto json = readCameraJson(index, scan.infos[position]);
      catalogue.cameras.push_back(describeCamera(index, json));
      catalogue.json.push_back(json);
    } catch (const CameraError& error) {
      catalogue.problems += (catalogue.problems.empty() ? "" : "; ") + std::string(error.what());
    }
  }
  return catalogue;
}

}  // namespace orvane::host
