// A live view's work with the library: looking for cameras, streaming, recording. All on one
// thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "live_view/frame_exchange.hpp"
#include "live_view/live_recording.hpp"
#include "live_view/rate_meter.hpp"
#include "session/camera_description.hpp"
#include "session/camera_session.hpp"

namespace orvane::host {

struct LiveOptions {
  std::string sdkDirectory;
  std::string camera;  ///< index or part of a name; "" leaves the choice to the user
  std::filesystem::path recordings = ".";  ///< directory for SER files
};

/// What a user can ask for.
struct RescanRequest {};
struct ChooseRequest {
  std::size_t position = 0;  ///< in LiveState::cameras
};
struct ControlsRequest {
  std::int64_t exposureUs = 0;
  int gain = 0;
  int offset = 0;
};
struct NextFormatRequest {};
struct NextBinRequest {};
struct ToggleRecordingRequest {};
using LiveRequest = std::variant<RescanRequest, ChooseRequest, ControlsRequest, NextFormatRequest,
                                 NextBinRequest, ToggleRecordingRequest>;

enum class LivePhase {
  Searching,  ///< the first scan has not ended
  Idle,       ///< no camera is open, since there is none or none has been chosen
  Streaming,
  Lost,  ///< the camera failed and was closed
};

enum class NoticeKind { Information, Warning, Error };

/// A sentence for the status line.
struct Notice {
  NoticeKind kind = NoticeKind::Information;
  std::string text;
};

/// What the user is shown.
struct LiveState {
  LivePhase phase = LivePhase::Searching;
  std::vector<CameraDescription> cameras;
  std::optional<std::size_t> chosen;  ///< position of the camera that is, or was last, open
  std::string cameraName;             ///< its name, which stays when a scan does not find it again
  CameraSettings settings;            ///< in force
  FrameLayout layout;
  std::uint64_t opening = 0;  ///< counts how often a camera was opened
  std::uint64_t settled = 0;  ///< counts how often settings became other than asked for
  std::int64_t frames = 0;    ///< since the opening
  double framesPerSecond = 0;
  double temperature = std::numeric_limits<double>::quiet_NaN();  ///< degrees Celsius
  double silentSeconds = 0;  ///< since the last frame, or since the opening
  Notice notice;
  std::optional<RecordingProgress> recording;

  /// The camera that is, or was last, open.
  const CameraDescription* camera() const { return chosen ? &cameras[*chosen] : nullptr; }
};

/// Every member is called on the same thread, the library's only caller.
class LiveSession {
 public:
  explicit LiveSession(LiveOptions options);

  /// Looks for cameras the first time, and opens the one that was named or the only one.
  void start();

  /// Does what the user asks for. Failures become notices.
  void carryOut(const LiveRequest& request);

  /// True while a camera streams.
  bool isStreaming() const { return camera_.has_value(); }

  /// Asks the streaming camera for a frame, which is recorded if a recording runs. Waits for a
  /// twentieth of a second at most, as far as the SDK keeps to that. True when a frame came: it is
  /// in frame().
  bool poll();

  /// The frame that came last. Another buffer may be left in its place.
  LiveFrame& frame() { return frame_; }

  /// With everything that changes by itself brought up to date.
  const LiveState& state();

  /// Ends a recording and closes the camera.
  void stop();

 private:
  using Clock = std::chrono::steady_clock;

  void carry(const RescanRequest& request);
  void carry(const ChooseRequest& request);
  void carry(const ControlsRequest& request);
  void carry(const NextFormatRequest& request);
  void carry(const NextBinRequest& request);
  void carry(const ToggleRecordingRequest& request);

  bool mayReopen();
  void scan();
  void openFirst();
  std::optional<std::size_t> positionOfBefore() const;
  void open(std::size_t position, const CameraSettings& settings);
  void reopen(const CameraSettings& settings);
  void close();
  void frameCame(std::size_t size);
  void readFailed(const std::string& text);
  void endRecording(const std::string& because);
  void say(NoticeKind kind, const std::string& text);

  LiveOptions options_;
  LiveState state_;
  std::optional<CameraSession> camera_;
  std::optional<LiveRecording> recording_;
  std::size_t lastPosition_ = 0;  // of the camera that was opened last
  LiveFrame frame_;
  RateMeter rate_;
  Clock::time_point lastFrame_;
  Clock::time_point temperatureRead_;
  int failuresInRow_ = 0;
};

}  // namespace orvane::host
