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
#include "oc_capture/chosen_camera.hpp"
#include "oc_capture/frame_source.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/progress.hpp"
#include "session/camera_session.hpp"
#include "session/ser_recorder.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using SteadyClock = std::chrono::steady_clock;

// What is left of a recording when its camera and its file are closed.
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

SerDescription serDescription(const RecordCommand& command, const CameraDescription& camera,
                              const FrameLayout& layout) {
  const auto now = std::chrono::system_clock::now();
  return {layout,       command.observer, camera.name, command.telescope, serLocalTicks(now),
          serTicks(now)};
}

// One camera that is being recorded from.
class RecordingSession {
 public:
  RecordingSession(const RecordCommand& command, const ChosenCamera& camera)
      : command_(command),
        camera_(camera),
        session_(std::in_place, camera.description, camera.settings),
        layout_(correctedLayout(session_->layout(), command.camera.correction)),
        source_(*session_, camera.settings.exposureUs),
        restWhenFull_(std::clamp<std::int64_t>(camera.settings.exposureUs / 1000, 1, 50)),
        progress_(command.reporting.isQuiet) {}

  // Whatever happens once the file is there is told in the result.
  Recording run() {
    source_.discard(command_.camera.discard, progress_.line());
    SerRecorder recorder(command_.file, serDescription(command_, camera_.description, layout_),
                         {session_->layout(), command_.camera.correction, session_->bufferSize(),
                          command_.waitingBytes});
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
    while (!stopRequested() && !recorder.hasFailed() && !isComplete(SteadyClock::now() - start)) {
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
      if (progress_.isDue()) {
        showProgress(recorder);
      }
    }
  }

  bool isComplete(SteadyClock::duration elapsed) const {
    return command_.frames ? frames_ >= *command_.frames
                           : elapsed >= std::chrono::microseconds(command_.durationUs.value_or(0));
  }

  void showProgress(const SerRecorder& recorder) {
    const auto size = static_cast<std::int64_t>(frameBytes(layout_));
    progress_.show({frames_, frames_ * size, source_.silentWaits(), recorder.droppedFrames(),
                    session_->temperature()});
  }

  void finish(SerRecorder& recorder, Recording& recording) const {
    StatusLine line(command_.reporting.isQuiet);
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

  const RecordCommand& command_;
  const ChosenCamera& camera_;
  std::optional<CameraSession> session_;
  FrameLayout layout_;  // of the corrected frames
  FrameSource source_;
  // Where the disk is behind, frames are taken from the camera to be counted only. None comes
  // sooner than an exposure takes, and copying without a rest would take memory's speed from the
  // disk.
  const std::chrono::milliseconds restWhenFull_;
  Progress progress_;
  std::int32_t frames_ = 0;  // that the recorder has taken
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

void reportJson(const RecordCommand& command, const ChosenCamera& camera,
                const Recording& recording, const std::optional<std::filesystem::path>& preview) {
  const double seconds = recording.seconds > 0 ? recording.seconds : 1;
  const double bytes =
      static_cast<double>(recording.frames) * static_cast<double>(frameBytes(recording.layout));
  nlohmann::ordered_json document;
  document["file"] = utf8FromPath(command.file);
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

void reportText(const RecordCommand& command, const Recording& recording,
                const std::optional<std::filesystem::path>& preview) {
  const double rate = recording.seconds > 0 ? recording.frames / recording.seconds : 0.0;
  std::cout << "Recorded " << recording.frames << " frames of " << recording.layout.width << " x "
            << recording.layout.height << " " << formatName(recording.layout.format) << " in "
            << decimal(recording.seconds, 1) << " s (" << decimal(rate, 1) << " fps) to "
            << inQuotes(utf8FromPath(command.file));
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

// The last frame beside the recording; none when there is no frame.
std::optional<std::filesystem::path> writePreview(const RecordCommand& command,
                                                  const Recording& recording) {
  if (recording.frames == 0) {
    return std::nullopt;
  }
  std::filesystem::path preview = command.file;
  preview.replace_extension(".png");
  writePng(preview, previewOf(recording.lastFrame, recording.layout));
  return preview;
}

[[noreturn]] void reportFailure(const RecordCommand& command, const ChosenCamera& camera,
                                const Recording& recording) {
  if (command.reporting.asJson) {
    reportJson(command, camera, recording, std::nullopt);
  }
  if (recording.frames > 0) {
    std::cerr << recording.frames << " frames are in " << inQuotes(utf8FromPath(command.file))
              << ", which is a valid recording.\n";
  }
  std::rethrow_exception(recording.failure);
}

}  // namespace

void record(const RecordCommand& command) {
  requireUsable(command.file, command.mayOverwrite);
  catchStopRequests();
  useFineSleep();
  const ChosenCamera camera = findCamera(command.camera);
  Recording recording = RecordingSession(command, camera).run();
  if (!recording.failure && recording.frames == 0 && !stopRequested()) {
    recording.failure =
        std::make_exception_ptr(CameraError("No frame came before the recording's end."));
  }
  if (recording.failure) {
    reportFailure(command, camera, recording);
  }
  const auto preview = writePreview(command, recording);
  if (command.reporting.asJson) {
    reportJson(command, camera, recording, preview);
  } else if (!command.reporting.isQuiet) {
    reportText(command, recording, preview);
  }
}

}  // namespace orvane::host
