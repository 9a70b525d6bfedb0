// A live view's work with the library: looking for cameras, streaming, recording.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <future>
#include <map>
#include <optional>
#include <orvane_desktop_camera.hpp>
#include <string>
#include <vector>

#include "live_view/live_recording.hpp"
#include "live_view/region_choice.hpp"

namespace orvane::host {

/// The settings that cameras had when they were used last, by the cameras' names.
using KnownSettings = std::map<std::string, oc::Settings>;

struct LiveOptions {
  std::string sdkDirectory;          ///< UTF-8
  std::string camera;                ///< index or part of a name; "" leaves the choice to the user
  std::filesystem::path recordings;  ///< directory for SER files; empty is the current one
  RecordingWish recording = {};
  bool keepsSettings = true;    ///< reads them at the start, and writes them at the end
  std::string lastCamera = {};  ///< is opened if it is there and `camera` is ""
  KnownSettings knownSettings = {};
  std::string warning = {};  ///< a sentence to tell at the start
};

/// What a user can change while a camera streams.
struct Controls {
  std::int64_t exposureUs = 0;
  int gain = 0;
  int offset = 0;
};

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

class LiveSession;

/// A user's request, such as &LiveSession::rescan.
using LiveRequest = std::function<void(LiveSession&)>;

struct LiveState {
  LivePhase phase = LivePhase::Searching;
  std::vector<oc::CameraInfo> cameras;
  std::optional<std::size_t> chosen;  ///< position of the camera that is, or was last, open
  oc::CaptureState capture;           ///< its camera stays when a scan does not find it again
  Notice notice;
  std::optional<RecordingProgress> recording;
  std::optional<Region> region;  ///< of the frame, is recorded; none: the whole frame
  std::string sdkDirectory;
  std::vector<std::string> sdks;  ///< those that the last scan found there
  std::filesystem::path recordings;
  RecordingLimit limit;  ///< of the next recording

  /// The camera that is, or was last, open.
  const oc::CameraInfo* camera() const { return chosen ? &cameras[*chosen] : nullptr; }
  const std::string& cameraName() const { return capture.camera.name; }
};

/// Every member but takeFrame() is called on the same thread. Scanning, opening and ending a
/// recording block until they are done. The destructor ends a recording and closes the camera.
class LiveSession {
 public:
  /// `onNews` is called on the capture thread as CaptureOptions::onNews says.
  explicit LiveSession(LiveOptions options, std::function<void()> onNews = {});
  ~LiveSession();
  LiveSession(const LiveSession&) = delete;
  LiveSession& operator=(const LiveSession&) = delete;

  /// Calls one of the requests below. Failures become notices.
  void run(const LiveRequest& request);

  /// Looks for cameras. Opens the camera that was open last; if there was none, the one that the
  /// options name, or the only one.
  void rescan();

  /// Looks for cameras with the SDKs of another directory.
  void useSdkDirectory(const std::string& directory);

  /// Records into another directory from now on.
  void useRecordings(const std::filesystem::path& directory);

  void choose(std::size_t position);  ///< in LiveState::cameras
  void setControls(const Controls& controls);
  void nextFormat();
  void nextBin();
  void nextLimit();
  void toggleRecording();

  /// How long a limit of time leaves to the recording; none without one.
  std::optional<std::chrono::milliseconds> recordingTimeLeft() const;

  /// Records this region from the next recording on, or the whole frame.
  void setRegion(const std::optional<Region>& region);

  void moveRegion(const RegionMove& move);

  /// As far as state() has noticed.
  bool isStreaming() const { return state_.phase == LivePhase::Streaming; }

  /// Takes the newest frame; empty when there has been none since the last call. From any thread.
  oc::Frame takeFrame();

  /// The state now, with notices of what has happened since the last call.
  const LiveState& state();

 private:
  bool mayReopen();
  bool mayChangeRegion();
  void scan();
  void openFirst();
  oc::Settings settingsFor(const oc::CameraInfo& camera) const;
  void open(std::size_t position, const oc::Settings& settings);
  void finishOpening(std::future<void> opening, const std::string& refusal);
  void noteSettings();
  void noticeFailures(const oc::CaptureState& now);
  void endRecording(const oc::CaptureState& camera);
  void say(NoticeKind kind, const std::string& text);

  LiveOptions options_;
  LiveState state_;
  std::string warning_;  // of the options, until it has been told
  oc::Settings wanted_;  // the camera may not have them yet
  oc::CaptureThread capture_;
  std::optional<LiveRecording> recording_;
};

}  // namespace orvane::host
