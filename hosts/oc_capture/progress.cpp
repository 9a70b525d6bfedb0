// The line that tells how a recording is going.
#include "oc_capture/progress.hpp"

#include "system/text.hpp"

namespace orvane::host {

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

void Progress::show(const RecordingState& state) {
  line_.show(progressText(shown_, state, line_.secondsSinceShown()));
  shown_ = state;
}

}  // namespace orvane::host
