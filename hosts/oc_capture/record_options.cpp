// What "oc_capture record" is told on the command line.
#include "oc_capture/record_options.hpp"

#include <CLI/CLI.hpp>

#include "formats/ser_writer.hpp"
#include "oc_capture/output_path.hpp"
#include "system/argument_values.hpp"
#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr const char* explanation =
    "A recording ends after --frames frames (100 when neither that nor --seconds is given), after\n"
    "--seconds seconds, or on Ctrl-C; whatever ends it, the file is valid. Frames are waited for\n"
    "twice the exposure and 500 ms; five such waits without a frame end the recording with an "
    "error.\n"
    "\n"
    "A slow disk does not hold up the camera: frames that it cannot take at once wait in memory, "
    "in\n"
    "--memory megabytes (but at least three frames), and only when these are full are frames "
    "lost,\n"
    "and counted. While it records, the program needs little memory beside that: two frames and\n"
    "8 bytes for each recorded one.\n"
    "\n"
    "FILE.ser holds the frames as the camera delivers them, 16-bit ones as 16 bits whatever the\n"
    "converter has, and each frame's time of arrival. FILE.png, written beside it, shows the last\n"
    "frame, in colour and brightened.";

}  // namespace

RecordOptions::RecordOptions(CLI::App& app)
    : Subcommand(app, "record", "Record a camera's frames into a SER file",
                 "oc_capture record --sdk C:\\sdk --camera ASI294 --exposure 20ms --seconds 60 "
                 "--out jupiter.ser\n"
                 "oc_capture record --sdk C:\\sdk --camera 0 --format raw16 --discard 3 --frames "
                 "500 --out moon.ser --json",
                 explanation) {
  addCamera(camera_).required();
  add("--out", file_, "FILE.ser", "The recording").required();
  parser().add_flag("--overwrite", record_.mayOverwrite, "Replace FILE.ser if it exists");
  add("--frames", frames_, "N", "Number of frames to record");
  add("--seconds", seconds_, "S", "Length of the recording");
  add("--memory", memory_, "MB", "For frames that wait to be written; 256 if not given");
  add("--observer", record_.observer, "NAME", "Written into the file; at most 40 bytes");
  add("--telescope", record_.telescope, "NAME", "Written into the file; at most 40 bytes");
  addReporting(record_.reporting);
}

RecordCommand RecordOptions::command() const {
  RecordCommand record = record_;
  record.camera = readCameraTexts(camera_);
  if (frames_ && seconds_) {
    throw UsageError("--frames and --seconds cannot be given together.");
  }
  if (seconds_) {
    record.durationUs = parseSeconds("--seconds", *seconds_);
  } else {
    record.frames =
        readOptionalNumber("--frames", frames_, 1, SerWriter::maxFrameCount).value_or(100);
  }
  constexpr int mostMegabytes = 1 << 20;
  record.waitingBytes =
      std::int64_t{1'000'000} * parseWholeNumber("--memory", memory_, 1, mostMegabytes);
  record.file = readOutputPath(file_, {".ser"});
  return record;
}

}  // namespace orvane::host
