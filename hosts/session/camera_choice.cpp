// Which camera a user means.
#include "session/camera_choice.hpp"

#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using Candidates = std::vector<const oc::CameraInfo*>;

std::string listOf(const Candidates& cameras) {
  return joined(cameras, ", ", [](const oc::CameraInfo* camera) {
    return std::to_string(camera->index) + " (" + camera->name + ")";
  });
}

template <class Condition>
Candidates camerasWhere(const std::vector<oc::CameraInfo>& cameras, Condition condition) {
  Candidates found;
  for (const oc::CameraInfo& camera : cameras) {
    if (condition(camera)) {
      found.push_back(&camera);
    }
  }
  return found;
}

}  // namespace

const oc::CameraInfo& chooseCamera(const std::vector<oc::CameraInfo>& cameras,
                                   const std::string& wish) {
  if (wish.empty()) {
    throw UsageError("The camera's name must not be empty.");
  }
  const auto isIndex = [&](const oc::CameraInfo& camera) {
    return std::to_string(camera.index) == wish;
  };
  const auto hasName = [&](const oc::CameraInfo& camera) {
    return camera.name.size() == wish.size() && containsIgnoringCase(camera.name, wish);
  };
  const auto hasPart = [&](const oc::CameraInfo& camera) {
    return containsIgnoringCase(camera.name, wish);
  };

  Candidates found = camerasWhere(cameras, isIndex);
  if (found.empty()) {
    found = camerasWhere(cameras, hasName);
  }
  if (found.empty()) {
    found = camerasWhere(cameras, hasPart);
  }
  if (found.empty()) {
    const Candidates all = camerasWhere(cameras, [](const oc::CameraInfo&) { return true; });
    throw UsageError("No camera fits " + inQuotes(wish) + "; there are " + listOf(all) + ".");
  }
  if (found.size() > 1) {
    throw UsageError("More than one camera fits " + inQuotes(wish) + ": " + listOf(found) +
                     "; give the index or more of the name.");
  }
  return *found.front();
}

}  // namespace orvane::host
