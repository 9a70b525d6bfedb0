// "oc_capture snap": one frame of a camera, written into a PNG or FITS file.
#include <chrono>
#include <optional>
#include <string>

#include "formats/fits_writer.hpp"
#include "formats/png_writer.hpp"
#include "imaging/stretch.hpp"
#include "oc_capture/camera_options.hpp"
#include "oc_capture/camera_stream.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/report.hpp"
#include "oc_capture/status_line.hpp"
#include "system/argument_values.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct SnapSettings {
  CameraOptions camera;
  OutputPath file;
  std::string observer;
  std::string telescope;
  Reporting reporting;
};

void addOptions(CommandOptions& options, SnapSettings& snap) {
  addCameraOptions(options, snap.camera);
  addOutputOptions(
      options, snap.file,
      {"FILE", "The file: .png, .fits or .fit", {".png", ".fits", ".fit"}, Presence::Required});
  options.add("--observer", "NAME", "Written into a FITS file", intoText(snap.observer));
  options.add("--telescope", "NAME", "Written into a FITS file", intoText(snap.telescope));
  addReportingOptions(options, snap.reporting);
}

using Clock = std::chrono::system_clock;

// A frame and what belongs to it, after the camera is closed.
struct Snapshot {
  FrameLayout layout;
  CorrectedFrame frame;
  std::optional<double> temperature;
  std::uint64_t failedReads = 0;
};

Snapshot takeSnapshot(const SnapSettings& settings, const ChosenCamera& camera) {
  CameraStream stream(camera, settings.camera, 1);
  StatusLine line(settings.reporting.isQuiet);
  const Clock::time_point start = Clock::now();
  for (int before = settings.camera.discard; !stopRequested();) {
    const CorrectedFrame frame = stream.next();
    stream.tellFailures(line);
    if (frame && before-- == 0) {
      const oc::CaptureState state = stream.state();
      return {stream.layout(), frame, state.temperature, state.failedReads};
    }
    if (line.isDue()) {
      const std::chrono::duration<double> waited = Clock::now() - start;
      line.show("Waiting for the frame: " + decimal(waited.count(), 1) + " s, exposure " +
                durationText(camera.settings.exposureUs));
    }
  }
  throw oc::Error("Stopped before a frame came.");
}

FitsDescription fitsDescription(const SnapSettings& settings, const ChosenCamera& camera,
                                const Snapshot& snapshot) {
  const std::chrono::microseconds exposure(camera.settings.exposureUs);
  return {.layout = snapshot.layout,
          .start = snapshot.frame.frame.arrivalTime() - exposure,
          .exposureSeconds = std::chrono::duration<double>(exposure).count(),
          .gain = *camera.settings.gain,
          .offset = camera.settings.offset,
          .bin = camera.settings.bin,
          .region = settings.camera.correction.region,
          .pixelSizeUm = camera.description.pixelSizeUm,
          .temperature = snapshot.temperature,
          .camera = camera.description.name,
          .observer = settings.observer,
          .telescope = settings.telescope};
}

Json jsonOf(const SnapSettings& settings, const ChosenCamera& camera, const Snapshot& snapshot) {
  return {{"file", utf8FromPath(settings.file.path)},
          {"camera", camera.description.name},
          {"width", snapshot.layout.width},
          {"height", snapshot.layout.height},
          {"region", regionJson(settings.camera.correction.region)},
          {"format", formatName(snapshot.layout.format)},
          {"bayer", bayerName(snapshot.layout.bayer)},
          {"exposureUs", camera.settings.exposureUs},
          {"gain", *camera.settings.gain},
          {"offset", camera.settings.offset},
          {"bin", camera.settings.bin},
          {"temperature", orNull(snapshot.temperature)},
          {"failedReads", snapshot.failedReads}};
}

std::string textOf(const SnapSettings& settings, const Snapshot& snapshot) {
  return "Took a frame of " + frameText(snapshot.layout, settings.camera.correction.region) + ": " +
         inQuotes(utf8FromPath(settings.file.path)) + ".\n" + failedReadsText(snapshot.failedReads);
}

int snap(const SnapSettings& settings) {
  requireUsable(settings.file);
  const ChosenCamera camera = findCamera(settings.camera);
  const Snapshot snapshot = takeSnapshot(settings, camera);
  if (!hasEnding(settings.file.path, ".png")) {
    writeFits(settings.file.path, snapshot.frame.pixels,
              fitsDescription(settings, camera, snapshot), settings.file.existing());
  } else {
    StatusLine line(settings.reporting.isQuiet);
    constexpr std::size_t large = 8'000'000;  // bytes; compression takes noticeable time
    if (snapshot.frame.pixels.size() > large) {
      line.show("Making the picture");
    }
    constexpr int anySize = 1 << 20;
    writePng(settings.file.path, previewOf(snapshot.frame.pixels, snapshot.layout, anySize),
             settings.file.existing());
  }
  report(settings.reporting, jsonOf(settings, camera, snapshot), textOf(settings, snapshot));
  return 0;
}

}  // namespace

const Command snapCommand{
    .name = "snap",
    .description = "Take one frame as a PNG or FITS file",
    .explanation =
        R"(A PNG file shows the frame in colour and brightened, with 8 bits. A FITS file
holds its samples as they are, a Bayer pattern unchanged (BAYERPAT), RGB as
three planes, rows from the top (ROWORDER), with the settings, the temperature
and the time in its header.)",
    .examples =
        R"(  oc_capture snap --sdk C:\sdk --camera 0 --exposure 2s --out m31.png
  oc_capture snap --sdk C:\sdk --camera ASI294 --format raw16 --discard 2 --out dark.fits)",
    .prepare = prepareCommand<SnapSettings, addOptions, snap>,
};

}  // namespace orvane::host
