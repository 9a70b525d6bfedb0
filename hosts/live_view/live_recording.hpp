// A recording that is started and stopped by a key.
#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <span>
#include <string>

#include "formats/ser_writer.hpp"
#include "imaging/frame_layout.hpp"
#include "session/camera_description.hpp"

namespace orvane::host {

/// The name of a recording: the time when it starts and the camera, without characters that file
/// systems refuse, such as "2026-11-21_20-15-03_ZWO ASI294MC Pro.ser".
std::string recordingName(const std::tm& localTime, const std::string& camera);

/// A path in this directory that no file has: the name itself, or with "_2", "_3" and so on.
std::filesystem::path unusedPath(const std::filesystem::path& directory, const std::string& name);

/// How far a recording is.
struct RecordingProgress {
  std::string file;  ///< its name, UTF-8
  std::int64_t frames = 0;
  std::int64_t bytes = 0;
  double seconds = 0;
};

/// A SER file that is being written. Members throw std::runtime_error with a sentence that names
/// the file.
class LiveRecording {
 public:
  LiveRecording(const std::filesystem::path& directory, const CameraDescription& camera,
                const FrameLayout& layout);

  void addFrame(std::span<const std::uint8_t> frame);

  /// Brings the file's frame count up to date once a second.
  void keepValid();

  /// Finishes the file.
  void close() { writer_.close(); }

  RecordingProgress progress() const;

 private:
  using Clock = std::chrono::steady_clock;

  std::filesystem::path path_;
  std::size_t frameBytes_;
  SerWriter writer_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point checkpoint_ = Clock::now();
};

}  // namespace orvane::host
