// A line on standard error that shows the progress of a long command.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace orvane::host {

/// On a terminal, one line that is overwritten; elsewhere, a new line every few seconds.
class StatusLine {
 public:
  /// A quiet status line shows nothing.
  explicit StatusLine(bool isQuiet);

  /// On a terminal, ends the line, so that other output starts on a new one.
  ~StatusLine();
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;

  /// True when it is time to show a new text.
  bool isDue() const;

  /// Since the last show(), or since this object was made.
  double secondsSinceShown() const;

  /// The text may hold UTF-8 but no line end.
  void show(std::string text);

  /// Writes a line that stays. A quiet status line writes nothing.
  void tell(const std::string& text);

 private:
  using Clock = std::chrono::steady_clock;

  bool isQuiet_;
  bool onTerminal_;
  std::size_t width_ = 0;  // of the text on the terminal
  Clock::time_point shownAt_ = Clock::now();
};

}  // namespace orvane::host
