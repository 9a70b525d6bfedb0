// The line that tells how a recording is going.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace orvane::host {

/// How far a recording is.
struct RecordingState {
  std::int64_t frames = 0;
  std::int64_t bytes = 0;
  std::int64_t silentWaits = 0;
  double temperature = 0;  ///< degrees Celsius, or NaN
};

/// The state as one line, with the rates since an earlier state.
std::string progressText(const RecordingState& earlier, const RecordingState& now, double seconds);

/// Shows the state on standard error from time to time: on a terminal a line that is written over,
/// elsewhere a line every few seconds.
class Progress {
 public:
  using Clock = std::chrono::steady_clock;

  Progress();

  /// Ends the line, so that what is written next has one of its own.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// True when the time has come to show the state again.
  bool isDue() const;

  void show(const RecordingState& state);

 private:
  bool onTerminal_;
  bool hasShown_ = false;
  RecordingState shown_;
  Clock::time_point shownAt_ = Clock::now();
};

}  // namespace orvane::host
