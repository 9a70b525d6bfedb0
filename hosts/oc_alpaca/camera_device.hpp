// A camera as the protocol's clients see it: its connection, its settings, its exposure, its
// picture.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <orvane_desktop_camera.hpp>
#include <shared_mutex>
#include <string>
#include <vector>

#include "oc_alpaca/alpaca_error.hpp"
#include "oc_alpaca/event_log.hpp"
#include "oc_alpaca/geometry.hpp"
#include "oc_alpaca/picture.hpp"
#include "oc_alpaca/worker_process.hpp"

namespace orvane::host {

/// The protocol's numbers.
enum class CameraState {
  Idle = 0,
  Waiting = 1,
  Exposing = 2,
  Reading = 3,
  Download = 4,
  Error = 5
};

constexpr int largest8BitSample = 255;
constexpr int largest16BitSample = 65535;

struct OffsetRange {
  int smallest = 0;
  int largest = 0;
};

/// What all cameras of a server have in common.
struct DeviceOptions {
  std::string sdkDirectory;
  std::optional<OffsetRange> offsets;      ///< without it clients cannot set the offset, which is 0
  int largestSample = largest16BitSample;  ///< of 16-bit pictures
  EventLog* log = nullptr;
  /// Locked by a scan, and shared by the cameras that are being opened.
  std::shared_ptr<std::shared_mutex> scanning = std::make_shared<std::shared_mutex>();
};

/// What clients can set. They may set a region that is too large: an exposure then fails.
struct CaptureSetup {
  int bin = 1;
  int left = 0;  ///< in pixels after binning, like the next three
  int top = 0;
  int width = 0;
  int height = 0;
  int readoutMode = 0;  ///< index of readoutModes()
  int gain = 0;
  int offset = 0;
};

struct LastExposure {
  double seconds = 0;
  std::string start;  ///< UTC, to the millisecond
};

/// All members may be called from any thread. None waits for a camera, except connect() and
/// disconnect(). Throws AlpacaError.
class CameraDevice {
 public:
  /// `camera` is presentable.
  CameraDevice(oc::CameraInfo camera, std::string uniqueId, DeviceOptions options);
  ~CameraDevice();
  CameraDevice(const CameraDevice&) = delete;
  CameraDevice& operator=(const CameraDevice&) = delete;

  const oc::CameraInfo& camera() const { return camera_; }
  const std::string& uniqueId() const { return uniqueId_; }
  const SensorSize& size() const { return size_; }
  const std::optional<OffsetRange>& offsets() const { return options_.offsets; }
  /// Of 16-bit pictures.
  int largestSample() const { return options_.largestSample; }
  /// The camera's formats, the best raw format first.
  const std::vector<oc::Format>& readoutModes() const { return readoutModes_; }
  /// In seconds.
  double shortestExposure() const;
  double longestExposure() const;

  /// Starts the camera's worker, which scans. Only while no camera is open, because a scan does not
  /// find everything while another process has a camera open.
  void prepare();

  /// Connects, and waits for that. A camera that was lost is looked for by a new scan.
  void connect();
  void disconnect();

  /// The two halves of each: the first returns at once, and false if there is nothing to do; the
  /// second waits. finishConnect() leaves a failure for isConnecting().
  bool beginConnect();
  void finishConnect();
  bool beginDisconnect();
  void finishDisconnect();

  /// True while it connects or disconnects. Throws what failed when it last connected.
  bool isConnecting() const;
  bool isConnected() const;
  void requireConnected() const;

  /// Whether a scan would disturb the camera, or be disturbed by it, because it is open. One that
  /// is being opened waits for the scan.
  bool isOpen() const;

  /// Throws like requireConnected(), but a camera that was lost has the text of its failure.
  void requireNotLost() const;

  CaptureSetup setup() const;
  void setSetup(int CaptureSetup::*value, int wanted);

  /// `hasLight` false: an exposure that is too short takes the shortest.
  void startExposure(double seconds, bool hasLight);
  void abortExposure();
  CameraState state() const;
  int percentCompleted() const;
  bool isImageReady() const;
  std::shared_ptr<const Picture> picture() const;
  /// The same; null without one.
  std::shared_ptr<const Picture> lastPicture() const;
  LastExposure lastExposure() const;
  /// The last plausible temperature of this connection.
  std::optional<double> temperature() const;

  /// One sentence about the connection.
  std::string connectionText() const;

  /// Ends the worker if it has not answered in time. To be called several times a second.
  void checkPatience();

 private:
  using Clock = std::chrono::steady_clock;
  using Lock = std::unique_lock<std::mutex>;

  enum class Connection { None, Connecting, Connected, Disconnecting, Lost };

  bool isBusy() const {
    return connection_ == Connection::Connecting || connection_ == Connection::Disconnecting;
  }
  bool isExposing() const {
    return state_ == CameraState::Waiting || state_ == CameraState::Exposing;
  }
  void checkConnected() const;
  void endWorker(Lock& lock);
  void startWorker(Lock& lock);
  Json ask(Lock& lock, const Json& command, std::chrono::seconds patience);
  void open(Lock& lock);
  void handle(const Json& event);
  void takePicture(const Json& event);
  void handleEnd(const std::string& how);
  void fail(const std::string& text);
  void lose(const std::string& text);
  void checkExposure(const CaptureSetup& setup, double seconds, bool hasLight) const;
  std::size_t freeSlot() const;
  oc::Settings settingsFor(const CaptureSetup& setup, std::int64_t exposureUs) const;
  void log(const std::string& text) const;

  const oc::CameraInfo camera_;
  const std::string uniqueId_;
  const DeviceOptions options_;
  const SensorSize size_;
  const std::vector<oc::Format> readoutModes_;
  const std::size_t slotSize_;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  Connection connection_ = Connection::None;
  std::string failure_;           // why connecting failed, or the camera was lost
  std::uint64_t generation_ = 0;  // of the worker; events of an earlier one are ignored
  bool isWorkerFresh_ = false;    // it runs, and its scan has found the camera
  std::optional<Json> answer_;    // of the worker while connecting or disconnecting
  std::optional<double> temperature_;
  CaptureSetup setup_;

  CameraState state_ = CameraState::Idle;
  std::uint64_t exposure_ = 0;  // number of the last one
  std::int64_t exposureUs_ = 0;
  Clock::time_point exposingSince_;
  std::optional<Clock::time_point> deadline_;  // for the worker's next event
  std::chrono::microseconds patience_{0};      // while it exposes
  std::string exposureFailure_;
  std::shared_ptr<Picture> coming_;
  std::shared_ptr<const Picture> picture_;
  std::optional<LastExposure> lastExposure_;

  static constexpr std::size_t slots = 3;
  std::shared_ptr<const SharedMemory> memory_;
  std::array<std::weak_ptr<const Picture>, slots> slotUsers_;
  std::unique_ptr<WorkerProcess> worker_;  // last: its thread uses the others
};

}  // namespace orvane::host
