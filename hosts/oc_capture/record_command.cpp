// "oc_capture record": a camera's frames, written into a SER file.
#include <exception>
#include <iostream>
#include <string>

#include "formats/png_writer.hpp"
#include "imaging/stretch.hpp"
#include "oc_capture/recording_session.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

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

Json jsonOf(const RecordSettings& settings, const ChosenCamera& camera,
            const Recording& recording) {
  const double rate = recording.framesPerSecond();
  Json document{{"file", recording.frames > 0 ? Json(utf8FromPath(settings.file.path)) : Json()},
                {"preview", orNull(utf8FromPath(recording.preview))},
                {"camera", camera.description.name},
                {"width", recording.layout.width},
                {"height", recording.layout.height},
                {"region", regionJson(settings.camera.correction.region)},
                {"format", formatName(recording.layout.format)},
                {"bayer", bayerName(recording.layout.bayer)},
                {"frames", recording.frames},
                {"droppedFrames", recording.droppedFrames},
                {"silentWaits", recording.silentWaits},
                {"failedReads", recording.failedReads}};
  document.update(gapsJson(recording.times.count));
  document.update(
      Json{{"seconds", recording.seconds},
           {"secondsUntilWritten", recording.secondsUntilWritten},
           {"framesPerSecond", rate},
           {"megabytesPerSecond", rate * static_cast<double>(frameBytes(recording.layout)) / 1e6},
           {"mostFramesWaiting", recording.mostFramesWaiting},
           {"framesThatMayWait", recording.framesThatMayWait},
           {"peakMemoryBytes", peakMemory()},
           {"error", recording.error}});
  return document;
}

std::string textOf(const RecordSettings& settings, const Recording& recording) {
  const std::string rate =
      recording.frames > 1 ? " (" + decimal(recording.framesPerSecond(), 1) + " fps)" : "";
  std::string text = "Recorded " + std::to_string(recording.frames) + " frames of " +
                     frameText(recording.layout, settings.camera.correction.region) + " in " +
                     decimal(recording.seconds, 1) + " s" + rate + " to " +
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
    writePng(preview.path, previewOf(recording.lastPixels, recording.layout), preview.existing());
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
  const ChosenCamera camera = findCamera(settings.camera);
  Recording recording = recordOnce(settings, camera);
  if (recording.error.empty() && recording.frames == 0) {
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
    .prepare = prepareCommand<RecordSettings, addOptions, record>,
};

}  // namespace orvane::host
