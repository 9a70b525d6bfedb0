// A recording that is started and stopped by a key.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <orvane_desktop_camera.hpp>
#include <string>
#include <vector>

#include "live_view/recording_limit.hpp"
#include "session/file_names.hpp"
#include "session/recording_log.hpp"
#include "session/ser_recorder.hpp"
#include "system/system.hpp"

namespace orvane::host {

/// What the user wants of recordings. Texts are UTF-8.
struct RecordingWish {
  std::string nameTemplate = usualNameTemplate;
  std::string observer;  ///< like the three below written into the settings log
  std::string telescope;
  std::string target;
  std::string filter;
  RecordingLimit limit;
};

/// The progress of a recording.
struct RecordingProgress {
  std::string file;         ///< its name, UTF-8
  std::int64_t frames = 0;  ///< in the file
  std::int64_t bytes = 0;
  double seconds = 0;
  std::int64_t droppedFrames = 0;              ///< the disk was too slow for them
  std::optional<std::int64_t> freeBytes = {};  ///< of the disk
  std::optional<double> secondsToFull = {};    ///< until the disk is full, at the present rate
  std::optional<double> secondsToLimit = {};   ///< until the recording ends by itself
};

/// "3 frames in "NAME"." or that there is no frame, and how many were dropped, if any.
std::string contentText(const RecordingProgress& recording);

/// Records a camera's frames into a new SER file in a directory, with a settings log beside it.
class LiveRecording {
 public:
  /// Takes frames from the queue as SerRecorder does, and records the region of them, if there is
  /// one. Others can use the frames. `camera` is streaming. Throws std::runtime_error with a
  /// sentence that names the file.
  LiveRecording(const std::filesystem::path& directory, const RecordingWish& wish,
                const oc::CaptureState& camera, const std::vector<std::string>& sdks,
                oc::FrameQueue frames, const std::optional<Region>& region = std::nullopt);

  /// True when it has ended without close(): the camera is lost, writing has failed, or the limit
  /// of frames is reached.
  bool hasEnded() { return recorder_.waitForEnd(std::chrono::milliseconds(0)); }

  /// How long it may go on; none without a limit of time. 0 or less when the
  /// time is over.
  std::optional<std::chrono::milliseconds> timeLeft() const;

  /// True when the limit of frames or of time is reached.
  bool isLimitReached() const;

  /// Writes the frames that wait, finishes the file, and writes the settings log if there are
  /// frames. `camera` is its state at the end. Throws if writing failed; a lost camera is no
  /// failure of the recording.
  void close(const oc::CaptureState& camera);

  /// `framesPerSecond` is the present rate.
  RecordingProgress progress(double framesPerSecond = 0) const;

 private:
  using Clock = std::chrono::steady_clock;

  void writeLog(const oc::CaptureState& camera, const std::string& error);

  const StaysAwake awake_;
  std::filesystem::path directory_;
  RecordingLimit limit_;
  RecordingFacts facts_;  // what is known at the start
  std::uint64_t failedReadsBefore_;
  std::filesystem::path path_;
  std::size_t frameBytes_;
  SerRecorder recorder_;
  Clock::time_point start_ = Clock::now();
};

}  // namespace orvane::host
