// "oc_capture record": a camera's frames, written into a SER file.
#include "oc_capture/record_command.hpp"

#include <algorithm>
#include <chrono>
#include <exception>
#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "formats/png_writer.hpp"
#include "formats/ser_time.hpp"
#include "formats/ser_writer.hpp"
#include "imaging/stretch.hpp"
#include "oc_capture/camera_options.hpp"
#include "oc_capture/camera_stream.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/status_line.hpp"
#include "session/ser_recorder.hpp"
#include "system/failures.hpp"
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
  addOutputOptions(
      options, record.file,
      {"FILE.ser", "The recording", "Replace FILE.ser if it exists", {".ser"}, Presence::Required});
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
  std::exception_ptr failure;
};

CaptureLength lengthOf(const RecordSettings& settings) {
  CaptureLength length = settings.length;
  if (!length.frames && !length.microseconds) {
    length.frames = 100;
  }
  return length;
}

// In the order of these calls no frame since then has an earlier time.
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
        length_(lengthOf(settings)),
        stream_(std::in_place, camera, settings.camera, length_.frames,
                std::int64_t{1'000'000} * settings.memoryMegabytes),
        layout_(correctedLayout(stream_->state().layout, settings.camera.correction)),
        line_(settings.reporting.isQuiet) {}

  // Failures after the file was created are in the result.
  Recording run() {
    stream_->discard(settings_.camera.discard, line_);
    const SteadyClock::time_point start = stream_->start();
    SerRecorder recorder(settings_.file.path, serDescription(systemTimeOf(start)),
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
    if (length_.frames == recording.frames && recording.lastFrame.arrival() > start) {
      recording.seconds = secondsBetween(start, recording.lastFrame.arrival());
    }
    return recording;
  }

 private:
  static double secondsBetween(SteadyClock::time_point start, SteadyClock::time_point end) {
    return std::chrono::duration<double>(end - start).count();
  }

  SerDescription serDescription(std::chrono::system_clock::time_point start) const {
    return {layout_,
            settings_.observer,
            camera_.description.name,
            settings_.telescope,
            serLocalTicks(start),
            serTicks(start)};
  }

  bool isOver(const SerRecorder& recorder, SteadyClock::time_point start) const {
    return stopRequested() ||
           length_.isReached(recorder.acceptedFrames(), SteadyClock::now() - start);
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

  void showProgress(const SerRecorder& recorder) {
    const auto size = static_cast<std::int64_t>(frameBytes(layout_));
    const oc::CaptureState state = stream_->state();
    const std::int64_t frames = recorder.acceptedFrames();
    line_.showRecording({frames, frames * size, static_cast<std::int64_t>(state.silentWaits),
                         recorder.droppedFrames(), state.temperature});
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
    } catch (const std::exception&) {
      recording.failure = std::current_exception();
    }
    recording.frames = recorder.writtenFrames();
    recording.droppedFrames = recorder.droppedFrames();
    recording.mostFramesWaiting = recorder.queue().mostWaiting();
    recording.framesThatMayWait = recorder.queue().capacity() - 1;  // one is being written
    recording.lastFrame = recorder.lastFrame();
  }

  const RecordSettings& settings_;
  const ChosenCamera& camera_;
  const CaptureLength length_;
  std::optional<CameraStream> stream_;
  FrameLayout layout_;  // of the corrected frames
  RecordingLine line_;
};

std::string messageOf(const std::exception_ptr& failure) {
  try {
    if (failure) {
      std::rethrow_exception(failure);
    }
  } catch (const std::exception& error) {
    return error.what();
  }
  return "";
}

void reportJson(const RecordSettings& settings, const ChosenCamera& camera,
                const Recording& recording, const std::optional<std::filesystem::path>& preview) {
  const double seconds = recording.seconds > 0 ? recording.seconds : 1;
  const double bytes =
      static_cast<double>(recording.frames) * static_cast<double>(frameBytes(recording.layout));
  nlohmann::ordered_json document;
  document["file"] = utf8FromPath(settings.file.path);
  document["preview"] = preview ? nlohmann::ordered_json(utf8FromPath(*preview)) : nullptr;
  document["camera"] = camera.description.name;
  document["width"] = recording.layout.width;
  document["height"] = recording.layout.height;
  document["format"] = formatName(recording.layout.format);
  document["bayer"] = bayerName(recording.layout.bayer);
  document["frames"] = recording.frames;
  document["droppedFrames"] = recording.droppedFrames;
  document["silentWaits"] = recording.silentWaits;
  document["seconds"] = recording.seconds;
  document["secondsUntilWritten"] = recording.secondsUntilWritten;
  document["framesPerSecond"] = recording.frames / seconds;
  document["megabytesPerSecond"] = bytes / seconds / 1e6;
  document["mostFramesWaiting"] = recording.mostFramesWaiting;
  document["framesThatMayWait"] = recording.framesThatMayWait;
  document["peakMemoryBytes"] = peakMemory();
  document["error"] = messageOf(recording.failure);
  std::cout << document.dump(2) << "\n" << std::flush;
}

void reportText(const RecordSettings& settings, const Recording& recording,
                const std::optional<std::filesystem::path>& preview) {
  const double rate = recording.seconds > 0 ? recording.frames / recording.seconds : 0.0;
  std::cout << "Recorded " << recording.frames << " frames of " << recording.layout.width << " x "
            << recording.layout.height << " " << formatName(recording.layout.format) << " in "
            << decimal(recording.seconds, 1) << " s (" << decimal(rate, 1) << " fps) to "
            << inQuotes(utf8FromPath(settings.file.path));
  if (preview) {
    std::cout << "; preview " << inQuotes(utf8FromPath(*preview));
  }
  std::cout << ".\n";
  if (recording.droppedFrames > 0) {
    std::cout << recording.droppedFrames
              << " frames were dropped, since the disk did not keep up; more --memory helps for a "
                 "while.\n";
  }
  std::cout << std::flush;
}

// Writes the last frame as a picture beside the recording. Returns nothing when there is no frame.
std::optional<std::filesystem::path> writePreview(const RecordSettings& settings,
                                                  const Recording& recording) {
  if (recording.frames == 0) {
    return std::nullopt;
  }
  std::filesystem::path preview = settings.file.path;
  preview.replace_extension(".png");
  writePng(preview, previewOf(recording.lastFrame.pixels(), recording.layout));
  return preview;
}

[[noreturn]] void reportFailure(const RecordSettings& settings, const ChosenCamera& camera,
                                const Recording& recording) {
  if (settings.reporting.asJson) {
    reportJson(settings, camera, recording, std::nullopt);
  }
  if (recording.frames > 0) {
    std::cerr << recording.frames << " frames are in " << inQuotes(utf8FromPath(settings.file.path))
              << ", which is a valid recording.\n";
  }
  std::rethrow_exception(recording.failure);
}

int record(const RecordSettings& settings) {
  requireUsable(settings.file);
  catchStopRequests();
  useFineSleep();
  const ChosenCamera camera = findCamera(settings.camera);
  Recording recording = RecordingSession(settings, camera).run();
  if (!recording.failure && recording.frames == 0 && !stopRequested()) {
    recording.failure =
        std::make_exception_ptr(oc::Error("No frame came before the recording's end."));
  }
  if (recording.failure) {
    reportFailure(settings, camera, recording);
  }
  const auto preview = writePreview(settings, recording);
  if (settings.reporting.asJson) {
    reportJson(settings, camera, recording, preview);
  } else if (!settings.reporting.isQuiet) {
    reportText(settings, recording, preview);
  }
  return 0;
}

constexpr const char* explanation =
    R"(A recording ends after --frames frames (100 when neither that nor --seconds is
given), after --seconds seconds, or on Ctrl-C; whatever ends it, the file is
valid. Frames are waited for twice the exposure and 500 ms; five such waits
without a frame end the recording with an error.

A slow disk does not hold up the camera: frames that it cannot take at once
wait in memory, in --memory megabytes (but at least three frames), and only
when these are full are frames lost, and counted. While it records, the program
needs little memory beside that: two frames and 8 bytes for each recorded one.

FILE.ser holds the frames as the camera delivers them, 16-bit ones as 16 bits
whatever the converter has, and each frame's time of arrival. FILE.png, written
beside it, shows the last frame, in colour and brightened.)";

constexpr const char* examples =
    R"(  oc_capture record --sdk C:\sdk --camera ASI294 --exposure 20ms --seconds 60 --out jupiter.ser
  oc_capture record --sdk C:\sdk --camera 0 --format raw16 --discard 3 --frames 500 --out moon.ser --json)";

}  // namespace

const Command recordCommand{
    "record", "Record a camera's frames into a SER file",         explanation,
    examples, prepareCommand<RecordSettings, addOptions, record>,
};

}  // namespace orvane::host
