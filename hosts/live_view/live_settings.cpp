// What the live view remembers from one start to the next, in a file of the user's profile.
#include "live_view/live_settings.hpp"

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "system/file.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using Json = nlohmann::ordered_json;

constexpr int largestInt = std::numeric_limits<int>::max();

// Reads one object. A member that is missing leaves the value as it is; one of another type, or
// outside its range, throws.
class Members {
 public:
  explicit Members(const Json& object) : object_(object) { require(object.is_object()); }

  const Json* find(const char* key) const {
    const auto found = object_.find(key);
    return found == object_.end() ? nullptr : &*found;
  }

  void read(const char* key, std::string& value) const {
    if (const Json* const member = find(key)) {
      value = member->get<std::string>();
    }
  }

  void read(const char* key, bool& value) const {
    if (const Json* const member = find(key)) {
      value = member->get<bool>();
    }
  }

  template <class Integer>
  void read(const char* key, Integer& value, Integer least, Integer most = largestInt) const {
    if (const Json* const member = find(key)) {
      require(member->is_number_integer());
      const auto number = member->get<std::int64_t>();
      require(number >= least && number <= most);
      value = static_cast<Integer>(number);
    }
  }

  static void require(bool holds) {
    if (!holds) {
      throw std::runtime_error("a value has another type or range");
    }
  }

 private:
  const Json& object_;
};

oc::Settings cameraSettingsFrom(const Json& object) {
  const Members members(object);
  oc::Settings settings;
  int gain = 0;
  std::string format = formatName(settings.format);
  members.read("bin", settings.bin, 1);
  members.read("format", format);
  members.read("exposureUs", settings.exposureUs, std::int64_t{1});
  members.read("gain", gain, -largestInt);
  members.read("offset", settings.offset, -largestInt);
  const auto known = formatFromName(format);
  Members::require(known.has_value());
  settings.format = *known;
  settings.gain = gain;
  return settings;
}

WindowPlace windowPlaceFrom(const Json& object) {
  const Members members(object);
  constexpr int farthest = 1'000'000;
  WindowPlace place;
  members.read("left", place.left, -farthest, farthest);
  members.read("top", place.top, -farthest, farthest);
  members.read("width", place.width, 1, farthest);
  members.read("height", place.height, 1, farthest);
  members.read("isMaximized", place.isMaximized);
  return place;
}

RememberedSettings settingsFrom(const Json& document) {
  const Members members(document);
  RememberedSettings settings;
  members.read("sdkDirectory", settings.sdkDirectory);
  members.read("recordings", settings.recordings);
  members.read("camera", settings.camera);
  if (const Json* const cameras = members.find("cameras")) {
    Members::require(cameras->is_object());
    for (const auto& [name, object] : cameras->items()) {
      settings.cameras[name] = cameraSettingsFrom(object);
    }
  }
  if (const Json* const window = members.find("window")) {
    settings.window = windowPlaceFrom(*window);
  }
  return settings;
}

Json jsonOf(const RememberedSettings& settings) {
  Json document = {{"sdkDirectory", settings.sdkDirectory},
                   {"recordings", settings.recordings},
                   {"camera", settings.camera},
                   {"cameras", Json::object()}};
  for (const auto& [name, camera] : settings.cameras) {
    document["cameras"][name] = {{"bin", camera.bin},
                                 {"format", formatName(camera.format)},
                                 {"exposureUs", camera.exposureUs},
                                 {"gain", camera.gain.value_or(0)},
                                 {"offset", camera.offset}};
  }
  if (settings.window) {
    document["window"] = {{"left", settings.window->left},
                          {"top", settings.window->top},
                          {"width", settings.window->width},
                          {"height", settings.window->height},
                          {"isMaximized", settings.window->isMaximized}};
  }
  return document;
}

}  // namespace

std::filesystem::path settingsFile() {
  return userDataFile("live_view.json");
}

RememberedSettings readSettings(const std::filesystem::path& file) {
  std::error_code ignored;
  if (file.empty() || !std::filesystem::exists(file, ignored)) {
    return {};
  }
  const InputFile input(file);
  constexpr std::int64_t most = 1'000'000;  // a larger file is not one of this program's
  try {
    Members::require(input.size() <= most);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(input.size()));
    input.readAt(0, bytes);
    return settingsFrom(Json::parse(bytes));
  } catch (const std::exception&) {
    throw std::runtime_error("The settings in " + input.name() +
                             " are damaged, and the usual ones are used.");
  }
}

void writeSettings(const std::filesystem::path& file, const RememberedSettings& settings) {
  std::error_code ignored;  // the file's own failure tells
  std::filesystem::create_directories(file.parent_path(), ignored);
  const std::string text =
      jsonOf(settings).dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
  OutputFile output(file, Existing::Replace);
  output.writeAt(0, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  output.close();
}

void remember(RememberedSettings& settings, const LiveState& state) {
  if (!state.sdks.empty()) {
    settings.sdkDirectory = state.sdkDirectory;
  }
  settings.recordings = utf8FromPath(state.recordings);
  if (state.phase == LivePhase::Streaming && state.capture.opening > 0) {
    settings.camera = state.cameraName();
    settings.cameras[settings.camera] = state.capture.settings;
  }
}

void fillIn(LiveOptions& options, const RememberedSettings& settings,
            const std::filesystem::path& programDirectory) {
  if (options.sdkDirectory.empty()) {
    for (const std::string& place :
         {utf8FromPath(programDirectory / "sdk"), settings.sdkDirectory}) {
      std::error_code ignored;
      if (options.sdkDirectory.empty() && !place.empty() &&
          std::filesystem::is_directory(pathFromUtf8(place), ignored)) {
        options.sdkDirectory = place;
      }
    }
  }
  if (options.recordings.empty() && !settings.recordings.empty()) {
    options.recordings = pathFromUtf8(settings.recordings);
  }
  options.lastCamera = settings.camera;
  options.knownSettings = settings.cameras;
}

}  // namespace orvane::host
