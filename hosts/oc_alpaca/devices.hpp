// All cameras of the server.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "oc_alpaca/camera_device.hpp"

namespace orvane::host {

/// One SDK as a scan found it, for people.
struct SdkSummary {
  std::string maker;
  std::string file;
  bool isPresent = false;
  bool isHealthy = false;
  std::vector<std::string> cures;
};

/// The cameras that a scan found when the server started. Their numbers stay as they are.
class Devices {
 public:
  /// Scans in a worker of its own, then starts a worker for each camera, which scans, too, one
  /// after another: a scan does not find everything while another process has a camera open. The
  /// calling thread must live as long as the devices. Throws std::exception if the ids of the
  /// cameras cannot be read or written. A failed scan gives no cameras and a text.
  explicit Devices(const DeviceOptions& options);

  std::size_t size() const { return cameras_.size(); }
  CameraDevice& at(std::size_t number) const { return *cameras_.at(number); }

  /// What failed in the scan; "" if nothing did.
  const std::string& scanText() const { return scanText_; }
  const std::vector<SdkSummary>& sdks() const { return sdks_; }

  void checkPatience() const;

  /// Disconnects all cameras.
  void disconnect() const;

 private:
  std::vector<oc::CameraInfo> read(const Json& scanned);

  std::string scanText_;
  std::vector<SdkSummary> sdks_;
  std::vector<std::unique_ptr<CameraDevice>> cameras_;
};

}  // namespace orvane::host
