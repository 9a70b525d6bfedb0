// A live view's work with the library: looking for cameras, streaming, recording.
#include "live_view/live_session.hpp"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "live_view/live_controls.hpp"
#include "session/camera_catalogue.hpp"
#include "session/camera_choice.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

// The memory for frames that wait to be written.
constexpr std::int64_t waitingBytes = 256'000'000;

constexpr std::int64_t usualExposureUs = 20000;
constexpr int usualOffset = 10;

oc::Settings usualSettings(const oc::CameraInfo& camera) {
  return {.width = camera.maxWidth,
          .height = camera.maxHeight,
          .bin = camera.bins.empty() ? 1 : camera.bins.front(),
          .format = camera.formats.empty() ? PixelFormat::Raw8 : camera.formats.front(),
          .exposureUs = std::min(usualExposureUs, longestExposureOf(camera)),
          .gain = usualGain(camera),
          .offset = usualOffset};
}

// The value after `now`; the first value follows the last.
template <class Value>
Value nextOf(const std::vector<Value>& values, Value now) {
  const auto found = std::find(values.begin(), values.end(), now);
  if (found == values.end() || found + 1 == values.end()) {
    return values.empty() ? now : values.front();
  }
  return *(found + 1);
}

std::string numberOf(std::size_t count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

}  // namespace

LiveSession::LiveSession(LiveOptions options, std::function<void()> onNews)
    : options_(std::move(options)),
      // Calls are short, so that a key is not kept waiting by a long exposure. Silence loses no
      // camera: the user sees it and decides.
      capture_({.longestCall = std::chrono::milliseconds(50),
                .silentWaits = 0,
                .onNews = std::move(onNews)}) {}

void LiveSession::run(const LiveRequest& request) {
  state();
  try {
    request(*this);
  } catch (const std::exception& error) {
    say(NoticeKind::Error, error.what());
  }
}

oc::Frame LiveSession::takeFrame() {
  try {
    return capture_.next(std::chrono::milliseconds(0));
  } catch (const oc::Error&) {
    return {};  // the camera is lost; state() tells
  }
}

const LiveState& LiveSession::state() {
  // Read first: if the camera's loss ended the recording, both are reported in one notice.
  const bool hasRecordingEnded = recording_ && recording_->hasEnded();
  oc::CaptureState now = capture_.state();
  if (isStreaming()) {
    noticeFailures(now);
  }
  if (hasRecordingEnded && recording_) {
    endRecording();
  }
  state_.capture = std::move(now);
  state_.recording = recording_ ? std::optional(recording_->progress()) : std::nullopt;
  return state_;
}

void LiveSession::rescan() {
  if (!mayReopen()) {
    return;
  }
  capture_.close().get();
  scan();
  if (state_.cameraName().empty()) {
    openFirst();
    return;
  }
  const auto again = oc::findAgain(state_.cameras, state_.capture.camera);
  if (!again) {
    state_.phase = LivePhase::Lost;
    say(NoticeKind::Warning, state_.cameraName() +
                                 " is not there; plug it in and press F5. Found: " +
                                 numberOf(state_.cameras.size(), "camera") + ".");
    return;
  }
  const auto found = std::ranges::find(state_.cameras, again->index, &oc::CameraInfo::index);
  open(static_cast<std::size_t>(found - state_.cameras.begin()), wanted_);
}

void LiveSession::choose(std::size_t position) {
  if (position < state_.cameras.size() && mayReopen()) {
    state_.region.reset();
    open(position, usualSettings(state_.cameras[position]));
  }
}

void LiveSession::setControls(const Controls& controls) {
  if (isStreaming()) {
    wanted_.exposureUs = controls.exposureUs;
    wanted_.gain = controls.gain;
    wanted_.offset = controls.offset;
    capture_.apply(controls.exposureUs, controls.gain, controls.offset);
  }
}

void LiveSession::nextFormat() {
  if (isStreaming() && mayReopen()) {
    wanted_.format = nextOf(state_.camera()->formats, wanted_.format);
    finishOpening(capture_.reopen(wanted_));
  }
}

void LiveSession::nextBin() {
  if (isStreaming() && mayReopen()) {
    state_.region.reset();
    wanted_.bin = nextOf(state_.camera()->bins, wanted_.bin);
    finishOpening(capture_.reopen(wanted_));
  }
}

void LiveSession::toggleRecording() {
  if (recording_) {
    endRecording();
  } else if (!isStreaming()) {
    say(NoticeKind::Warning, "There is no camera to record from.");
  } else {
    const std::size_t capacity = recordingCapacity(waitingBytes, state_.capture.bufferSize);
    recording_.emplace(options_.recordings, *state_.camera(), state_.capture.layout,
                       capture_.frames(oc::Delivery::Every, capacity), state_.region);
    say(NoticeKind::Information, "Recording " + inQuotes(recording_->progress().file) + " into " +
                                     inQuotes(utf8FromPath(options_.recordings)) + ".");
  }
}

void LiveSession::setRegion(const std::optional<Region>& region) {
  const FrameLayout& layout = state_.capture.layout;
  const Region whole{0, 0, layout.width, layout.height};
  if (!mayChangeRegion() || (region && !region->isInside(layout.width, layout.height))) {
    return;
  }
  state_.region = region == whole ? std::nullopt : region;
  say(NoticeKind::Information,
      state_.region ? "Recordings keep " + regionText(*state_.region) +
                          ". The camera reads the whole frame, which takes as long as before."
                    : "Recordings keep the whole frame.");
}

void LiveSession::moveRegion(const RegionMove& move) {
  if (state_.region) {
    const FrameLayout& layout = state_.capture.layout;
    setRegion(movedRegion(*state_.region, move, layout.width, layout.height));
  } else {
    say(NoticeKind::Warning, "There is no region: drag one with the right mouse button.");
  }
}

// False, with a notice, while a recording needs the region as it is.
bool LiveSession::mayChangeRegion() {
  return isStreaming() && mayReopen();
}

// False, with a notice, while a recording needs the camera as it is.
bool LiveSession::mayReopen() {
  if (recording_) {
    say(NoticeKind::Warning, "Stop the recording first: press R.");
  }
  return !recording_;
}

void LiveSession::scan() {
  state_.phase = LivePhase::Idle;
  state_.cameras.clear();
  state_.chosen.reset();
  try {
    const oc::Scan scan =
        presentable(capture_.rescan(fullSdkDirectory(options_.sdkDirectory)).get());
    state_.cameras = scan.cameras;
    const std::string found = scan.cameras.empty()
                                  ? "No camera was found; plug one in and press F5."
                                  : "Found " + numberOf(scan.cameras.size(), "camera") + ".";
    if (scan.libraries.empty()) {
      say(NoticeKind::Error,
          "No SDK could be loaded from " + inQuotes(options_.sdkDirectory) + ".");
    } else if (!scan.error.empty()) {
      say(NoticeKind::Error, found + " Some failed: " + scan.error + ".");
    } else {
      say(scan.cameras.empty() ? NoticeKind::Warning : NoticeKind::Information, found);
    }
  } catch (const std::exception& error) {
    say(NoticeKind::Error, error.what());
  }
}

void LiveSession::openFirst() {
  if (options_.camera.empty() && state_.cameras.size() == 1) {
    choose(0);
  } else if (!options_.camera.empty() && !state_.cameras.empty()) {
    const oc::CameraInfo& camera = chooseCamera(state_.cameras, options_.camera);
    choose(static_cast<std::size_t>(&camera - state_.cameras.data()));
  }
}

void LiveSession::open(std::size_t position, const oc::Settings& settings) {
  state_.chosen = position;
  state_.capture.camera = state_.cameras[position];
  finishOpening(capture_.open(state_.cameras[position], settings));
}

void LiveSession::finishOpening(std::future<void> opening) {
  state_.phase = LivePhase::Streaming;
  // The counts began anew, and no change of them has been reported.
  state_.capture.refusals = 0;
  state_.capture.failedReads = 0;
  try {
    opening.get();
    say(NoticeKind::Information, state_.cameraName() + " is streaming.");
  } catch (const std::exception& error) {
    if (capture_.state().phase == oc::Phase::Lost) {
      state_.phase = LivePhase::Lost;
    }
    say(NoticeKind::Error, state_.cameraName() + " cannot be opened: " + error.what() + ".");
  }
  const oc::CaptureState now = capture_.state();
  wanted_ = now.settings;
  if (state_.region && !state_.region->isInside(now.layout.width, now.layout.height)) {
    state_.region.reset();
  }
}

void LiveSession::noticeFailures(const oc::CaptureState& now) {
  if (now.refusals != state_.capture.refusals) {
    wanted_ = now.settings;
    say(NoticeKind::Error, "The camera refused the setting: " + now.refusal + ".");
  }
  if (now.phase == oc::Phase::Lost) {
    state_.phase = LivePhase::Lost;
    const bool wasRecording = recording_.has_value();
    endRecording();
    const std::string saved = wasRecording ? " " + state_.notice.text : "";
    say(NoticeKind::Error, state_.cameraName() + " does not answer (" + now.text +
                               "). Check its cable, then press F5." + saved);
  } else if (now.failedReads != state_.capture.failedReads) {
    say(NoticeKind::Warning, state_.cameraName() + ": " + now.text + ".");
  }
}

void LiveSession::endRecording() {
  if (!recording_) {
    return;
  }
  std::string failure;
  try {
    recording_->close();
  } catch (const std::exception& error) {
    failure = error.what();
  }
  const RecordingProgress progress = recording_->progress();
  recording_.reset();
  if (!failure.empty()) {
    say(NoticeKind::Error, failure + " The recording has ended with " + contentText(progress));
  } else {
    say(progress.droppedFrames > 0 ? NoticeKind::Warning : NoticeKind::Information,
        "Recorded " + contentText(progress));
  }
}

void LiveSession::say(NoticeKind kind, const std::string& text) {
  state_.notice = {kind, validUtf8(text)};
}

}  // namespace orvane::host
