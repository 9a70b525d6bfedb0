// A line on standard error that shows how far a long command is.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace orvane::host {

/// On a terminal one line that is overwritten, elsewhere a new line every few seconds.
class StatusLine {
 public:
  /// A quiet status line shows nothing.
  explicit StatusLine(bool isQuiet);

  /// Ends the line on a terminal: what is written next starts a new one.
  ~StatusLine();
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;

  /// True when it is time to show a new text.
  bool isDue() const;

  /// Since the last show(), or since this object was made.
  double secondsSinceShown() const;

  /// The text may hold UTF-8 but no line end.
  void show(std::string text);

 private:
  using Clock = std::chrono::steady_clock;

  bool isQuiet_;
  bool onTerminal_;
  std::size_t width_ = 0;  // of the text on the terminal
  Clock::time_point shownAt_ = Clock::now();
};

/// How far a recording is.
struct RecordingState {
  std::int64_t frames = 0;
  std::int64_t bytes = 0;
  std::int64_t silentWaits = 0;
  std::int64_t droppedFrames = 0;
  std::optional<double> temperature;  ///< degrees Celsius
};

/// Shows a recording's state, with the rates since the state that was shown before.
class RecordingLine : public StatusLine {
 public:
  using StatusLine::StatusLine;

  void showRecording(const RecordingState& state);

 private:
  RecordingState shown_;
};

}  // namespace orvane::host
