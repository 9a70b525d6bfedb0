// "oc_capture record": a camera's frames, written into a SER file.
#include "oc_capture/record_command.hpp"

#include <chrono>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "common/camera_choice.hpp"
#include "common/failures.hpp"
#include "common/png_writer.hpp"
#include "common/preview.hpp"
#include "common/ser_time.hpp"
#include "common/ser_writer.hpp"
#include "common/system.hpp"
#include "common/text.hpp"
#include "oc_capture/camera_catalogue.hpp"
#include "oc_capture/camera_session.hpp"
#include "oc_capture/capture_settings.hpp"
#include "oc_capture/frame_source.hpp"
#include "oc_capture/progress.hpp"

namespace orvane::host {

namespace {

using SteadyClock = std::chrono::steady_clock;

// What is left of a recording when its camera and its file are closed.
struct Recording {
  FrameLayout layout;
  std::int32_t frames = 0;
  double seconds = 0;
  std::vector<std::uint8_t> lastFrame;
};

std::string nameInQuotes(const std::filesystem::path& path) {
  return inQuotes(utf8FromPath(path));
}

void requireUsableFile(const RecordCommand& command) {
  std::error_code ignored;
  const std::filesystem::path directory = command.file.parent_path();
  if (!directory.empty() && !std::filesystem::is_directory(directory, ignored)) {
    throw UsageError("There is no directory " + nameInQuotes(directory) + ".");
  }
  if (!command.mayOverwrite && std::filesystem::exists(command.file, ignored)) {
    throw UsageError(nameInQuotes(command.file) +
                     " exists already; name another file or add --overwrite.");
  }
}

SerDescription serDescription(const RecordCommand& command, const CameraDescription& camera,
                              const FrameLayout& layout) {
  const auto now = std::chrono::system_clock::now();
  return {layout,       command.observer, camera.name, command.telescope, serLocalTicks(now),
          serTicks(now)};
}

bool isComplete(const RecordCommand& command, std::int32_t frames, SteadyClock::duration elapsed) {
  return command.frames ? frames >= *command.frames
                        : elapsed >= std::chrono::microseconds(command.durationUs.value_or(0));
}

Recording recordFrames(const RecordCommand& command, const CameraDescription& camera,
                       const CameraSettings& settings) {
  CameraSession session(camera, settings);
  SerWriter writer(command.file, serDescription(command, camera, session.layout()));
  FrameSource source(session, settings.exposureUs);
  Progress progress;
  const SteadyClock::time_point start = SteadyClock::now();
  const auto elapsed = [&] { return SteadyClock::now() - start; };
  const auto showProgress = [&] {
    const std::int64_t frames = writer.frameCount();
    const auto size = static_cast<std::int64_t>(frameBytes(session.layout()));
    progress.show({frames, frames * size, source.silentWaits(), session.temperature()});
    writer.checkpoint();
  };

  while (!stopRequested() && !isComplete(command, writer.frameCount(), elapsed())) {
    const auto frame = source.poll();
    if (!frame.empty()) {
      writer.addFrame(frame, serTicks(std::chrono::system_clock::now()));
    }
    if (progress.isDue()) {
      showProgress();
    }
  }
  const double seconds = std::chrono::duration<double>(elapsed()).count();
  showProgress();
  writer.close();
  const auto last = source.lastFrame();
  return {session.layout(), writer.frameCount(), seconds, {last.begin(), last.end()}};
}

void report(const RecordCommand& command, const Recording& recording,
            const std::filesystem::path& preview) {
  const double rate = recording.seconds > 0 ? recording.frames / recording.seconds : 0.0;
  std::cout << "Recorded " << recording.frames << " frames of " << recording.layout.width << " x "
            << recording.layout.height << " " << formatName(recording.layout.format) << " in "
            << decimal(recording.seconds, 1) << " s (" << decimal(rate, 1) << " fps) to "
            << nameInQuotes(command.file);
  if (recording.frames > 0) {
    std::cout << "; preview " << nameInQuotes(preview);
  }
  std::cout << ".\n" << std::flush;
}

}  // namespace

void record(const RecordCommand& command) {
  requireUsableFile(command);
  catchStopRequests();
  useFineSleep();
  const CameraCatalogue catalogue = readCatalogue(command.sdkDirectory);
  if (!catalogue.problems.empty()) {
    // The camera that is meant may be there all the same.
    std::cerr << "oc_capture: " << catalogue.problems << "\n";
  }
  if (catalogue.cameras.empty()) {
    throw CameraError("No camera was found.");
  }
  const CameraDescription& camera = chooseCamera(catalogue.cameras, command.camera);
  const CameraSettings settings = settingsFor(command, camera);

  const Recording recording = recordFrames(command, camera, settings);
  std::filesystem::path preview = command.file;
  preview.replace_extension(".png");
  if (recording.frames > 0) {
    writePng(preview, previewOf(recording.lastFrame, recording.layout));
  } else if (!stopRequested()) {
    throw CameraError("No frame came before the recording's end.");
  }
  report(command, recording, preview);
}

}  // namespace orvane::host
