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
#include "oc_capture/frame_source.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/status_line.hpp"
#include "session/camera_session.hpp"
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
  std::int64_t silentWaits = 0;
  std::size_t mostFramesWaiting = 0;
  std::size_t framesThatMayWait = 0;
  double seconds = 0;              // from the first poll to the last
  double secondsUntilWritten = 0;  // from the first poll until the file is closed
  std::vector<std::uint8_t> lastFrame;
  std::exception_ptr failure;
};

SerDescription serDescription(const RecordSettings& settings, const CameraDescription& camera,
                              const FrameLayout& layout) {
  const auto now = std::chrono::system_clock::now();
  return {layout,       settings.observer, camera.name, settings.telescope, serLocalTicks(now),
          serTicks(now)};
}

CaptureLength lengthOf(const RecordSettings& settings) {
  CaptureLength length = settings.length;
  if (!length.frames && !length.microseconds) {
    length.frames = 100;
  }
  return length;
}

// Records from one camera.
class RecordingSession {
 public:
  RecordingSession(const RecordSettings& settings, const ChosenCamera& camera)
      : settings_(settings),
        camera_(camera),
        length_(lengthOf(settings)),
        session_(std::in_place, camera.description, camera.settings),
        layout_(correctedLayout(session_->layout(), settings.camera.correction)),
        source_(*session_, camera.settings.exposureUs),
        restWhenFull_(std::clamp<std::int64_t>(camera.settings.exposureUs / 1000, 1, 50)),
        line_(settings.reporting.isQuiet) {}

  // Failures after the file was created are in the result.
  Recording run() {
    source_.discard(settings_.camera.discard, line_);
    SerRecorder recorder(settings_.file.path,
                         serDescription(settings_, camera_.description, layout_),
                         {session_->layout(), settings_.camera.correction, session_->bufferSize(),
                          std::int64_t{1'000'000} * settings_.memoryMegabytes});
    Recording recording;
    recording.layout = layout_;
    const SteadyClock::time_point start = SteadyClock::now();
    try {
      takeFrames(recorder, start);
      showProgress(recorder);
    } catch (const std::exception&) {
      recording.failure = std::current_exception();
    }
    const auto secondsSoFar = [start] {
      return std::chrono::duration<double>(SteadyClock::now() - start).count();
    };
    recording.seconds = secondsSoFar();
    session_.reset();
    finish(recorder, recording);
    recording.secondsUntilWritten = secondsSoFar();
    return recording;
  }

 private:
  void takeFrames(SerRecorder& recorder, SteadyClock::time_point start) {
    while (!stopRequested() && !recorder.hasFailed() &&
           !length_.isReached(frames_, SteadyClock::now() - start)) {
      const auto frame = source_.poll();
      if (!frame.empty()) {
        BufferedFrame next{std::move(source_.buffer()), frame.size(),
                           serTicks(std::chrono::system_clock::now())};
        if (recorder.take(next)) {
          ++frames_;
        } else {
          recorder.waitForRoom(restWhenFull_);
        }
        source_.buffer() = std::move(next.buffer);
      }
      if (line_.isDue()) {
        showProgress(recorder);
      }
    }
  }

  void showProgress(const SerRecorder& recorder) {
    const auto size = static_cast<std::int64_t>(frameBytes(layout_));
    line_.showRecording({frames_, frames_ * size, source_.silentWaits(), recorder.droppedFrames(),
                         session_->temperature()});
  }

  void finish(SerRecorder& recorder, Recording& recording) const {
    StatusLine line(settings_.reporting.isQuiet);
    recorder.stop();
    constexpr std::chrono::milliseconds between{100};
    while (!recorder.waitForEnd(between)) {
      if (line.isDue()) {
        line.show("Writing: " + std::to_string(recorder.writtenFrames()) + " of " +
                  std::to_string(frames_) + " frames are in the file");
      }
    }
    try {
      recorder.requireSuccess();
    } catch (const std::exception&) {
      recording.failure = recording.failure ? recording.failure : std::current_exception();
    }
    recording.frames = recorder.writtenFrames();
    recording.droppedFrames = recorder.droppedFrames();
    recording.silentWaits = source_.silentWaits();
    recording.mostFramesWaiting = recorder.queue().mostWaiting();
    recording.framesThatMayWait = recorder.queue().capacity();
    const auto last = recorder.lastFrame();
    recording.lastFrame.assign(last.begin(), last.end());
  }

  const RecordSettings& settings_;
  const ChosenCamera& camera_;
  const CaptureLength length_;
  std::optional<CameraSession> session_;
  FrameLayout layout_;  // of the corrected frames
  FrameSource source_;
  // While the queue is full, frames are read only to be counted as dropped. Without a pause,
  // copying them would take memory bandwidth from the writer; a new frame takes an exposure anyway.
  const std::chrono::milliseconds restWhenFull_;
  RecordingLine line_;
  std::int32_t frames_ = 0;  // accepted by the recorder
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
  writePng(preview, previewOf(recording.lastFrame, recording.layout));
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
        std::make_exception_ptr(CameraError("No frame came before the recording's end."));
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
