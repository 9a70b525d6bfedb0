// All cameras of the server.
#include "oc_alpaca/devices.hpp"

#include <chrono>
#include <future>

#include "oc_alpaca/device_ids.hpp"
#include "session/camera_catalogue.hpp"

namespace orvane::host {

namespace {

// What a worker of its own finds. A failure is an "error" in what it returns.
Json scan(const std::string& sdkDirectory) {
  std::promise<Json> promise;
  std::future<Json> scanned = promise.get_future();
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
  constexpr std::chrono::seconds patience{60};
  if (scanned.wait_for(patience) != std::future_status::ready) {
    return failure("An SDK did not answer a scan within 60 s.");
  }
  return scanned.get();
}

}  // namespace

Devices::Devices(const DeviceOptions& options) {
  const std::vector<oc::CameraInfo> cameras = read(scan(options.sdkDirectory));
  const std::vector<std::string> ids = deviceIds(deviceIdsFile(), cameras);
  for (std::size_t number = 0; number < cameras.size(); ++number) {
    cameras_.push_back(std::make_unique<CameraDevice>(cameras.at(number), ids.at(number), options));
    cameras_.back()->prepare();
  }
}

std::vector<oc::CameraInfo> Devices::read(const Json& scanned) {
  scanText_ = scanned.at("error");
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
  for (const auto& camera : cameras_) {
    camera->checkPatience();
  }
}

void Devices::disconnect() const {
  for (const auto& camera : cameras_) {
    camera->disconnect();
  }
}

}  // namespace orvane::host
