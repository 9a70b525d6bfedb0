// A live view's work with the library: looking for cameras, streaming, recording.
#include "live_view/live_session.hpp"

#include <algorithm>
#include <chrono>
#include <exception>
#include <system_error>
#include <utility>

#include "live_view/live_controls.hpp"
#include "session/camera_catalogue.hpp"
#include "session/camera_choice.hpp"
#include "session/causes.hpp"
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

template <class Value>
bool isAmong(const std::vector<Value>& values, Value value) {
  return std::find(values.begin(), values.end(), value) != values.end();
}

// Texts of the library and of the system have no full stop.
std::string sentence(const std::string& text) {
  return text.ends_with('.') ? text : text + ".";
}

std::filesystem::path fullPath(const std::filesystem::path& path) {
  std::error_code error;
  const std::filesystem::path full = std::filesystem::absolute(path.empty() ? "." : path, error);
  return error ? path : full.lexically_normal().make_preferred();
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
                .onNews = std::move(onNews)}) {
  state_.recordings = fullPath(options_.recordings);
  state_.limit = options_.recording.limit;
  warning_ = std::move(options_.warning);
}

LiveSession::~LiveSession() {
  try {
    endRecording(capture_.state());
  } catch (const std::exception&) {
    // Nobody is left to be told.
  }
}

void LiveSession::run(const LiveRequest& request) {
  state();
  try {
    request(*this);
  } catch (const std::exception& error) {
    say(NoticeKind::Error, explained(error.what()));
  }
  if (!warning_.empty()) {
    say(std::max(state_.notice.kind, NoticeKind::Warning),
        sentence(std::exchange(warning_, {})) + " " + state_.notice.text);
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
  const bool hasRecordingEnded =
      recording_ && (recording_->hasEnded() || recording_->isLimitReached());
  oc::CaptureState now = capture_.state();
  if (isStreaming()) {
    noticeFailures(now);
  }
  if (hasRecordingEnded && recording_) {
    endRecording(now);
  }
  state_.capture = std::move(now);
  state_.recording = recording_
                         ? std::optional(recording_->progress(state_.capture.framesPerSecond))
                         : std::nullopt;
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

void LiveSession::useSdkDirectory(const std::string& directory) {
  if (mayReopen()) {
    options_.sdkDirectory = directory;
    capture_.close().get();
    scan();
    openFirst();
  }
}

void LiveSession::useRecordings(const std::filesystem::path& directory) {
  state_.recordings = fullPath(directory);
  say(NoticeKind::Information,
      "Recordings go to " + inQuotes(utf8FromPath(state_.recordings)) + " from now on.");
}

void LiveSession::choose(std::size_t position) {
  if (position < state_.cameras.size() && mayReopen()) {
    const oc::CameraInfo& camera = state_.cameras[position];
    state_.region.reset();
    open(position, settingsFor(camera));
    if (!isStreaming() && options_.knownSettings.erase(camera.name) > 0) {
      open(position, usualSettings(camera));  // in case it refuses the settings of before
    }
  }
}

// The settings that it had when it was used last, as far as they still fit.
oc::Settings LiveSession::settingsFor(const oc::CameraInfo& camera) const {
  oc::Settings settings = usualSettings(camera);
  const auto known = options_.knownSettings.find(camera.name);
  if (known == options_.knownSettings.end()) {
    return settings;
  }
  if (isAmong(camera.bins, known->second.bin)) {
    settings.bin = known->second.bin;
  }
  if (isAmong(camera.formats, known->second.format)) {
    settings.format = known->second.format;
  }
  settings.exposureUs =
      std::clamp<std::int64_t>(known->second.exposureUs, 1, longestExposureOf(camera));
  settings.gain = gainRangeOf(camera).clamped(known->second.gain.value_or(*settings.gain));
  settings.offset = known->second.offset;
  return settings;
}

void LiveSession::setControls(const Controls& controls) {
  if (isStreaming()) {
    wanted_.exposureUs = controls.exposureUs;
    wanted_.gain = controls.gain;
    wanted_.offset = controls.offset;
    options_.knownSettings[state_.cameraName()] = wanted_;
    capture_.apply(controls.exposureUs, controls.gain, controls.offset);
  }
}

void LiveSession::nextFormat() {
  if (isStreaming() && mayReopen()) {
    wanted_.format = nextOf(state_.camera()->formats, wanted_.format);
    finishOpening(capture_.reopen(wanted_),
                  "does not change to " + std::string(formatName(wanted_.format)));
  }
}

void LiveSession::nextBin() {
  if (isStreaming() && mayReopen()) {
    state_.region.reset();
    wanted_.bin = nextOf(state_.camera()->bins, wanted_.bin);
    finishOpening(capture_.reopen(wanted_),
                  "does not change to bin " + std::to_string(wanted_.bin));
  }
}

void LiveSession::nextLimit() {
  if (recording_) {
    say(NoticeKind::Warning, "The limit of a recording cannot be changed while it runs.");
    return;
  }
  state_.limit = host::nextLimit(state_.limit, options_.recording.limit);
  const std::string limit = limitText(state_.limit);
  say(NoticeKind::Information, limit.empty() ? "Recordings run until they are stopped."
                                             : "Recordings end after " + limit + ".");
}

std::optional<std::chrono::milliseconds> LiveSession::recordingTimeLeft() const {
  return recording_ ? recording_->timeLeft() : std::nullopt;
}

void LiveSession::toggleRecording() {
  std::error_code ignored;
  if (recording_) {
    endRecording(state_.capture);
  } else if (!isStreaming()) {
    say(NoticeKind::Warning, "There is no camera to record from.");
  } else if (!std::filesystem::is_directory(state_.recordings, ignored)) {
    say(NoticeKind::Error, "There is no folder " + inQuotes(utf8FromPath(state_.recordings)) +
                               " for recordings. O chooses another one.");
  } else {
    const std::size_t capacity = recordingCapacity(waitingBytes, state_.capture.bufferSize);
    RecordingWish wish = options_.recording;
    wish.limit = state_.limit;
    const auto most = static_cast<std::uint64_t>(wish.limit.frames.value_or(0));
    recording_.emplace(state_.recordings, wish, state_.capture, state_.sdks,
                       capture_.frames(oc::Delivery::Every, capacity, most), state_.region);
    say(NoticeKind::Information, "Recording " + inQuotes(recording_->progress().file) + " into " +
                                     inQuotes(utf8FromPath(state_.recordings)) + ".");
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
  state_.sdkDirectory = options_.sdkDirectory;
  state_.sdks.clear();
  try {
    state_.sdkDirectory = utf8FromPath(fullSdkDirectory(options_.sdkDirectory));
    const oc::Scan scan =
        presentable(capture_.rescan(fullSdkDirectory(options_.sdkDirectory)).get());
    state_.cameras = scan.cameras;
    state_.sdks = scan.libraries;
    const std::string found = scan.cameras.empty()
                                  ? "No camera was found; plug one in and press F5."
                                  : "Found " + numberOf(scan.cameras.size(), "camera") + ".";
    if (scan.libraries.empty()) {
      const std::string reason = scan.error.empty() ? "" : ": " + scan.error;
      say(NoticeKind::Error, "No SDK could be loaded from " + inQuotes(options_.sdkDirectory) +
                                 reason + ". Shift+O chooses another folder.");
    } else if (!scan.error.empty()) {
      say(NoticeKind::Error, found + " Some failed:\n" + explainedSentence(scan.error));
    } else {
      say(scan.cameras.empty() ? NoticeKind::Warning : NoticeKind::Information, found);
    }
  } catch (const std::exception& error) {
    say(NoticeKind::Error, explained(error.what()));
  }
}

void LiveSession::openFirst() {
  const auto last = std::ranges::find(state_.cameras, options_.lastCamera, &oc::CameraInfo::name);
  if (options_.camera.empty() && last != state_.cameras.end()) {
    choose(static_cast<std::size_t>(last - state_.cameras.begin()));
  } else if (options_.camera.empty() && state_.cameras.size() == 1) {
    choose(0);
  } else if (!options_.camera.empty() && !state_.cameras.empty()) {
    const oc::CameraInfo& camera = chooseCamera(state_.cameras, options_.camera);
    choose(static_cast<std::size_t>(&camera - state_.cameras.data()));
  }
}

void LiveSession::open(std::size_t position, const oc::Settings& settings) {
  state_.chosen = position;
  state_.capture.camera = state_.cameras[position];
  finishOpening(capture_.open(state_.cameras[position], settings), "cannot be opened");
}

// `refusal` is what the camera does not do if this fails.
void LiveSession::finishOpening(std::future<void> opening, const std::string& refusal) {
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
    say(NoticeKind::Error,
        state_.cameraName() + " " + refusal + ": " + explainedSentence(error.what()));
  }
  noteSettings();
}

// Takes over what the camera has after it was opened. Apart from finishOpening(), because the code
// of mingw's GCC 12 crashed through Wine when this followed its exception handler.
void LiveSession::noteSettings() {
  const oc::CaptureState now = capture_.state();
  wanted_ = now.settings;
  if (state_.region && !state_.region->isInside(now.layout.width, now.layout.height)) {
    state_.region.reset();
  }
  if (isStreaming()) {
    options_.knownSettings[state_.cameraName()] = wanted_;
  }
}

void LiveSession::noticeFailures(const oc::CaptureState& now) {
  if (now.refusals != state_.capture.refusals) {
    wanted_ = now.settings;
    say(NoticeKind::Error, "The camera refused the setting: " + explainedSentence(now.refusal));
  }
  if (now.phase == oc::Phase::Lost) {
    state_.phase = LivePhase::Lost;
    const bool wasRecording = recording_.has_value();
    endRecording(now);
    const std::string saved = wasRecording ? " " + state_.notice.text : "";
    say(NoticeKind::Error,
        state_.cameraName() + " is lost: " + explainedSentence(now.text) + " F5 scans." + saved);
  } else if (now.failedReads != state_.capture.failedReads) {
    say(NoticeKind::Warning, state_.cameraName() + ": " + explainedSentence(now.text));
  }
}

// `camera` is its state now.
void LiveSession::endRecording(const oc::CaptureState& camera) {
  if (!recording_) {
    return;
  }
  const std::string reason = recording_->isLimitReached()
                                 ? "The limit of " + limitText(state_.limit) + " is reached. "
                                 : "";
  std::string failure;
  try {
    recording_->close(camera);
  } catch (const std::exception& error) {
    failure = error.what();
  }
  const RecordingProgress progress = recording_->progress();
  recording_.reset();
  if (!failure.empty()) {
    say(NoticeKind::Error, sentence(failure) + " The recording has ended with " +
                               contentText(progress) +
                               (progress.frames > 0 ? " The file is valid." : ""));
  } else {
    say(progress.droppedFrames > 0 ? NoticeKind::Warning : NoticeKind::Information,
        reason + "Recorded " + contentText(progress));
  }
}

void LiveSession::say(NoticeKind kind, const std::string& text) {
  state_.notice = {kind, validUtf8(sentence(text))};
}

}  // namespace orvane::host
