// A recording that is started and stopped by a key.
#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <optional>
#include <orvane_desktop_camera.hpp>
#include <string>

#include "session/ser_recorder.hpp"

namespace orvane::host {

/// The name of a recording: the time when it starts and the camera, without characters that file
/// systems refuse, such as "2026-11-21_20-15-03_ZWO ASI294MC Pro.ser".
std::string recordingName(const std::tm& localTime, const std::string& camera);

/// A path in this directory that no file has: the name itself, or with "_2", "_3" and so on.
std::filesystem::path unusedPath(const std::filesystem::path& directory, const std::string& name);

/// The progress of a recording.
struct RecordingProgress {
  std::string file;         ///< its name, UTF-8
  std::int64_t frames = 0;  ///< in the file
  std::int64_t bytes = 0;
  double seconds = 0;
  std::int64_t droppedFrames = 0;  ///< the disk was too slow for them
};

/// "3 frames in "NAME"." or that there is no frame, and how many were dropped, if any.
std::string contentText(const RecordingProgress& recording);

/// Records a camera's frames into a new SER file in a directory.
class LiveRecording {
 public:
  /// Takes frames from the queue as SerRecorder does, and records the region of them, if there is
  /// one. Others can use the frames. Throws std::runtime_error with a sentence
  /// that names the file.
  LiveRecording(const std::filesystem::path& directory, const oc::CameraInfo& camera,
                const FrameLayout& layout, oc::FrameQueue frames,
                const std::optional<Region>& region = std::nullopt);

  /// True when it has ended without close(): the camera is lost or writing has failed.
  bool hasEnded() { return recorder_.waitForEnd(std::chrono::milliseconds(0)); }

  /// Writes the frames that wait and finishes the file. Throws if writing failed; a lost camera is
  /// no failure of the recording.
  void close();

  RecordingProgress progress() const;

 private:
  using Clock = std::chrono::steady_clock;

  std::filesystem::path path_;
  std::size_t frameBytes_;
  SerRecorder recorder_;
  Clock::time_point start_ = Clock::now();
};

}  // namespace orvane::host
