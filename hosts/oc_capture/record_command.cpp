// "oc_capture record": a camera's frames, written into a SER file.
#include <chrono>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <string>

#include "formats/png_writer.hpp"
#include "imaging/stretch.hpp"
#include "oc_capture/camera_stream.hpp"
#include "oc_capture/recording_session.hpp"
#include "session/causes.hpp"
#include "session/recording_log.hpp"
#include "system/argument_values.hpp"
#include "system/file.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr const char* previewEnding = "-preview.png";

constexpr RunNames runNames{"recording", "recordings",
                            "Number of recordings; each has its own file,\n"
                            "FILE-001.ser and so on, or a name by --name"};

void addOptions(CommandOptions& options, RecordSettings& record) {
  addCameraOptions(options, record.camera);
  addNameOptions(options, record.names,
                 {"FILE.ser", "The recording; with --name the directory for it",
                  "Written into the files, {observer};\nat most 40 bytes in FILE.ser"});
  options.add("--telescope", "NAME", "Written into the files;\nat most 40 bytes in FILE.ser",
              intoText(record.telescope));
  options.addFlag("--no-preview", record.hasNoPreview, "Leave out the picture of the last frame");
  options.addFlag("--no-log", record.hasNoLog, "Leave out the settings log");
  addLengthOptions(options, record.length, "Number of frames to record", "Length of the recording");
  addSequenceOptions(options, record.sequence, runNames);
  constexpr int mostMegabytes = 1 << 20;
  options.add("--memory", "MB", "For frames that wait to be written;\n256 if not given",
              intoNumber(record.memoryMegabytes, 1, mostMegabytes));
  addReportingOptions(options, record.reporting);
}

Json jsonOf(const RecordSettings& settings, const ChosenCamera& camera,
            const Recording& recording) {
  const double rate = recording.framesPerSecond();
  const bool wasOpen = recording.layout.width > 0;
  Json document{{"file", orNull(utf8FromPath(recording.file))},
                {"preview", orNull(utf8FromPath(recording.preview))},
                {"log", orNull(utf8FromPath(recording.log))},
                {"camera", orNull(camera.description.name)},
                {"width", ifKnown(wasOpen, recording.layout.width)},
                {"height", ifKnown(wasOpen, recording.layout.height)},
                {"region", regionJson(settings.camera.correction.region)},
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
           {"stoppedBelow", recording.isDiskReserved},
           {"error", recording.error},
           {"explanation", explained(recording.error)}});
  return document;
}

std::string textOf(const RecordSettings& settings, const Recording& recording) {
  const std::string rate =
      recording.frames > 1 ? " (" + decimal(recording.framesPerSecond(), 1) + " fps)" : "";
  std::string text = "Recorded " + std::to_string(recording.frames) + " frames of " +
                     frameText(recording.layout, settings.camera.correction.region) + " in " +
                     decimal(recording.seconds, 1) + " s" + rate + " to " +
                     inQuotes(utf8FromPath(recording.file));
  if (!recording.preview.empty()) {
    text += "; preview " + inQuotes(utf8FromPath(recording.preview));
  }
  if (!recording.log.empty()) {
    text += "; settings " + inQuotes(utf8FromPath(recording.log));
  }
  text += ".\n";
  if (recording.isDiskReserved) {
    text += "It ended before less than " + sizeText(*settings.sequence.leastFree) +
            " were free on the disk.\n";
  }
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

// The picture and the settings log beside a recording, as far as they are wanted.
OutputPath previewFile(const RecordSettings& settings, const OutputPath& file) {
  return settings.hasNoPreview ? OutputPath{} : companionOf(file, previewEnding);
}
OutputPath logFile(const RecordSettings& settings, const OutputPath& file) {
  return settings.hasNoLog ? OutputPath{} : companionOf(file, settingsLogEnding);
}

std::string logText(const RecordSettings& settings, const ChosenCamera& camera,
                    const Recording& recording) {
  const std::chrono::microseconds exposure(camera.settings.exposureUs);
  return settingsLog({.program = "oc_capture " ORVANE_VERSION,
                      .sdks = camera.sdks,
                      .camera = camera.description,
                      .file = utf8FromPath(recording.file.filename()),
                      .observer = settings.names.observer,
                      .telescope = settings.telescope,
                      .target = settings.names.target,
                      .filter = settings.names.filter,
                      .layout = recording.layout,
                      .region = settings.camera.correction.region,
                      .settings = camera.settings,
                      .temperatureAtStart = recording.temperatureAtStart,
                      .temperatureAtEnd = recording.temperatureAtEnd,
                      .start = recording.times.first - exposure,
                      .end = recording.times.last,
                      .frames = recording.frames,
                      .droppedFrames = recording.droppedFrames,
                      .gaps = recording.times.count.gaps,
                      .failedReads = recording.failedReads,
                      .framesPerSecond = recording.framesPerSecond(),
                      .error = recording.error});
}

// Writes a file beside the recording, if it is wanted. Returns its path. A failure is reported as
// the recording's, but does not hide an earlier one.
std::filesystem::path writeBeside(const OutputPath& file, Recording& recording,
                                  const std::function<void()>& write) {
  if (file.isGiven()) {
    try {
      write();
      return file.path;
    } catch (const std::exception& error) {
      recording.error = recording.error.empty() ? error.what() : recording.error;
    }
  }
  return {};
}

void writeLog(const OutputPath& log, const std::string& text) {
  OutputFile file(log.path, log.existing());
  file.writeAt(0, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  file.close();
}

RunResult recordRun(const RecordSettings& settings, const ChosenCamera& camera,
                    const OutputPath& file) {
  Recording recording;
  const std::string failure = failureOf([&] { recording = recordOnce(settings, camera, file); });
  if (!failure.empty()) {
    recording.error = failure;
  }
  if (recording.error.empty() && recording.frames == 0) {
    recording.error = stopRequested() ? "Stopped before a frame came."
                      : recording.isDiskReserved
                          ? "The disk has no room for a frame above --stop-below."
                          : "No frame came before the recording's end.";
  }
  const bool isRecorded = recording.error.empty();
  if (recording.frames > 0) {
    const OutputPath log = logFile(settings, file);
    const std::string text = logText(settings, camera, recording);
    recording.log = writeBeside(log, recording, [&] { writeLog(log, text); });
  }
  if (isRecorded) {
    const OutputPath preview = previewFile(settings, file);
    recording.preview = writeBeside(preview, recording, [&] {
      writePng(preview.path, previewOf(recording.lastPixels, recording.layout), preview.existing());
    });
  }
  RunResult result;
  result.document = jsonOf(settings, camera, recording);
  if (isRecorded) {
    result.text = textOf(settings, recording);
  } else if (recording.frames > 0) {
    result.note = std::to_string(recording.frames) + " frames are in " +
                  inQuotes(utf8FromPath(recording.file)) + ", which is a valid recording.\n";
  }
  result.failure = recording.error;
  result.endsSequence = recording.isDiskReserved;
  return result;
}

void requireUsable(const RecordSettings& settings, const OutputPath& file) {
  requireUsable(file);
  requireUsable(previewFile(settings, file));
  requireUsable(logFile(settings, file));
}

int record(const RecordSettings& given) {
  RecordSettings settings = given;
  if (!settings.length.frames && !settings.length.microseconds) {
    settings.length.frames = 100;
  }
  RunFiles files(settings.names, {".ser"}, ".ser", {previewEnding, settingsLogEnding},
                 settings.sequence.count);
  for (const OutputPath& file : files.known()) {
    requireUsable(settings, file);
  }
  requirePossible(settings.sequence, files.directory());
  ChosenCamera camera;
  const std::string failure = failureOf([&] { camera = findCamera(settings.camera); });
  return runSequence(settings.sequence, settings.reporting, runNames, files.directory(),
                     [&](int run) -> RunResult {
                       if (!camera.isFound()) {
                         Recording none;
                         none.error = failure;
                         return {.document = jsonOf(settings, camera, none), .failure = failure};
                       }
                       const OutputPath file = files.file(run, camera.description.name);
                       return recordRun(settings, camera, file);
                     });
}

}  // namespace

const Command recordCommand{
    .name = "record",
    .description = "Record a camera's frames into a SER file",
    .explanation =
        R"(A recording ends after --frames frames or --seconds seconds, whichever comes
first (100 frames if neither is given), before the disk has less free space than
--stop-below, or on Ctrl-C. FILE.ser appears with its first
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
brightened; --no-preview leaves it out. FILE.txt is the settings log: camera,
settings, temperatures and times; --no-log leaves it out. While it records, the
time stamps are in FILE.ser.orvane-times.

A --name such as "{date}_{time}_{target}_{filter}" makes the names of these
files. A field without a value is left out with the separator after it. If a
name is in use, _2, _3 and so on is added, unless --overwrite is given.

With --count, there are several recordings. --every is the time from start to
start, counted from the first, so that it does not drift. A recording that takes
longer delays the next, which then starts at once. The camera is opened for each
recording. A failure or Ctrl-C ends the sequence.)",
    .examples =
        R"(  oc_capture record --sdk C:\sdk --camera ASI294 --exposure 20ms --seconds 60 --out jupiter.ser
  oc_capture record --sdk C:\sdk --camera 0 --format raw16 --discard 3 --frames 500 --out moon.ser --json
  oc_capture record --sdk C:\sdk --camera 0 --region 640,300,640x480 --name {time}_{target} --target Jupiter --out D:\night
  oc_capture record --sdk C:\sdk --camera 0 --seconds 30 --count 10 --every 120s --stop-below 2GB --out rotation.ser)",
    .whenDone = "recorded, also after Ctrl-C",
    .whenFailed = "no camera, no frame, or a failure",
    .prepare = prepareCommand<RecordSettings, addOptions, record>,
};

}  // namespace orvane::host
