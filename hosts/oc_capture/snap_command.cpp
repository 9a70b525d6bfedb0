// "oc_capture snap": one frame of a camera, written into a PNG or FITS file.
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

#include "formats/fits_writer.hpp"
#include "formats/png_writer.hpp"
#include "imaging/stretch.hpp"
#include "oc_capture/camera_options.hpp"
#include "oc_capture/camera_stream.hpp"
#include "oc_capture/output_names.hpp"
#include "oc_capture/report.hpp"
#include "oc_capture/sequence.hpp"
#include "oc_capture/status_line.hpp"
#include "session/causes.hpp"
#include "system/argument_values.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct SnapSettings {
  CameraOptions camera;
  OutputNames names;
  SequenceOptions sequence;
  std::string kind;  // "png" or "fits", for names from a template; empty if not given
  std::string telescope;
  Reporting reporting;
};

constexpr RunNames runNames{"picture", "pictures",
                            "Number of pictures; each has its own file,\n"
                            "FILE-001.png and so on, or a name by --name"};

void addOptions(CommandOptions& options, SnapSettings& snap) {
  addCameraOptions(options, snap.camera);
  addNameOptions(options, snap.names,
                 {"FILE", "The file: .png, .fits or .fit;\nwith --name the directory for it",
                  "Written into a FITS file, {observer}"});
  options.add(
      "--as", "KIND", "With --name: png or fits; png if not given",
      [&snap](const char* option, const std::string& text) {
        if (text != "png" && text != "fits") {
          throw UsageError(std::string(option) + " needs png or fits, not " + inQuotes(text) + ".");
        }
        snap.kind = text;
      });
  options.add("--telescope", "NAME", "Written into a FITS file", intoText(snap.telescope));
  addSequenceOptions(options, snap.sequence, runNames);
  addReportingOptions(options, snap.reporting);
}

using Clock = std::chrono::steady_clock;

// A frame and what belongs to it, after the camera is closed.
struct Snapshot {
  std::filesystem::path file;  // empty if it was not written
  FrameLayout layout;
  CorrectedFrame frame;
  std::optional<double> temperature;
  std::uint64_t failedReads = 0;
  std::string error;  // what failed, or empty
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
      return Snapshot{"", stream.layout(), frame, state.temperature, state.failedReads, ""};
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
          .observer = settings.names.observer,
          .telescope = settings.telescope,
          .target = settings.names.target,
          .filter = settings.names.filter};
}

Json jsonOf(const SnapSettings& settings, const ChosenCamera& camera, const Snapshot& snapshot) {
  const bool isFound = camera.isFound();
  const bool hasFrame = snapshot.layout.width > 0;
  return {{"file", orNull(utf8FromPath(snapshot.file))},
          {"camera", orNull(camera.description.name)},
          {"width", ifKnown(hasFrame, snapshot.layout.width)},
          {"height", ifKnown(hasFrame, snapshot.layout.height)},
          {"region", regionJson(settings.camera.correction.region)},
          {"format", ifKnown(isFound, formatName(camera.settings.format))},
          {"bayer", ifKnown(hasFrame, bayerName(snapshot.layout.bayer))},
          {"exposureUs", ifKnown(isFound, camera.settings.exposureUs)},
          {"gain", orNull(camera.settings.gain)},
          {"offset", ifKnown(isFound, camera.settings.offset)},
          {"bin", ifKnown(isFound, camera.settings.bin)},
          {"temperature", orNull(snapshot.temperature)},
          {"failedReads", ifKnown(hasFrame, snapshot.failedReads)},
          {"error", snapshot.error},
          {"explanation", explained(snapshot.error)}};
}

std::string textOf(const SnapSettings& settings, const OutputPath& file, const Snapshot& snapshot) {
  return "Took a frame of " + frameText(snapshot.layout, settings.camera.correction.region) + ": " +
         inQuotes(utf8FromPath(file.path)) + ".\n" + failedReadsText(snapshot.failedReads);
}

void writePicture(const SnapSettings& settings, const ChosenCamera& camera, const OutputPath& file,
                  const Snapshot& snapshot) {
  if (!hasEnding(file.path, ".png")) {
    writeFits(file.path, snapshot.frame.pixels, fitsDescription(settings, camera, snapshot),
              file.existing());
    return;
  }
  StatusLine line(settings.reporting.isQuiet);
  constexpr std::size_t large = 8'000'000;  // bytes; compression takes noticeable time
  if (snapshot.frame.pixels.size() > large) {
    line.show("Making the picture");
  }
  constexpr int anySize = 1 << 20;
  writePng(file.path, previewOf(snapshot.frame.pixels, snapshot.layout, anySize), file.existing());
}

RunResult snapRun(const SnapSettings& settings, const ChosenCamera& camera,
                  const OutputPath& file) {
  Snapshot snapshot;
  snapshot.error = failureOf([&] {
    snapshot = takeSnapshot(settings, camera);
    writePicture(settings, camera, file, snapshot);
    snapshot.file = file.path;
  });
  RunResult result{.document = jsonOf(settings, camera, snapshot), .failure = snapshot.error};
  if (snapshot.error.empty()) {
    result.text = textOf(settings, file, snapshot);
  }
  return result;
}

int snap(const SnapSettings& settings) {
  if (!settings.kind.empty() && settings.names.nameTemplate.empty()) {
    throw UsageError("--as needs --name; without it the ending of --out says the same.");
  }
  RunFiles files(settings.names, {".png", ".fits", ".fit"},
                 settings.kind == "fits" ? ".fits" : ".png", {}, settings.sequence.count);
  for (const OutputPath& file : files.known()) {
    requireUsable(file);
  }
  requirePossible(settings.sequence, files.directory());
  ChosenCamera camera;
  const std::string failure = failureOf([&] { camera = findCamera(settings.camera); });
  return runSequence(settings.sequence, settings.reporting, runNames, files.directory(),
                     [&](int run) -> RunResult {
                       if (!camera.isFound()) {
                         Snapshot none;
                         none.error = failure;
                         return {.document = jsonOf(settings, camera, none), .failure = failure};
                       }
                       const OutputPath file = files.file(run, camera.description.name);
                       return snapRun(settings, camera, file);
                     });
}

}  // namespace

const Command snapCommand{
    .name = "snap",
    .description = "Take one frame as a PNG or FITS file",
    .explanation =
        R"(A PNG file shows the frame in colour and brightened, with 8 bits. A FITS file
holds its samples as they are, a Bayer pattern unchanged (BAYERPAT), RGB as
three planes, rows from the top (ROWORDER), with the settings, the temperature
and the time in its header.

A --name such as "{date}_{time}_{target}" makes the file's name. A field without
a value is left out with the separator after it. If a name is in use, _2, _3 and
so on is added, unless --overwrite is given.

With --count, there are several pictures: a time-lapse. --every is the time from
start to start, counted from the first, so that it does not drift. A picture
that takes longer delays the next, which then starts at once. The camera is
opened for each picture. A failure or Ctrl-C ends the sequence.)",
    .examples =
        R"(  oc_capture snap --sdk C:\sdk --camera 0 --exposure 2s --out m31.png
  oc_capture snap --sdk C:\sdk --camera ASI294 --format raw16 --discard 2 --out dark.fits
  oc_capture snap --sdk C:\sdk --camera 0 --exposure 5s --count 100 --every 60s --out clouds.png)",
    .whenDone = "frame saved",
    .whenFailed = "no camera, no frame, or a failure",
    .prepare = prepareCommand<SnapSettings, addOptions, snap>,
};

}  // namespace orvane::host
