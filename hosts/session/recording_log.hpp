// The settings log beside a recording: a text file with one "key=value" a line.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <orvane_desktop_camera.hpp>
#include <string>
#include <vector>

#include "imaging/region.hpp"

namespace orvane::host {

/// What the log's name has in place of the recording's ending.
inline constexpr const char* settingsLogEnding = ".txt";

/// What the log says. docs/settings_log.md describes each key.
struct RecordingFacts {
  std::string program;            ///< name and version of the program that recorded
  std::vector<std::string> sdks;  ///< those that were loaded
  oc::CameraInfo camera;
  std::string file;      ///< the recording's name, without its directory
  std::string observer;  ///< this and the three below are empty where they were not given
  std::string telescope;
  std::string target;
  std::string filter;
  oc::FrameLayout layout;                    ///< of the recorded frames
  std::optional<Region> region;              ///< of the camera's frame, if it was cut out of one
  oc::Settings settings;                     ///< in force at the start
  std::optional<double> temperatureAtStart;  ///< degrees Celsius
  std::optional<double> temperatureAtEnd;
  std::chrono::system_clock::time_point start;  ///< of the first frame's exposure
  std::chrono::system_clock::time_point end;    ///< when the last frame arrived
  std::int64_t frames = 0;
  std::int64_t droppedFrames = 0;
  std::int64_t gaps = 0;
  std::uint64_t failedReads = 0;
  double framesPerSecond = 0;
  std::string error;  ///< what ended the recording, or empty
};

/// The log's text. Line breaks and other control characters in values become spaces. Keys whose
/// value is not known are there with nothing after the "=".
std::string settingsLog(const RecordingFacts& facts);

/// The exposure that a log names, in microseconds. 0 if the file is not there or names none.
std::int64_t exposureInLog(const std::filesystem::path& log);

/// A point in time in this computer's time zone with its offset, as in
/// "2024-02-29T23:05:07.004200+01:00".
std::string localText(std::chrono::system_clock::time_point time);

}  // namespace orvane::host
