// The frames of a camera for one command.
#include "oc_capture/camera_stream.hpp"

#include <algorithm>
#include <span>
#include <string>

#include "session/causes.hpp"
#include "session/ser_recorder.hpp"
#include "system/system.hpp"

namespace orvane::host {

namespace {

// The approximate size of a frame: the camera may round width and height.
std::size_t expectedBytes(const oc::CameraInfo& camera, const oc::Settings& settings) {
  return frameBytes({std::min(settings.width, camera.maxWidth / settings.bin),
                     std::min(settings.height, camera.maxHeight / settings.bin), settings.format,
                     BayerPattern::None});
}

}  // namespace

std::string failedReadsText(std::uint64_t failedReads) {
  return failedReads == 0 ? ""
                          : std::to_string(failedReads) + (failedReads == 1 ? " read" : " reads") +
                                " failed, and reading went on.\n";
}

CameraStream::CameraStream(const ChosenCamera& camera, const CameraOptions& options,
                           std::optional<int> frames, std::int64_t waitingBytes)
    : correction_(options.correction),
      waitingBytes_(waitingBytes),
      most_(frames ? static_cast<std::uint64_t>(*frames + std::int64_t{options.discard}) : 0),
      capture_({.capacity = 0}) {
  try {
    open(camera.description, camera.settings);
  } catch (const oc::Error&) {
    if (!correction_.region) {
      throw;
    }
  }
  if (!holdsRegion()) {
    capture_.close().get();
    oc::Settings whole = camera.settings;
    whole.width = camera.description.maxWidth;
    whole.height = camera.description.maxHeight;
    open(camera.description, whole);
  }
  start_ = capture_.state().opened;
  layout();  // throws if the frames do not hold the region
}

// The queue is made before the camera is opened, so that it has the first frame. The frames of an
// earlier opening are dropped with their queue.
void CameraStream::open(const oc::CameraInfo& camera, const oc::Settings& settings) {
  frames_ =
      capture_.frames(oc::Delivery::Every,
                      recordingCapacity(waitingBytes_, expectedBytes(camera, settings)), most_);
  capture_.open(camera, settings).get();
}

// True also when no region is wanted.
bool CameraStream::holdsRegion() const {
  const FrameLayout delivered = state().layout;
  return !correction_.region || correction_.region->isInside(delivered.width, delivered.height);
}

CorrectedFrame CameraStream::next() {
  CorrectedFrame next{frames_.next(std::chrono::milliseconds(100)), {}};
  if (next) {
    next.pixels = correctFrame(std::span(next.frame.data(), next.frame.size()), next.frame.layout(),
                               correction_);
  }
  return next;
}

void CameraStream::tellFailures(StatusLine& line) {
  const oc::CaptureState now = state();
  // The failure that loses the camera is reported as the command's own.
  if (now.failedReads == toldFailures_ || now.phase == oc::Phase::Lost) {
    return;
  }
  constexpr std::uint64_t mostLines = 20;
  if (toldFailures_ < mostLines) {
    // The same cause and cure again and again would hide the other lines.
    line.tell((now.text == toldText_ ? now.text + "." : explainedSentence(now.text)) +
              " Reading goes on.");
    toldText_ = now.text;
  } else if (!toldLimit_) {
    line.tell("Further failed reads are only counted.");
    toldLimit_ = true;
  }
  toldFailures_ = now.failedReads;
}

void CameraStream::discard(int frames, StatusLine& line) {
  for (int discarded = 0; discarded < frames && !stopRequested();) {
    if (const CorrectedFrame next = this->next()) {
      ++discarded;
      start_ = next.frame.arrival();
    }
    tellFailures(line);
    if (line.isDue()) {
      line.show("Waiting: " + std::to_string(discarded) + " of " + std::to_string(frames) +
                " frames are thrown away");
    }
  }
}

}  // namespace orvane::host
