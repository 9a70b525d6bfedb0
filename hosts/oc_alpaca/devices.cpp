// All cameras of the server.
#include "oc_alpaca/devices.hpp"

#include <algorithm>
#include <future>
#include <shared_mutex>
#include <stdexcept>

#include "oc_alpaca/device_ids.hpp"
#include "session/camera_catalogue.hpp"

namespace orvane::host {

namespace {

// What a worker of its own finds. A failure is an "error" in what it returns.
Json scanned(const std::string& sdkDirectory, std::chrono::seconds patience) {
  std::promise<Json> promise;
  std::future<Json> result = promise.get_future();
  bool isAnswered = false;
  const auto answer = [&](const Json& event) {
    if (!isAnswered) {
      isAnswered = true;
      promise.set_value(event);
    }
  };
  const auto failure = [](const std::string& text) {
    return Json{{"error", text}, {"cameras", Json::array()}, {"sdks", Json::array()}};
  };
  WorkerProcess worker(sdkDirectory, nullptr,
                       {[&](const Json& event) {
                          answer(event.at("is") == "scanned" ? event : failure(event.at("text")));
                        },
                        [&](const std::string& how) {
                          answer(failure("An SDK has ended the process that scans (" + how + ")."));
                        }});
  worker.send({{"do", "scan"}});
  if (result.wait_for(patience) != std::future_status::ready) {
    return failure("An SDK did not answer a scan within " + std::to_string(patience.count()) +
                   " s.");
  }
  return result.get();
}

}  // namespace

Devices::Devices(const DeviceOptions& options) : options_(options) {
  constexpr std::chrono::seconds patience{60};
  scan(patience);
}

void Devices::scanAgain() {
  const std::unique_lock<std::shared_mutex> alone(*options_.scanning, std::try_to_lock);
  if (!alone.owns_lock() || Clock::now() < nextScan_) {
    return;
  }
  for (const CameraDevice* camera : all()) {
    if (camera->isOpen()) {
      return;
    }
  }
  constexpr std::chrono::seconds patience{10};  // a client waits
  try {
    scan(patience);
  } catch (const std::runtime_error& error) {  // of the file with the ids
    const Lock lock(mutex_);
    scanText_ = error.what();
  }
}

// The caller is the only one that scans, and no camera is open.
void Devices::scan(std::chrono::seconds patience) {
  const Clock::time_point start = Clock::now();
  std::vector<oc::CameraInfo> found = read(scanned(options_.sdkDirectory, patience));
  // Scans of an SDK that hangs take a part of the time only.
  constexpr int timesLonger = 2;
  constexpr std::chrono::seconds shortest{3};
  const Clock::time_point end = Clock::now();
  nextScan_ = end + std::max<Clock::duration>(shortest, timesLonger * (end - start));
  std::erase_if(found, [this](const oc::CameraInfo& camera) { return isKnown(camera); });
  const std::vector<std::string> ids = deviceIds(deviceIdsFile(), found);
  for (std::size_t number = 0; number < found.size(); ++number) {
    auto camera = std::make_unique<CameraDevice>(found.at(number), ids.at(number), options_);
    camera->prepare();
    const Lock lock(mutex_);
    cameras_.push_back(std::move(camera));
  }
}

bool Devices::isKnown(const oc::CameraInfo& camera) const {
  const std::vector<CameraDevice*> known = all();
  return std::any_of(known.begin(), known.end(), [&camera](const CameraDevice* each) {
    return each->camera().name == camera.name && each->camera().ordinal == camera.ordinal;
  });
}

std::vector<CameraDevice*> Devices::all() const {
  const Lock lock(mutex_);
  std::vector<CameraDevice*> pointers;
  for (const auto& camera : cameras_) {
    pointers.push_back(camera.get());
  }
  return pointers;
}

std::size_t Devices::size() const {
  const Lock lock(mutex_);
  return cameras_.size();
}

CameraDevice& Devices::at(std::size_t number) const {
  const Lock lock(mutex_);
  return *cameras_.at(number);
}

std::string Devices::scanText() const {
  const Lock lock(mutex_);
  return scanText_;
}

std::vector<SdkSummary> Devices::sdks() const {
  const Lock lock(mutex_);
  return sdks_;
}

std::vector<oc::CameraInfo> Devices::read(const Json& scanned) {
  const Lock lock(mutex_);
  scanText_ = scanned.at("error");
  if (!scanned.at("sdks").empty()) {  // a scan that failed tells nothing of them
    sdks_.clear();
  }
  for (const Json& sdk : scanned.at("sdks")) {
    sdks_.push_back({sdk.at("maker"), sdk.at("file"), sdk.at("isPresent"), sdk.at("isHealthy"),
                     sdk.at("cures")});
  }
  oc::Scan found;
  for (const Json& text : scanned.at("cameras")) {
    const int index = static_cast<int>(found.cameras.size());
    oc::CameraInfo camera = oc::parseCameraInfo(index, text.get<std::string>());
    for (const oc::CameraInfo& other : found.cameras) {
      camera.ordinal += other.name == camera.name ? 1 : 0;
    }
    found.cameras.push_back(std::move(camera));
  }
  return presentable(std::move(found)).cameras;
}

void Devices::checkPatience() const {
  for (CameraDevice* camera : all()) {
    camera->checkPatience();
  }
}

void Devices::disconnect() const {
  for (CameraDevice* camera : all()) {
    camera->disconnect();
  }
}

}  // namespace orvane::host
