// A line on standard error that shows how far a long command is.
#include "oc_capture/status_line.hpp"

#include <algorithm>
#include <cstdio>
#include <iostream>

#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

std::string progressText(const RecordingState& earlier, const RecordingState& now, double seconds) {
  const double elapsed = seconds > 0 ? seconds : 1;
  std::string line = std::to_string(now.frames) + " frames, ";
  line += decimal(static_cast<double>(now.frames - earlier.frames) / elapsed, 1) + " fps, ";
  line += decimal(static_cast<double>(now.bytes - earlier.bytes) / elapsed / 1e6, 1) + " MB/s, ";
  line += std::to_string(now.silentWaits) + " not ready";
  if (now.droppedFrames > 0) {
    line += ", " + std::to_string(now.droppedFrames) + " dropped";
  }
  if (now.temperature) {
    line += ", " + decimal(*now.temperature, 1) + " \u00b0C";
  }
  return line;
}

}  // namespace

StatusLine::StatusLine(bool isQuiet) : isQuiet_(isQuiet), onTerminal_(isTerminal(stderr)) {}

StatusLine::~StatusLine() {
  if (onTerminal_ && width_ > 0) {
    std::cerr << "\n";
  }
}

bool StatusLine::isDue() const {
  constexpr std::chrono::milliseconds onTerminal{500};
  constexpr std::chrono::milliseconds elsewhere{5000};
  return !isQuiet_ && Clock::now() - shownAt_ >= (onTerminal_ ? onTerminal : elsewhere);
}

double StatusLine::secondsSinceShown() const {
  return std::chrono::duration<double>(Clock::now() - shownAt_).count();
}

void StatusLine::show(std::string text) {
  shownAt_ = Clock::now();
  if (isQuiet_) {
    return;
  }
  if (onTerminal_) {
    const std::size_t width = text.size();
    text.resize(std::max(width, width_), ' ');  // covers all of the text before
    width_ = width;
    std::cerr << "\r" << text << std::flush;
  } else {
    std::cerr << text << "\n";
  }
}

void RecordingLine::showRecording(const RecordingState& state) {
  show(progressText(shown_, state, secondsSinceShown()));
  shown_ = state;
}

}  // namespace orvane::host
