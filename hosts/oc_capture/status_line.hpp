// A line on standard error that tells how something long is going.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace orvane::host {

/// On a terminal a line that is written over, elsewhere a line every few seconds.
class StatusLine {
 public:
  /// A quiet one shows nothing.
  explicit StatusLine(bool isQuiet);

  /// Ends the line, so that what is written next has one of its own.
  ~StatusLine();
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;

  /// True when the time has come to show something new.
  bool isDue() const;

  /// Of the last show(), or of this object's start.
  double secondsSinceShown() const;

  /// The text may hold UTF-8 but no line end.
  void show(std::string text);

 private:
  using Clock = std::chrono::steady_clock;

  bool isQuiet_;
  bool onTerminal_;
  std::size_t width_ = 0;  // of the text that stands on the terminal
  Clock::time_point shownAt_ = Clock::now();
};

}  // namespace orvane::host
