// One recording of "oc_capture record".
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

#include "oc_capture/camera_options.hpp"
#include "oc_capture/output_names.hpp"
#include "oc_capture/report.hpp"
#include "oc_capture/sequence.hpp"
#include "session/ser_recorder.hpp"

namespace orvane::host {

struct RecordSettings {
  CameraOptions camera;
  CaptureLength length;
  int memoryMegabytes = 256;  ///< for frames that wait to be written
  OutputNames names;
  SequenceOptions sequence;
  bool hasNoPreview = false;
  bool hasNoLog = false;
  std::string telescope;
  Reporting reporting;
};

/// The result of a recording, after its camera and its file are closed.
struct Recording {
  FrameLayout layout;
  std::int32_t frames = 0;
  std::int64_t droppedFrames = 0;
  std::uint64_t silentWaits = 0;
  std::uint64_t failedReads = 0;
  RecordingTimes times;
  std::size_t mostFramesWaiting = 0;
  std::size_t framesThatMayWait = 0;
  std::optional<double> temperatureAtStart;  ///< degrees Celsius
  std::optional<double> temperatureAtEnd;
  bool isDiskReserved = false;     ///< it ended because of "--stop-below"
  double seconds = 0;              ///< from the start of the stream to the last frame
  double secondsUntilWritten = 0;  ///< from the start of the stream until the file is closed
  oc::Frame lastFrame;
  std::span<const std::uint8_t> lastPixels;  ///< of that frame, as they are in the file
  std::filesystem::path file;                ///< empty if there is no frame
  std::filesystem::path preview;  ///< the last frame as a picture; empty if there is none
  std::filesystem::path log;      ///< the settings log; empty if there is none
  std::string error;              ///< what failed, or empty

  double framesPerSecond() const { return times.seconds > 0 ? (frames - 1) / times.seconds : 0; }
};

/// Records from a camera into this file. The camera is opened and closed again. Failures after the
/// file was created are in the result.
Recording recordOnce(const RecordSettings& settings, const ChosenCamera& camera,
                     const OutputPath& file);

}  // namespace orvane::host
