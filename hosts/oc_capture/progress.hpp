// The line that tells how a recording is going.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "oc_capture/status_line.hpp"

namespace orvane::host {

/// How far a recording is.
struct RecordingState {
  std::int64_t frames = 0;
  std::int64_t bytes = 0;
  std::int64_t silentWaits = 0;
  std::int64_t droppedFrames = 0;
  std::optional<double> temperature;  ///< degrees Celsius
};

/// The state as one line, with the rates since an earlier state.
std::string progressText(const RecordingState& earlier, const RecordingState& now, double seconds);

/// Shows the state from time to time.
class Progress {
 public:
  explicit Progress(bool isQuiet) : line_(isQuiet) {}

  /// True when the time has come to show the state again.
  bool isDue() const { return line_.isDue(); }

  void show(const RecordingState& state);

  /// For what is shown before.
  StatusLine& line() { return line_; }

 private:
  StatusLine line_;
  RecordingState shown_;
};

}  // namespace orvane::host
