// "oc_capture record": a camera's frames, written into a SER file.
#include <chrono>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
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
  std::string observer;
  std::string telescope;
  Reporting reporting;
};

void addOptions(CommandOptions& options, RecordSettings& record) {
  addCameraOptions(options, record.camera);
  addOutputOptions(options, record.file,
                   {"FILE.ser", "The recording", {".ser"}, Presence::Required});
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
  std::size_t mostFramesWaiting = 0;
  std::size_t framesThatMayWait = 0;
  double seconds = 0;              // from the start of the stream to the last frame
  double secondsUntilWritten = 0;  // from the start of the stream until the file is closed
  oc::Frame lastFrame;
  std::filesystem::path preview;  // the last frame as a picture; empty if there is none
  std::string error;              // what failed, or empty
};

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
                         settings_.camera.correction, stream_->takeQueue());
    waitForFrames(recorder, start);
    Recording recording;
    recording.layout = layout_;
    recording.seconds = secondsBetween(start, SteadyClock::now());
    showProgress(recorder);
    recording.silentWaits = stream_->state().silentWaits;
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
      if (line_.isDue()) {
        showProgress(recorder);
      }
    }
    recorder.stop();
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
    if (state.temperature) {
      text += ", " + decimal(*state.temperature, 1) + " \u00b0C";
    }
    line_.show(text);
  }

  void finish(SerRecorder& recorder, Recording& recording) const {
    StatusLine line(settings_.reporting.isQuiet);
    constexpr std::chrono::milliseconds between{100};
    while (!recorder.waitForEnd(between)) {
      if (line.isDue()) {
        line.show("Writing: " + std::to_string(recorder.writtenFrames()) + " of " +
                  std::to_string(recorder.acceptedFrames()) + " frames are in the file");
      }
    }
    try {
      recorder.requireSuccess();
    } catch (const std::exception& error) {
      recording.error = error.what();
    }
    recording.frames = recorder.writtenFrames();
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
};

Json jsonOf(const RecordSettings& settings, const ChosenCamera& camera,
            const Recording& recording) {
  const double rate = recording.frames / (recording.seconds > 0 ? recording.seconds : 1);
  return {{"file", utf8FromPath(settings.file.path)},
          {"preview", orNull(utf8FromPath(recording.preview))},
          {"camera", camera.description.name},
          {"width", recording.layout.width},
          {"height", recording.layout.height},
          {"format", formatName(recording.layout.format)},
          {"bayer", bayerName(recording.layout.bayer)},
          {"frames", recording.frames},
          {"droppedFrames", recording.droppedFrames},
          {"silentWaits", recording.silentWaits},
          {"seconds", recording.seconds},
          {"secondsUntilWritten", recording.secondsUntilWritten},
          {"framesPerSecond", rate},
          {"megabytesPerSecond", rate * static_cast<double>(frameBytes(recording.layout)) / 1e6},
          {"mostFramesWaiting", recording.mostFramesWaiting},
          {"framesThatMayWait", recording.framesThatMayWait},
          {"peakMemoryBytes", peakMemory()},
          {"error", recording.error}};
}

std::string textOf(const RecordSettings& settings, const Recording& recording) {
  const double rate = recording.seconds > 0 ? recording.frames / recording.seconds : 0.0;
  std::string text = "Recorded " + std::to_string(recording.frames) + " frames of " +
                     dimensionsText(recording.layout.width, recording.layout.height) + " " +
                     formatName(recording.layout.format) + " in " + decimal(recording.seconds, 1) +
                     " s (" + decimal(rate, 1) + " fps) to " +
                     inQuotes(utf8FromPath(settings.file.path));
  if (!recording.preview.empty()) {
    text += "; preview " + inQuotes(utf8FromPath(recording.preview));
  }
  text += ".\n";
  if (recording.droppedFrames > 0) {
    text += std::to_string(recording.droppedFrames) +
            " frames were dropped, since the disk did not keep up; more --memory helps for a "
            "while.\n";
  }
  return text;
}

int record(const RecordSettings& given) {
  RecordSettings settings = given;
  if (!settings.length.frames && !settings.length.microseconds) {
    settings.length.frames = 100;
  }
  requireUsable(settings.file);
  const ChosenCamera camera = findCamera(settings.camera);
  Recording recording = RecordingSession(settings, camera).run();
  if (recording.error.empty() && recording.frames == 0 && !stopRequested()) {
    recording.error = "No frame came before the recording's end.";
  }
  const bool hasFailed = !recording.error.empty();
  if (!hasFailed && recording.frames > 0) {
    recording.preview = settings.file.path;
    recording.preview.replace_extension(".png");
    writePng(recording.preview, previewOf(recording.lastFrame.pixels(), recording.layout));
  }
  report(settings.reporting, jsonOf(settings, camera, recording),
         hasFailed ? "" : textOf(settings, recording));
  if (hasFailed) {
    if (recording.frames > 0) {
      std::cerr << recording.frames << " frames are in "
                << inQuotes(utf8FromPath(settings.file.path)) << ", which is a valid recording.\n";
    }
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
given), after --seconds seconds, or on Ctrl-C. The file is valid in any case.
The program waits for a frame for twice the exposure plus 500 ms; after five
such waits without a frame the recording ends with an error.

A slow disk does not delay the camera: frames wait in memory, in --memory
megabytes (but at least three frames). When this memory is full, frames are
dropped and counted. Besides that, recording needs little memory: two frames,
and 8 bytes for each recorded frame.

FILE.ser holds the frames as the camera delivers them, and the time when each
arrived. 16-bit frames are stored with 16 bits, whatever the converter's bit
depth. FILE.png, beside it, shows the last frame, in colour and brightened.)",
    .examples =
        R"(  oc_capture record --sdk C:\sdk --camera ASI294 --exposure 20ms --seconds 60 --out jupiter.ser
  oc_capture record --sdk C:\sdk --camera 0 --format raw16 --discard 3 --frames 500 --out moon.ser --json)",
    .prepare = prepareCommand<RecordSettings, addOptions, record>,
};

}  // namespace orvane::host
