// The frames of a camera for one command.
#include "oc_capture/camera_stream.hpp"

#include <string>

#include "session/ser_recorder.hpp"
#include "system/system.hpp"

namespace orvane::host {

namespace {

oc::CaptureOptions captureOptions() {
  oc::CaptureOptions options;
  options.capacity = 0;
  return options;
}

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
    : capture_(captureOptions()),
      frames_(capture_.frames(
          oc::Delivery::Every, recordingCapacity(waitingBytes, expectedBytes(camera.settings)),
          frames ? static_cast<std::uint64_t>(*frames + std::int64_t{options.discard}) : 0)) {
  capture_.open(camera.description, camera.settings).get();
  start_ = capture_.state().opened;
}

void CameraStream::tellFailures(StatusLine& line) {
  const oc::CaptureState now = state();
  // The failure that loses the camera is reported as the command's own.
  if (now.failedReads == toldFailures_ || now.phase == oc::Phase::Lost) {
    return;
  }
  constexpr std::uint64_t mostLines = 20;
  if (toldFailures_ < mostLines) {
    line.tell(now.text + ". Reading goes on.");
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
