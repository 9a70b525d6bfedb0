// A live view's work with the library: looking for cameras, streaming, recording. All on one
// thread.
#include "live_view/live_session.hpp"

#include <algorithm>
#include <exception>
#include <thread>
#include <utility>

#include "live_view/control_steps.hpp"
#include "session/camera_catalogue.hpp"
#include "session/camera_choice.hpp"
#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

// Short, so that a key is not kept waiting by a long exposure.
constexpr int longestWaitMs = 50;

// A single failure passes; an unplugged camera's do not.
constexpr int patience = 5;  // failures
constexpr std::chrono::milliseconds pauseAfterFailure{50};

// Not every SDK waits by itself.
constexpr std::chrono::milliseconds pauseWithoutFrame{2};

constexpr std::int64_t usualExposureUs = 20000;
constexpr int usualOffset = 10;

CameraSettings usualSettings(const CameraDescription& camera) {
  CameraSettings settings;
  settings.width = camera.maxWidth;
  settings.height = camera.maxHeight;
  settings.bin = camera.bins.empty() ? 1 : camera.bins.front();
  settings.format = camera.formats.empty() ? PixelFormat::Raw8 : camera.formats.front();
  settings.exposureUs = usualExposureUs;
  if (camera.hasLongestExposure()) {
    settings.exposureUs = std::min(settings.exposureUs, camera.maxExposureUs);
  }
  const std::int64_t gainRange = std::int64_t{camera.maxGain} - camera.minGain;
  settings.gain = static_cast<int>(camera.minGain + (camera.hasGainRange() ? gainRange / 3 : 0));
  settings.offset = usualOffset;
  return settings;
}

// The one after `now`, and after the last the first.
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

LiveSession::LiveSession(LiveOptions options) : options_(std::move(options)) {}

void LiveSession::start() {
  scan();
  openFirst();
}

void LiveSession::carryOut(const LiveRequest& request) {
  try {
    std::visit([this](const auto& wanted) { carry(wanted); }, request);
  } catch (const std::exception& error) {
    say(NoticeKind::Error, error.what());
  }
}

bool LiveSession::poll() {
  frame_.buffer.resize(camera_->bufferSize());  // after the exchange it is another one
  try {
    const auto frame = camera_->read(frame_.buffer, longestWaitMs);
    failuresInRow_ = 0;
    if (!frame.empty()) {
      frameCame(frame.size());
      return true;
    }
    std::this_thread::sleep_for(pauseWithoutFrame);
  } catch (const std::exception& error) {
    readFailed(error.what());
  }
  return false;
}

const LiveState& LiveSession::state() {
  const Clock::time_point now = Clock::now();
  state_.framesPerSecond = camera_ ? rate_.perSecond(now) : 0;
  state_.silentSeconds = camera_ ? std::chrono::duration<double>(now - lastFrame_).count() : 0;
  if (camera_ && now - temperatureRead_ >= std::chrono::seconds(1)) {
    temperatureRead_ = now;
    state_.temperature = camera_->temperature().value_or(std::numeric_limits<double>::quiet_NaN());
  }
  state_.recording.reset();
  if (recording_) {
    state_.recording = recording_->progress();
  }
  return state_;
}

void LiveSession::stop() {
  endRecording("");
  close();
}

void LiveSession::carry(const RescanRequest&) {
  if (!mayReopen()) {
    return;
  }
  close();
  scan();
  if (state_.cameraName.empty()) {
    openFirst();
    return;
  }
  const std::optional<std::size_t> position = positionOfBefore();
  if (!position) {
    state_.phase = LivePhase::Lost;
    say(NoticeKind::Warning, state_.cameraName + " is not there; plug it in and press F5. Found: " +
                                 numberOf(state_.cameras.size(), "camera") + ".");
    return;
  }
  open(*position, state_.settings);
}

// Where the camera that was open is now. Of several of a kind, it is where it was before.
std::optional<std::size_t> LiveSession::positionOfBefore() const {
  const auto isIt = [this](const CameraDescription& camera) {
    return camera.name == state_.cameraName;
  };
  if (lastPosition_ < state_.cameras.size() && isIt(state_.cameras[lastPosition_])) {
    return lastPosition_;
  }
  const auto found = std::find_if(state_.cameras.begin(), state_.cameras.end(), isIt);
  if (found == state_.cameras.end()) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(found - state_.cameras.begin());
}

void LiveSession::carry(const ChooseRequest& request) {
  if (request.position < state_.cameras.size() && mayReopen()) {
    open(request.position, usualSettings(state_.cameras[request.position]));
  }
}

void LiveSession::carry(const ControlsRequest& request) {
  if (!camera_) {
    return;
  }
  const CameraSettings before = state_.settings;
  try {
    camera_->apply(request.exposureUs, request.gain, request.offset);
    state_.settings.exposureUs = request.exposureUs;
    state_.settings.gain = request.gain;
    state_.settings.offset = request.offset;
  } catch (const CameraError& error) {
    ++state_.settled;
    say(NoticeKind::Error, std::string("The camera refused the setting: ") + error.what() + ".");
    // Part of it may be in force; what was before was accepted as a whole.
    camera_->apply(before.exposureUs, before.gain, before.offset);
  }
}

void LiveSession::carry(const NextFormatRequest&) {
  if (camera_ && mayReopen()) {
    CameraSettings settings = state_.settings;
    settings.format = nextOf(state_.camera()->formats, settings.format);
    reopen(settings);
  }
}

void LiveSession::carry(const NextBinRequest&) {
  if (camera_ && mayReopen()) {
    CameraSettings settings = state_.settings;
    settings.bin = nextOf(state_.camera()->bins, settings.bin);
    reopen(settings);
  }
}

void LiveSession::carry(const ToggleRecordingRequest&) {
  if (recording_) {
    endRecording("");
  } else if (!camera_) {
    say(NoticeKind::Warning, "There is no camera to record from.");
  } else {
    recording_.emplace(options_.recordings, *state_.camera(), state_.layout);
    say(NoticeKind::Information, "Recording " + inQuotes(recording_->progress().file) + " into " +
                                     inQuotes(utf8FromPath(options_.recordings)) + ".");
  }
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
    const CameraCatalogue catalogue = readCatalogue(options_.sdkDirectory);
    state_.cameras = catalogue.cameras;
    const std::string found = catalogue.cameras.empty()
                                  ? "No camera was found; plug one in and press F5."
                                  : "Found " + numberOf(catalogue.cameras.size(), "camera") + ".";
    if (catalogue.libraries.empty()) {
      say(NoticeKind::Error,
          "No SDK could be loaded from " + inQuotes(options_.sdkDirectory) + ".");
    } else if (!catalogue.problems.empty()) {
      say(NoticeKind::Error, found + " Some failed: " + catalogue.problems + ".");
    } else {
      say(catalogue.cameras.empty() ? NoticeKind::Warning : NoticeKind::Information, found);
    }
  } catch (const std::exception& error) {
    say(NoticeKind::Error, error.what());
  }
}

void LiveSession::openFirst() {
  if (state_.cameras.empty()) {
    return;  // the scan has said so
  }
  if (options_.camera.empty()) {
    if (state_.cameras.size() == 1) {
      open(0, usualSettings(state_.cameras.front()));
    }
    return;
  }
  try {
    const CameraDescription& camera = chooseCamera(state_.cameras, options_.camera);
    open(static_cast<std::size_t>(&camera - state_.cameras.data()), usualSettings(camera));
  } catch (const UsageError& error) {
    say(NoticeKind::Error, error.what());
  }
}

void LiveSession::open(std::size_t position, const CameraSettings& settings) {
  close();
  state_.chosen = position;
  state_.settings = settings;
  state_.frames = 0;
  ++state_.opening;
  const CameraDescription& camera = state_.cameras[position];
  state_.cameraName = camera.name;
  lastPosition_ = position;
  try {
    camera_.emplace(camera, settings);
  } catch (const CameraError& error) {
    state_.phase = LivePhase::Lost;
    say(NoticeKind::Error, camera.name + " cannot be opened: " + error.what() + ".");
    return;
  }
  state_.phase = LivePhase::Streaming;
  state_.layout = camera_->layout();
  rate_.clear();
  failuresInRow_ = 0;
  lastFrame_ = Clock::now();
  temperatureRead_ = {};
  say(NoticeKind::Information, camera.name + " is streaming.");
}

// The same camera with other settings; with those of before where it refuses them.
void LiveSession::reopen(const CameraSettings& settings) {
  const CameraSettings before = state_.settings;
  const std::size_t position = *state_.chosen;
  open(position, settings);
  if (!camera_) {
    const Notice failure = state_.notice;
    open(position, before);
    state_.notice = failure;
  }
}

void LiveSession::close() {
  camera_.reset();
  state_.temperature = std::numeric_limits<double>::quiet_NaN();
}

void LiveSession::frameCame(std::size_t size) {
  lastFrame_ = Clock::now();
  rate_.add(lastFrame_);
  ++state_.frames;
  frame_.layout = state_.layout;
  frame_.bitDepth = state_.camera()->bitDepth;
  frame_.opening = state_.opening;
  frame_.size = size;
  if (!recording_) {
    return;
  }
  try {
    recording_->addFrame(frame_.bytes());
    recording_->keepValid();
  } catch (const std::exception& error) {
    endRecording(error.what());
  }
}

void LiveSession::readFailed(const std::string& text) {
  const std::string name = state_.camera()->name;
  if (++failuresInRow_ < patience) {
    say(NoticeKind::Warning, name + ": " + text + ".");
    std::this_thread::sleep_for(pauseAfterFailure);
    return;
  }
  const bool wasRecording = recording_.has_value();
  endRecording("");
  const std::string saved = wasRecording ? " " + state_.notice.text : "";
  close();
  state_.phase = LivePhase::Lost;
  say(NoticeKind::Error,
      name + " does not answer (" + text + "). Check its cable, then press F5." + saved);
}

// `because` is the failure that ended the recording, or "".
void LiveSession::endRecording(const std::string& because) {
  if (!recording_) {
    return;
  }
  const RecordingProgress progress = recording_->progress();
  std::string failure = because;
  try {
    recording_->close();
  } catch (const std::exception& error) {
    failure = failure.empty() ? error.what() : failure;
  }
  recording_.reset();
  const std::string kept = numberOf(static_cast<std::size_t>(progress.frames), "frame") + " in " +
                           inQuotes(progress.file) + ".";
  if (failure.empty()) {
    say(NoticeKind::Information, "Recorded " + kept);
  } else {
    say(NoticeKind::Error, failure + " The recording has ended with " + kept);
  }
}

void LiveSession::say(NoticeKind kind, const std::string& text) {
  state_.notice = {kind, validUtf8(text)};
}

}  // namespace orvane::host
