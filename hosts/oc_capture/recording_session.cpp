// One recording of "oc_capture record".
#include "oc_capture/recording_session.hpp"

#include <chrono>
#include <exception>
#include <optional>

#include "formats/ser_time.hpp"
#include "oc_capture/camera_stream.hpp"
#include "oc_capture/disk_reserve.hpp"
#include "oc_capture/status_line.hpp"
#include "system/disk_space.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using SteadyClock = std::chrono::steady_clock;

std::string waitText(double seconds) {
  return seconds < 1 ? decimal(seconds * 1e3, 1) + " ms" : decimal(seconds, 2) + " s";
}

// The order of these calls makes sure that no frame after `start` has an earlier time.
std::chrono::system_clock::time_point systemTimeOf(SteadyClock::time_point start) {
  const auto now = std::chrono::system_clock::now();
  return now - std::chrono::ceil<std::chrono::system_clock::duration>(SteadyClock::now() - start);
}

// Records from one camera.
class RecordingSession {
 public:
  RecordingSession(const RecordSettings& settings, const ChosenCamera& camera,
                   const OutputPath& file)
      : settings_(settings),
        camera_(camera),
        file_(file),
        stream_(std::in_place, camera, settings.camera, settings.length.frames,
                std::int64_t{1'000'000} * settings.memoryMegabytes),
        layout_(stream_->layout()),
        line_(settings.reporting.isQuiet) {}

  Recording run() {
    stream_->discard(settings_.camera.discard, line_);
    const SteadyClock::time_point start = stream_->start();
    const auto systemStart = systemTimeOf(start);
    SerRecorder recorder(file_.path,
                         {layout_, settings_.names.observer, camera_.description.name,
                          settings_.telescope, serLocalTicks(systemStart), serTicks(systemStart)},
                         settings_.camera.correction, stream_->takeQueue(),
                         {file_.existing(), camera_.settings.exposureUs});
    Recording recording;
    waitForFrames(recorder, start, recording);
    recording.layout = layout_;
    recording.seconds = secondsBetween(start, SteadyClock::now());
    showProgress(recorder);
    stream_->tellFailures(line_);
    const oc::CaptureState state = stream_->state();
    recording.silentWaits = state.silentWaits;
    recording.failedReads = state.failedReads;
    stream_.reset();
    finish(recorder, recording);
    recording.secondsUntilWritten = secondsBetween(start, SteadyClock::now());
    if (settings_.length.frames == recording.frames && recording.lastFrame.arrival() > start) {
      recording.seconds = secondsBetween(start, recording.lastFrame.arrival());
    }
    return recording;
  }

 private:
  bool isOver(const SerRecorder& recorder, SteadyClock::time_point start) const {
    return stopRequested() ||
           settings_.length.isReached(recorder.acceptedFrames(), SteadyClock::now() - start);
  }

  void waitForFrames(SerRecorder& recorder, SteadyClock::time_point start, Recording& recording) {
    std::optional<DiskReserve> reserve;
    if (settings_.sequence.leastFree) {
      reserve.emplace(*settings_.sequence.leastFree, frameBytes(layout_));
    }
    constexpr std::chrono::milliseconds between{20};
    while (!isOver(recorder, start) && !recorder.waitForEnd(between)) {
      stream_->tellFailures(line_);
      noteTemperature(recorder, recording);
      if (reserve && isReached(*reserve, recorder)) {
        recording.isDiskReserved = true;
        break;
      }
      tellGaps(recorder);
      if (line_.isDue()) {
        showProgress(recorder);
      }
    }
    recorder.stop();
    noteTemperature(recorder, recording);
  }

  bool isReached(DiskReserve& reserve, const SerRecorder& recorder) const {
    const std::filesystem::path directory = file_.path.parent_path();
    const std::optional<std::int64_t> free = freeSpace(directory.empty() ? "." : directory);
    return free && reserve.isReached(*free, recorder.acceptedFrames(), recorder.writtenFrames());
  }

  // A camera that is lost has no temperature, so the last one counts.
  void noteTemperature(const SerRecorder& recorder, Recording& recording) const {
    const std::optional<double> temperature = stream_->state().temperature;
    if (temperature && recorder.acceptedFrames() > 0) {
      recording.temperatureAtStart = recording.temperatureAtStart.value_or(*temperature);
      recording.temperatureAtEnd = temperature;
    }
  }

  void tellGaps(const SerRecorder& recorder) {
    const RecordingTimes times = recorder.times();
    for (; toldGaps_ < times.firstGaps.size(); ++toldGaps_) {
      const FrameGap& gap = times.firstGaps[toldGaps_];
      line_.tell("No frame for " + waitText(gap.seconds) + " after frame " +
                 std::to_string(gap.after) + ".");
    }
    if (toldGaps_ == RecordingTimes::mostGaps &&
        times.count.gaps > static_cast<std::int64_t>(toldGaps_)) {
      line_.tell("Further gaps are only counted.");
      ++toldGaps_;
    }
  }

  // Empty while frames come as usual.
  std::string silenceText(const SerRecorder& recorder, const oc::CaptureState& state) const {
    const double silence = std::chrono::duration<double>(state.silence).count();
    const double frameTime = recorder.times().frameTime;
    const std::chrono::duration<double> patience = oc::usualWait(camera_.settings.exposureUs);
    const double usual = frameTime > 0 ? GapFinder::mostFrameTimes * frameTime : patience.count();
    return silence > usual ? ", no frame for " + decimal(silence, 1) + " s" : "";
  }

  // The rates are those since the line was shown before.
  void showProgress(const SerRecorder& recorder) {
    const oc::CaptureState state = stream_->state();
    const double seconds = line_.secondsSinceShown();
    const std::int64_t frames = recorder.acceptedFrames();
    const double rate = static_cast<double>(frames - shownFrames_) / (seconds > 0 ? seconds : 1);
    shownFrames_ = frames;
    std::string text = std::to_string(frames) + " frames, " + decimal(rate, 1) + " fps, " +
                       decimal(rate * static_cast<double>(frameBytes(layout_)) / 1e6, 1) +
                       " MB/s, " + std::to_string(state.silentWaits) + " not ready";
    if (recorder.droppedFrames() > 0) {
      text += ", " + std::to_string(recorder.droppedFrames()) + " dropped";
    }
    text += silenceText(recorder, state);
    if (state.temperature) {
      text += ", " + decimal(*state.temperature, 1) + " \u00b0C";
    }
    line_.show(text);
  }

  void finish(SerRecorder& recorder, Recording& recording) {
    constexpr std::chrono::milliseconds between{100};
    while (!recorder.waitForEnd(between)) {
      tellGaps(recorder);
      if (line_.isDue()) {
        line_.show("Writing: " + std::to_string(recorder.writtenFrames()) + " of " +
                   std::to_string(recorder.acceptedFrames()) + " frames are in the file");
      }
    }
    tellGaps(recorder);
    try {
      recorder.requireSuccess();
    } catch (const std::exception& error) {
      recording.error = error.what();
    }
    recording.frames = recorder.writtenFrames();
    if (recording.frames > 0) {
      recording.file = file_.path;
    }
    recording.times = recorder.times();
    recording.droppedFrames = recorder.droppedFrames();
    recording.mostFramesWaiting = recorder.queue().mostWaiting();
    recording.framesThatMayWait = recorder.queue().capacity() - 1;  // one is being written
    recording.lastFrame = recorder.lastFrame();
    recording.lastPixels = recorder.lastPixels();
  }

  const RecordSettings& settings_;
  const ChosenCamera& camera_;
  const OutputPath& file_;
  std::optional<CameraStream> stream_;
  FrameLayout layout_;  // of the corrected frames
  StatusLine line_;
  std::int64_t shownFrames_ = 0;
  std::size_t toldGaps_ = 0;
};

}  // namespace

Recording recordOnce(const RecordSettings& settings, const ChosenCamera& camera,
                     const OutputPath& file) {
  return RecordingSession(settings, camera, file).run();
}

}  // namespace orvane::host
