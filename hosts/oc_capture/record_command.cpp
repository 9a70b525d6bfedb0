// "oc_capture record": a camera's frames, written into a SER file.
#include <chrono>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>

#include "formats/png_writer.hpp"
#include "formats/ser_time.hpp"
#include "formats/ser_writer.hpp"
#include "imaging/stretch.hpp"
#include "oc_capture/camera_options.hpp"
#include "oc_capture/camera_stream.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/report.hpp"
#include "oc_capture/status_line.hpp"
#include "session/causes.hpp"
#include "session/ser_recorder.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct RecordSettings {
  CameraOptions camera;
  CaptureLength length;
  int memoryMegabytes = 256;  // for frames that wait to be written
  OutputPath file;
  bool hasNoPreview = false;
  std::string observer;
  std::string telescope;
  Reporting reporting;
};

void addOptions(CommandOptions& options, RecordSettings& record) {
  addCameraOptions(options, record.camera);
  addOutputOptions(options, record.file,
                   {"FILE.ser", "The recording", {".ser"}, Presence::Required});
  options.addFlag("--no-preview", record.hasNoPreview, "Leave out the picture of the last frame");
  addLengthOptions(options, record.length, "Number of frames to record", "Length of the recording");
  constexpr int mostMegabytes = 1 << 20;
  options.add("--memory", "MB", "For frames that wait to be written;\n256 if not given",
              intoNumber(record.memoryMegabytes, 1, mostMegabytes));
  options.add("--observer", "NAME", "Written into the file; at most 40 bytes",
              intoText(record.observer));
  options.add("--telescope", "NAME", "Written into the file; at most 40 bytes",
              intoText(record.telescope));
  addReportingOptions(options, record.reporting);
}

using SteadyClock = std::chrono::steady_clock;

// The result of a recording, after its camera and its file are closed.
struct Recording {
  FrameLayout layout;
  std::int32_t frames = 0;
  std::int64_t droppedFrames = 0;
  std::uint64_t silentWaits = 0;
  std::uint64_t failedReads = 0;
  RecordingTimes times;
  std::size_t mostFramesWaiting = 0;
  std::size_t framesThatMayWait = 0;
  double seconds = 0;              // from the start of the stream to the last frame
  double secondsUntilWritten = 0;  // from the start of the stream until the file is closed
  oc::Frame lastFrame;
  std::filesystem::path preview;  // the last frame as a picture; empty if there is none
  std::string error;              // what failed, or empty

  double framesPerSecond() const { return times.seconds > 0 ? (frames - 1) / times.seconds : 0; }
};

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
  RecordingSession(const RecordSettings& settings, const ChosenCamera& camera)
      : settings_(settings),
        camera_(camera),
        stream_(std::in_place, camera, settings.camera, settings.length.frames,
                std::int64_t{1'000'000} * settings.memoryMegabytes),
        layout_(stream_->layout()),
        line_(settings.reporting.isQuiet) {}

  // Failures after the file was created are in the result.
  Recording run() {
    stream_->discard(settings_.camera.discard, line_);
    const SteadyClock::time_point start = stream_->start();
    const auto systemStart = systemTimeOf(start);
    SerRecorder recorder(settings_.file.path,
                         {layout_, settings_.observer, camera_.description.name,
                          settings_.telescope, serLocalTicks(systemStart), serTicks(systemStart)},
                         settings_.camera.correction, stream_->takeQueue(),
                         {settings_.file.existing(), camera_.settings.exposureUs});
    waitForFrames(recorder, start);
    Recording recording;
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

  void waitForFrames(SerRecorder& recorder, SteadyClock::time_point start) {
    constexpr std::chrono::milliseconds between{20};
    while (!isOver(recorder, start) && !recorder.waitForEnd(between)) {
      stream_->tellFailures(line_);
      tellGaps(recorder);
      if (line_.isDue()) {
        showProgress(recorder);
      }
    }
    recorder.stop();
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
    recording.times = recorder.times();
    recording.droppedFrames = recorder.droppedFrames();
    recording.mostFramesWaiting = recorder.queue().mostWaiting();
    recording.framesThatMayWait = recorder.queue().capacity() - 1;  // one is being written
    recording.lastFrame = recorder.lastFrame();
  }

  const RecordSettings& settings_;
  const ChosenCamera& camera_;
  std::optional<CameraStream> stream_;
  FrameLayout layout_;  // of the corrected frames
  StatusLine line_;
  std::int64_t shownFrames_ = 0;
  std::size_t toldGaps_ = 0;
};

Json jsonOf(const RecordSettings& settings, const ChosenCamera& camera,
            const Recording& recording) {
  const double rate = recording.framesPerSecond();
  const bool wasOpen = recording.layout.width > 0;
  Json document{{"file", recording.frames > 0 ? Json(utf8FromPath(settings.file.path)) : Json()},
                {"preview", orNull(utf8FromPath(recording.preview))},
                {"camera", orNull(camera.description.name)},
                {"width", ifKnown(wasOpen, recording.layout.width)},
                {"height", ifKnown(wasOpen, recording.layout.height)},
                {"format", ifKnown(camera.isFound(), formatName(camera.settings.format))},
                {"bayer", ifKnown(wasOpen, bayerName(recording.layout.bayer))},
                {"frames", recording.frames},
                {"droppedFrames", recording.droppedFrames},
                {"silentWaits", recording.silentWaits},
                {"failedReads", recording.failedReads}};
  document.update(gapsJson(recording.times.count));
  document.update(
      Json{{"seconds", ifKnown(wasOpen, recording.seconds)},
           {"secondsUntilWritten", ifKnown(wasOpen, recording.secondsUntilWritten)},
           {"framesPerSecond", ifKnown(wasOpen, rate)},
           {"megabytesPerSecond",
            ifKnown(wasOpen, rate * static_cast<double>(frameBytes(recording.layout)) / 1e6)},
           {"mostFramesWaiting", recording.mostFramesWaiting},
           {"framesThatMayWait", ifKnown(wasOpen, recording.framesThatMayWait)},
           {"peakMemoryBytes", peakMemory()},
           {"error", recording.error},
           {"explanation", explained(recording.error)}});
  return document;
}

std::string textOf(const RecordSettings& settings, const Recording& recording) {
  const std::string rate =
      recording.frames > 1 ? " (" + decimal(recording.framesPerSecond(), 1) + " fps)" : "";
  std::string text = "Recorded " + std::to_string(recording.frames) + " frames of " +
                     dimensionsText(recording.layout.width, recording.layout.height) + " " +
                     formatName(recording.layout.format) + " in " + decimal(recording.seconds, 1) +
                     " s" + rate + " to " + inQuotes(utf8FromPath(settings.file.path));
  if (!recording.preview.empty()) {
    text += "; preview " + inQuotes(utf8FromPath(recording.preview));
  }
  text += ".\n";
  if (recording.droppedFrames > 0) {
    text += std::to_string(recording.droppedFrames) +
            " frames were dropped, since the disk did not keep up; more --memory helps for a "
            "while.\n";
  }
  if (recording.times.count.gaps > 0) {
    text += "Gaps: " + gapText(recording.times.count) + ".\n";
  }
  text += failedReadsText(recording.failedReads);
  return text;
}

// A picture beside the recording, if one is wanted.
OutputPath previewFile(const RecordSettings& settings) {
  if (settings.hasNoPreview) {
    return {};
  }
  OutputPath preview = settings.file;
  preview.path.replace_extension();
  preview.path += "-preview.png";
  return preview;
}

// Writes the last frame as a picture. A failure is no failure of the recording.
void writePreview(const OutputPath& preview, Recording& recording) {
  if (!preview.isGiven()) {
    return;
  }
  try {
    writePng(preview.path, previewOf(recording.lastFrame.pixels(), recording.layout),
             preview.existing());
    recording.preview = preview.path;
  } catch (const std::exception& error) {
    recording.error = error.what();
  }
}

int record(const RecordSettings& given) {
  RecordSettings settings = given;
  if (!settings.length.frames && !settings.length.microseconds) {
    settings.length.frames = 100;
  }
  const OutputPath preview = previewFile(settings);
  requireUsable(settings.file);
  requireUsable(preview);
  ChosenCamera camera;
  Recording recording;
  const std::string failure = failureOf([&] {
    camera = findCamera(settings.camera);
    recording = RecordingSession(settings, camera).run();
  });
  if (!failure.empty()) {
    recording.error = failure;
  } else if (recording.error.empty() && recording.frames == 0) {
    recording.error = stopRequested() ? "Stopped before a frame came."
                                      : "No frame came before the recording's end.";
  }
  const bool isRecorded = recording.error.empty();
  if (isRecorded) {
    writePreview(preview, recording);
  }
  report(settings.reporting, jsonOf(settings, camera, recording),
         isRecorded ? textOf(settings, recording) : "");
  if (!isRecorded && recording.frames > 0) {
    std::cerr << recording.frames << " frames are in " << inQuotes(utf8FromPath(settings.file.path))
              << ", which is a valid recording.\n";
  }
  if (!recording.error.empty()) {
    throw oc::Error(recording.error);
  }
  return 0;
}

}  // namespace

const Command recordCommand{
    .name = "record",
    .description = "Record a camera's frames into a SER file",
    .explanation =
        R"(A recording ends after --frames frames (100 if neither --frames nor --seconds is
given), after --seconds seconds, or on Ctrl-C. FILE.ser appears with its first
frame and is valid from then on; without a frame there is no file. After a power
failure, "oc_capture repair" recovers all whole frames. The program waits for a
frame for twice the exposure plus 500 ms; after five such waits without a frame,
or five failed reads in a row, the recording ends with an error. Single failed
reads and gaps are told when they happen, and counted. A gap is an interval of
more than three frame times.

A slow disk does not delay the camera: frames wait in memory, in --memory
megabytes (but at least three frames). When this memory is full, frames are
dropped and counted. Besides that, recording needs little memory: two frames,
and 8 bytes for each recorded frame.

FILE.ser holds the frames as the camera delivers them, and the time when each
arrived. 16-bit frames are stored with 16 bits, whatever the converter's bit
depth. FILE-preview.png, beside it, shows the last frame, in colour and
brightened; --no-preview leaves it out. While it records, the time stamps are in
FILE.ser.orvane-times.)",
    .examples =
        R"(  oc_capture record --sdk C:\sdk --camera ASI294 --exposure 20ms --seconds 60 --out jupiter.ser
  oc_capture record --sdk C:\sdk --camera 0 --format raw16 --discard 3 --frames 500 --out moon.ser --json)",
    .whenDone = "recorded, also after Ctrl-C",
    .whenFailed = "no camera, no frame, or a failure",
    .prepare = prepareCommand<RecordSettings, addOptions, record>,
};

}  // namespace orvane::host
