// Polls a camera for frames. How long it waits depends on the exposure.
#include "oc_capture/frame_source.hpp"

#include <algorithm>
#include <string>
#include <thread>

#include "system/failures.hpp"
#include "system/system.hpp"

namespace orvane::host {

namespace {

constexpr int patience = 5;  // waits

// Some SDKs block until the frame is there. Short calls let Ctrl-C and the status line work during
// long exposures.
constexpr std::chrono::milliseconds longestCall{1000};

}  // namespace

FrameSource::FrameSource(CameraSession& camera, std::int64_t exposureUs)
    : camera_(camera),
      wait_(2 * exposureUs / 1000 + 500),
      // A longer pause would lower the frame rate, a shorter one would waste processor time.
      pause_(std::clamp<std::int64_t>(exposureUs / 20000, 1, 5)),
      buffer_(camera.bufferSize()) {}

std::span<std::uint8_t> FrameSource::poll() {
  const Milliseconds timeout = std::min(remainingWait(), longestCall);
  const auto frame = camera_.read(buffer_, static_cast<int>(timeout.count()));
  if (frame.empty()) {
    ++notReadyAnswers_;
    std::this_thread::sleep_for(pause_);  // some SDKs return at once
    return {};
  }
  waitEnd_.reset();
  silentWaitsInRow_ = 0;
  return frame;
}

void FrameSource::discard(int frames, StatusLine& line) {
  for (int discarded = 0; discarded < frames && !stopRequested();) {
    discarded += poll().empty() ? 0 : 1;
    if (line.isDue()) {
      line.show("Waiting: " + std::to_string(discarded) + " of " + std::to_string(frames) +
                " frames are thrown away");
    }
  }
}

// The rest of the current wait. Starts a wait if there is none.
FrameSource::Milliseconds FrameSource::remainingWait() {
  const Clock::time_point now = Clock::now();
  if (waitEnd_ && now >= *waitEnd_) {
    ++silentWaits_;
    if (++silentWaitsInRow_ == patience) {
      throw CameraError("The camera has sent no frame for " + std::to_string(patience) +
                        " waits of " + std::to_string(wait_.count()) + " ms.");
    }
    waitEnd_.reset();
  }
  if (!waitEnd_) {
    waitEnd_ = now + wait_;
  }
  return std::chrono::ceil<Milliseconds>(*waitEnd_ - now);
}

}  // namespace orvane::host
