// "oc_capture snap": one frame of a camera, written into a PNG or FITS file.
#include "oc_capture/snap_command.hpp"

#include <chrono>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "formats/fits_writer.hpp"
#include "formats/png_writer.hpp"
#include "imaging/stretch.hpp"
#include "oc_capture/chosen_camera.hpp"
#include "oc_capture/frame_source.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/status_line.hpp"
#include "session/camera_session.hpp"
#include "system/argument_values.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using Clock = std::chrono::system_clock;

// What is left of the camera when it is closed.
struct Snapshot {
  FrameLayout layout;
  std::vector<std::uint8_t> frame;
  Clock::time_point arrival;
  std::optional<double> temperature;
};

Snapshot takeSnapshot(const SnapCommand& command, const ChosenCamera& camera) {
  CameraSession session(camera.description, camera.settings);
  FrameSource source(session, camera.settings.exposureUs);
  StatusLine line(command.reporting.isQuiet);
  const Clock::time_point start = Clock::now();
  for (int before = command.camera.discard; !stopRequested();) {
    const auto frame = source.poll();
    if (!frame.empty() && before-- == 0) {
      const Clock::time_point arrival = Clock::now();
      correctFrame(frame, session.layout(), command.camera.correction);
      return {correctedLayout(session.layout(), command.camera.correction),
              {frame.begin(), frame.end()},
              arrival,
              session.temperature()};
    }
    if (line.isDue()) {
      const std::chrono::duration<double> waited = Clock::now() - start;
      line.show("Waiting for the frame: " + decimal(waited.count(), 1) + " s, exposure " +
                durationText(camera.settings.exposureUs));
    }
  }
  throw CameraError("Stopped before a frame came.");
}

FitsDescription fitsDescription(const SnapCommand& command, const ChosenCamera& camera,
                                const Snapshot& snapshot) {
  FitsDescription description;
  description.layout = snapshot.layout;
  description.start = snapshot.arrival - std::chrono::microseconds(camera.settings.exposureUs);
  description.exposureSeconds = static_cast<double>(camera.settings.exposureUs) / 1e6;
  description.gain = camera.settings.gain;
  description.offset = camera.settings.offset;
  description.bin = camera.settings.bin;
  description.pixelSizeUm = camera.description.pixelSizeUm;
  description.temperature = snapshot.temperature;
  description.camera = camera.description.name;
  description.observer = command.observer;
  description.telescope = command.telescope;
  return description;
}

void report(const SnapCommand& command, const ChosenCamera& camera, const Snapshot& snapshot) {
  const FrameLayout& layout = snapshot.layout;
  if (command.reporting.asJson) {
    nlohmann::ordered_json document;
    document["file"] = utf8FromPath(command.file);
    document["camera"] = camera.description.name;
    document["width"] = layout.width;
    document["height"] = layout.height;
    document["format"] = formatName(layout.format);
    document["bayer"] = bayerName(layout.bayer);
    document["exposureUs"] = camera.settings.exposureUs;
    document["gain"] = camera.settings.gain;
    document["offset"] = camera.settings.offset;
    document["bin"] = camera.settings.bin;
    document["temperature"] = snapshot.temperature ? nlohmann::ordered_json(*snapshot.temperature)
                                                   : nlohmann::ordered_json();
    std::cout << document.dump(2) << "\n" << std::flush;
  } else if (!command.reporting.isQuiet) {
    std::cout << "Took a frame of " << layout.width << " x " << layout.height << " "
              << formatName(layout.format) << ": " << inQuotes(utf8FromPath(command.file)) << ".\n"
              << std::flush;
  }
}

}  // namespace

void snap(const SnapCommand& command) {
  requireUsable(command.file, command.mayOverwrite);
  catchStopRequests();
  useFineSleep();
  const ChosenCamera camera = findCamera(command.camera);
  const Snapshot snapshot = takeSnapshot(command, camera);
  if (command.isFits) {
    writeFits(command.file, snapshot.frame, fitsDescription(command, camera, snapshot));
  } else {
    StatusLine line(command.reporting.isQuiet);
    constexpr std::size_t large = 8'000'000;  // bytes, whose compression takes a moment
    if (snapshot.frame.size() > large) {
      line.show("Making the picture");
    }
    constexpr int anySize = 1 << 20;
    writePng(command.file, previewOf(snapshot.frame, snapshot.layout, anySize));
  }
  report(command, camera, snapshot);
}

}  // namespace orvane::host
