// The frames of a camera for one command.
#include "oc_capture/camera_stream.hpp"

#include <span>
#include <string>

#include "session/causes.hpp"
#include "session/ser_recorder.hpp"
#include "system/system.hpp"

namespace orvane::host {

namespace {

// The approximate size of a frame: the camera may round width and height.
std::size_t expectedBytes(const oc::Settings& settings) {
  return frameBytes({settings.width / settings.bin, settings.height / settings.bin, settings.format,
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
      capture_({.capacity = 0}),
      frames_(capture_.frames(
          oc::Delivery::Every, recordingCapacity(waitingBytes, expectedBytes(camera.settings)),
          frames ? static_cast<std::uint64_t>(*frames + std::int64_t{options.discard}) : 0)) {
  capture_.open(camera.description, camera.settings).get();
  start_ = capture_.state().opened;
}

oc::Frame CameraStream::next() {
  const oc::Frame frame = frames_.next(std::chrono::milliseconds(100));
  if (frame) {
    correctFrame(std::span(frame.data(), frame.size()), frame.layout(), correction_);
  }
  return frame;
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
    if (const oc::Frame frame = next()) {
      ++discarded;
      start_ = frame.arrival();
    }
    tellFailures(line);
    if (line.isDue()) {
      line.show("Waiting: " + std::to_string(discarded) + " of " + std::to_string(frames) +
                " frames are thrown away");
    }
  }
}

}  // namespace orvane::host
