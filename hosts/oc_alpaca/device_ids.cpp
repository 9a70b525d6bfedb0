// The unique ids of cameras, which clients remember.
#include "oc_alpaca/device_ids.hpp"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <stdexcept>

#include "system/file.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

Json readFile(const std::filesystem::path& path) {
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) {
    return Json::object();
  }
  const InputFile file(path);
  std::string text(static_cast<std::size_t>(file.size()), '\0');
  file.readAt(0, {reinterpret_cast<std::uint8_t*>(text.data()), text.size()});
  Json ids = Json::parse(text, nullptr, false);
  if (!ids.is_object()) {
    throw std::runtime_error("The file " + file.name() +
                             " with the ids of the cameras cannot be understood. Remove it, and "
                             "the cameras get new ids.");
  }
  return ids;
}

void writeFile(const std::filesystem::path& path, const Json& ids) {
  std::error_code ignored;
  std::filesystem::create_directories(path.parent_path(), ignored);
  const std::string text = ids.dump(2) + "\n";
  OutputFile file(path, Existing::Replace);
  file.writeAt(0, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  file.close();
}

}  // namespace

std::filesystem::path deviceIdsFile() {
  return userDataFile("alpaca-cameras.json");
}

std::vector<std::string> deviceIds(const std::filesystem::path& file,
                                   const std::vector<oc::CameraInfo>& cameras) {
  Json known = file.empty() ? Json::object() : readFile(file);
  bool isChanged = false;
  std::vector<std::string> ids;
  for (const oc::CameraInfo& camera : cameras) {
    const std::string key = camera.name + " #" + std::to_string(camera.ordinal + 1);
    if (!known.contains(key) || !known.at(key).is_string()) {
      known[key] = boost::uuids::to_string(boost::uuids::random_generator()());
      isChanged = true;
    }
    ids.push_back(known.at(key));
  }
  if (isChanged && !file.empty()) {
    writeFile(file, known);
  }
  return ids;
}

}  // namespace orvane::host
