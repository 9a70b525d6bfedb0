// The line that tells how a recording is going.
#include "oc_capture/progress.hpp"

#include <algorithm>
#include <cstdio>
#include <iostream>

#include "common/system.hpp"
#include "common/text.hpp"

namespace orvane::host {

namespace {

// Some SDKs answer an error number where they have no temperature.
bool isTemperature(double celsius) {
  return celsius > -150 && celsius < 150;
}

}  // namespace

std::string progressText(const RecordingState& earlier, const RecordingState& now, double seconds) {
  const double elapsed = seconds > 0 ? seconds : 1;
  std::string line = std::to_string(now.frames) + " frames, ";
  line += decimal(static_cast<double>(now.frames - earlier.frames) / elapsed, 1) + " fps, ";
  line += decimal(static_cast<double>(now.bytes - earlier.bytes) / elapsed / 1e6, 1) + " MB/s, ";
  line += std::to_string(now.silentWaits) + " not ready";
  if (isTemperature(now.temperature)) {
    line += ", " + decimal(now.temperature, 1) + " \u00b0C";
  }
  return line;
}

Progress::Progress() : onTerminal_(isTerminal(stderr)) {}

Progress::~Progress() {
  if (onTerminal_ && hasShown_) {
    std::cerr << "\n";
  }
}

bool Progress::isDue() const {
  constexpr std::chrono::milliseconds onTerminal{500};
  constexpr std::chrono::milliseconds elsewhere{5000};
  return Clock::now() - shownAt_ >= (onTerminal_ ? onTerminal : elsewhere);
}

void Progress::show(const RecordingState& state) {
  const Clock::time_point now = Clock::now();
  std::string line =
      progressText(shown_, state, std::chrono::duration<double>(now - shownAt_).count());
  if (onTerminal_) {
    constexpr std::size_t width = 78;  // covers the line that it is written over
    line.resize(std::max(line.size(), width), ' ');
    std::cerr << "\r" << line << std::flush;
  } else {
    std::cerr << line << "\n";
  }
  hasShown_ = true;
  shown_ = state;
  shownAt_ = now;
}

}  // namespace orvane::host
