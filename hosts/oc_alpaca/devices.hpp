// All cameras of the server.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
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

/// The cameras that scans have found. Their numbers stay as they are, also if they are unplugged.
/// All members may be called from any thread.
class Devices {
 public:
  /// Scans in a worker of its own, then starts a worker for each camera, which scans, too, one
  /// after another: a scan does not find everything while another process has a camera open. The
  /// calling thread must live as long as the devices. Throws std::exception if the ids of the
  /// cameras cannot be read or written. A failed scan gives no cameras and a text.
  explicit Devices(const DeviceOptions& options);

  /// Looks for cameras that were plugged in, and waits for that. They come behind the others. Does
  /// nothing while a camera is open, or shortly after the last scan. The calling thread must live
  /// as long as the devices.
  void scanAgain();

  std::size_t size() const;
  CameraDevice& at(std::size_t number) const;

  /// What failed in the last scan; "" if nothing did.
  std::string scanText() const;
  std::vector<SdkSummary> sdks() const;

  void checkPatience() const;

  /// Disconnects all cameras.
  void disconnect() const;

 private:
  using Clock = std::chrono::steady_clock;
  using Lock = std::lock_guard<std::mutex>;

  void scan(std::chrono::seconds patience);
  std::vector<oc::CameraInfo> read(const Json& scanned);
  bool isKnown(const oc::CameraInfo& camera) const;
  std::vector<CameraDevice*> all() const;

  const DeviceOptions options_;
  Clock::time_point nextScan_;  // not before this

  mutable std::mutex mutex_;  // of the following
  std::string scanText_;
  std::vector<SdkSummary> sdks_;
  std::vector<std::unique_ptr<CameraDevice>> cameras_;
};

}  // namespace orvane::host
