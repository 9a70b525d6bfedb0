// Checks the JSON description of a camera with an independent parser.
#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "catalogue/camera_json.hpp"
#include "checks.hpp"
#include "input.hpp"

namespace orvane::fuzz {

namespace {

using Json = nlohmann::ordered_json;

std::vector<std::int32_t> anyNumbers(Input& input) {
  std::vector<std::int32_t> numbers(input.byte() % 9U);
  for (std::int32_t& number : numbers) {
    number = input.number();
  }
  return numbers;
}

CameraInfo anyCamera(Input& input) {
  CameraInfo camera;
  const std::uint8_t flags = input.byte();
  camera.isColor = (flags & 1U) != 0;
  camera.isCooled = (flags & 2U) != 0;
  camera.isUsb3Camera = (flags & 4U) != 0;
  camera.isUsb3Host = (flags & 8U) != 0;
  input.fill(camera.maxWidth, camera.maxHeight, camera.bitDepth, camera.pixelSizeUm);
  camera.bins = anyNumbers(input);
  camera.formats = anyNumbers(input);
  camera.maxExposureUs = static_cast<std::int64_t>(input.longWord());
  input.fill(camera.minGain, camera.maxGain, camera.bayer);
  while (!input.empty() && camera.name.size() < 512) {
    camera.name += static_cast<char>(input.byte());
  }
  return camera;
}

bool isControl(char byte) {
  return static_cast<unsigned char>(byte) < 0x20;
}

// The part of a name that a description keeps.
std::string visible(std::string name) {
  std::erase_if(name, isControl);
  return name;
}

// Whether the independent library accepts the text when it writes JSON.
bool isUtf8(const std::string& text) {
  try {
    return !Json(text).dump().empty();
  } catch (const Json::type_error&) {
    return false;
  }
}

// Removes the quotes and escapes. Returns an empty text if a quote inside is not escaped.
std::string unquoted(const std::string& quoted) {
  std::string text;
  for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
    if (quoted[i] == '\\') {
      ++i;
    } else if (quoted[i] == '"') {
      return {};
    }
    text += quoted[i];
  }
  return text;
}

Json expected(std::int32_t index, const CameraInfo& camera, const std::string& name) {
  const bool has16Bits = std::count(camera.formats.begin(), camera.formats.end(), 1) > 0;
  return {{"id", index},
          {"name", name},
          {"maxWidth", camera.maxWidth},
          {"maxHeight", camera.maxHeight},
          {"bitDepth", camera.bitDepth},
          {"pixelSizeUm", nullptr},
          {"isColor", camera.isColor},
          {"isCooled", camera.isCooled},
          {"isUsb3Camera", camera.isUsb3Camera},
          {"isUsb3Host", camera.isUsb3Host},
          {"bins", camera.bins},
          {"formats", camera.formats},
          {"depths", has16Bits ? Json{8, 16} : Json::array({8})},
          {"maxExposureUs", camera.maxExposureUs},
          {"minGain", camera.minGain},
          {"maxGain", camera.maxGain},
          {"bayer", camera.bayer}};
}

}  // namespace

std::vector<std::string> checkDescriptionOf(std::span<const std::uint8_t> bytes) {
  Input input(bytes);
  const std::int32_t index = input.number();
  const CameraInfo camera = anyCamera(input);
  const std::string description = cameraJson(index, camera);
  const std::string name = visible(camera.name);

  std::vector<std::string> violations;
  const auto require = [&](bool holds, const char* rule) {
    if (!holds) {
      violations.emplace_back(rule);
    }
  };
  require(std::none_of(description.begin(), description.end(), isControl),
          "control character in a description");
  const std::string quoted = jsonString(camera.name);
  require(quoted.size() >= 2 && quoted.front() == '"' && quoted.back() == '"', "no quotes");
  require(unquoted(quoted) == name, "name changed by quoting");
  require(description.find(",\"name\":" + quoted + ",\"maxWidth\":") != std::string::npos,
          "name is not in its place");

  Json read = Json::parse(description, nullptr, false);
  // JSON cannot represent infinity or not-a-number.
  const bool isJson = isUtf8(name) && std::isfinite(camera.pixelSizeUm);
  require(read.is_discarded() != isJson, "readable against expectation");
  if (isJson && !read.is_discarded()) {
    const double error = std::abs(read["pixelSizeUm"].get<double>() - camera.pixelSizeUm);
    require(error <= std::abs(camera.pixelSizeUm) * 1e-5, "pixel size");
    read["pixelSizeUm"] = nullptr;
    require(read.dump() == expected(index, camera, name).dump(), "another camera was read back");
  }
  return violations;
}

}  // namespace orvane::fuzz
