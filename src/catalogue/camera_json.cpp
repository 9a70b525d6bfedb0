// The JSON description of a camera.
#include "catalogue/camera_json.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace orvane {

namespace {

void appendInteger(std::string& text, std::int64_t number) {
  std::array<char, 24> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.append(digits.data(), end);
}

// Six significant digits in general notation, the default format of a stream. No stream is used,
// because a host's locale could turn the point into a comma.
void appendReal(std::string& text, double number) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                 std::chars_format::general, 6)
                       .ptr;
  text.append(digits.data(), end);
}

const char* jsonBool(bool value) {
  return value ? "true" : "false";
}

}  // namespace

std::string jsonString(std::string_view text) {
  std::string quoted = "\"";
  for (const char byte : text) {
    if (byte == '"' || byte == '\\') {
      quoted += '\\';
    }
    if (static_cast<unsigned char>(byte) >= 0x20) {
      quoted += byte;
    }
  }
  return quoted += '"';
}

std::string jsonIntArray(std::span<const std::int32_t> numbers) {
  std::string array = "[";
  for (const std::int32_t number : numbers) {
    if (array.size() > 1) {
      array += ',';
    }
    appendInteger(array, number);
  }
  return array += ']';
}

std::string cameraJson(std::int32_t index, const CameraInfo& camera) {
  const auto& formats = camera.formats;
  const bool hasRaw16 = std::find(formats.begin(), formats.end(), Raw16) != formats.end();

  std::string json = R"({"id":)";
  appendInteger(json, index);
  json += R"(,"name":)";
  json += jsonString(camera.name);
  json += R"(,"maxWidth":)";
  appendInteger(json, camera.maxWidth);
  json += R"(,"maxHeight":)";
  appendInteger(json, camera.maxHeight);
  json += R"(,"bitDepth":)";
  appendInteger(json, camera.bitDepth);
  json += R"(,"pixelSizeUm":)";
  appendReal(json, camera.pixelSizeUm);
  json += R"(,"isColor":)";
  json += jsonBool(camera.isColor);
  json += R"(,"isCooled":)";
  json += jsonBool(camera.isCooled);
  json += R"(,"isUsb3Camera":)";
  json += jsonBool(camera.isUsb3Camera);
  json += R"(,"isUsb3Host":)";
  json += jsonBool(camera.isUsb3Host);
  json += R"(,"bins":)";
  json += jsonIntArray(camera.bins);
  json += R"(,"formats":)";
  json += jsonIntArray(formats);
  json += R"(,"depths":)";
  json += hasRaw16 ? "[8,16]" : "[8]";
  json += R"(,"maxExposureUs":)";
  appendInteger(json, camera.maxExposureUs);
  json += R"(,"minGain":)";
  appendInteger(json, camera.minGain);
  json += R"(,"maxGain":)";
  appendInteger(json, camera.maxGain);
  json += R"(,"bayer":)";
  appendInteger(json, camera.bayer);
  return json += '}';
}

}  // namespace orvane
