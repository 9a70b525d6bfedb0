// What a host knows about one camera: the library's description of it, read.
#include "session/camera_description.hpp"

#include <charconv>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using Json = nlohmann::ordered_json;

CameraError unreadable(int index, const std::string& reason) {
  return CameraError("The description of camera " + std::to_string(index) +
                     " cannot be read: " + reason + ".");
}

// The key cannot be part of a name: a quotation mark in a name has a backslash before it.
std::string withoutOddPixelSize(std::string text) {
  constexpr std::string_view key = "\"pixelSizeUm\":";
  const std::size_t found = text.find(key);
  if (found == std::string::npos) {
    return text;
  }
  const std::size_t start = found + key.size();
  const std::size_t length = std::min(text.find_first_of(",}", start), text.size()) - start;
  const char* const end = text.data() + start + length;
  double number = 0;
  const auto parsed = std::from_chars(text.data() + start, end, number);
  if (parsed.ec != std::errc() || parsed.ptr != end || !std::isfinite(number)) {
    text.replace(start, length, "null");
  }
  return text;
}

// One description and its camera's index, for messages.
class Fields {
 public:
  Fields(int index, const Json& json) : index_(index), json_(json) {}

  std::string text(const char* key) const {
    const Json& value = field(key);
    require(value.is_string(), key);
    return value.get<std::string>();
  }

  bool boolean(const char* key) const {
    const Json& value = field(key);
    require(value.is_boolean(), key);
    return value.get<bool>();
  }

  template <class Integer>
  Integer integer(const char* key) const {
    return checkedInteger<Integer>(field(key), key);
  }

  double realOrNan(const char* key) const {
    const Json& value = field(key);
    require(value.is_number() || value.is_null(), key);
    return value.is_null() ? std::numeric_limits<double>::quiet_NaN() : value.get<double>();
  }

  std::vector<int> integers(const char* key) const {
    const Json& list = field(key);
    require(list.is_array(), key);
    std::vector<int> values;
    for (const Json& value : list) {
      values.push_back(checkedInteger<int>(value, key));
    }
    return values;
  }

 private:
  const Json& field(const char* key) const {
    const auto found = json_.find(key);
    require(found != json_.end(), key);
    return *found;
  }

  template <class Integer>
  Integer checkedInteger(const Json& value, const char* key) const {
    require(
        value.is_number_integer() &&
            (!value.is_number_unsigned() ||
             value.get<std::uint64_t>() <= std::uint64_t{std::numeric_limits<std::int64_t>::max()}),
        key);
    const auto wide = value.get<std::int64_t>();
    require(
        wide >= std::numeric_limits<Integer>::min() && wide <= std::numeric_limits<Integer>::max(),
        key);
    return static_cast<Integer>(wide);
  }

  void require(bool holds, const char* key) const {
    if (!holds) {
      throw unreadable(index_, std::string("there is no usable \"") + key + "\"");
    }
  }

  int index_;
  const Json& json_;
};

}  // namespace

Json readCameraJson(int index, std::string_view text) {
  Json json =
      Json::parse(withoutOddPixelSize(validUtf8(std::string(text))), nullptr, /*exceptions=*/false);
  if (!json.is_object()) {
    throw unreadable(index, "it is not a JSON object");
  }
  return json;
}

CameraDescription describeCamera(int index, const Json& json) {
  const Fields fields(index, json);
  CameraDescription camera;
  camera.id = fields.integer<int>("id");
  camera.name = fields.text("name");
  camera.maxWidth = fields.integer<int>("maxWidth");
  camera.maxHeight = fields.integer<int>("maxHeight");
  camera.bitDepth = fields.integer<int>("bitDepth");
  camera.pixelSizeUm = fields.realOrNan("pixelSizeUm");
  camera.isColor = fields.boolean("isColor");
  camera.isCooled = fields.boolean("isCooled");
  camera.isUsb3Camera = fields.boolean("isUsb3Camera");
  camera.isUsb3Host = fields.boolean("isUsb3Host");
  camera.bins = fields.integers("bins");
  for (const int code : fields.integers("formats")) {
    if (const auto format = formatFromCode(code)) {
      camera.formats.push_back(*format);
    }
  }
  camera.maxExposureUs = fields.integer<std::int64_t>("maxExposureUs");
  camera.minGain = fields.integer<int>("minGain");
  camera.maxGain = fields.integer<int>("maxGain");
  camera.bayer = bayerFromCode(fields.integer<int>("bayer"));
  return camera;
}

}  // namespace orvane::host
