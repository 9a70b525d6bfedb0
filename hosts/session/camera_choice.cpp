// Which camera a user means.
#include "session/camera_choice.hpp"

#include <functional>

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

}  // namespace

const oc::CameraInfo& chooseCamera(const std::vector<oc::CameraInfo>& cameras,
                                   const std::string& wish) {
  if (wish.empty()) {
    throw UsageError("The camera's name must not be empty.");
  }
  using Condition = std::function<bool(const oc::CameraInfo&)>;
  const Condition isIndex = [&](const auto& camera) {
    return std::to_string(camera.index) == wish;
  };
  const Condition hasPart = [&](const auto& camera) {
    return containsIgnoringCase(camera.name, wish);
  };
  const Condition hasName = [&](const auto& camera) {
    return camera.name.size() == wish.size() && hasPart(camera);
  };
  const Condition any = [](const auto&) { return true; };

  const auto camerasWhere = [&](const Condition& condition) {
    Candidates found;
    for (const oc::CameraInfo& camera : cameras) {
      if (condition(camera)) {
        found.push_back(&camera);
      }
    }
    return found;
  };
  for (const Condition& condition : {isIndex, hasName, hasPart}) {
    const Candidates found = camerasWhere(condition);
    if (found.size() > 1) {
      throw UsageError("More than one camera fits " + inQuotes(wish) + ": " + listOf(found) +
                       "; give the index or more of the name.");
    }
    if (found.size() == 1) {
      return *found.front();
    }
  }
  throw UsageError("No camera fits " + inQuotes(wish) + "; there are " + listOf(camerasWhere(any)) +
                   ".");
}

}  // namespace orvane::host
