// What "oc_capture watch" is told on the command line.
#include "oc_capture/watch_options.hpp"

#include <CLI/CLI.hpp>
#include <limits>

#include "oc_capture/output_path.hpp"
#include "system/argument_values.hpp"
#include "system/failures.hpp"

namespace orvane::host {

namespace {

constexpr const char* explanation =
    "Shows the sensor's temperature and, of the last frame, the mean, the smallest and the "
    "largest\n"
    "sample and the number of saturated pixels. Ends after --frames frames, after --seconds "
    "seconds,\n"
    "or on Ctrl-C. A plot of a long watch joins neighbouring frames.";

}  // namespace

WatchOptions::WatchOptions(CLI::App& app)
    : Subcommand(app, "watch", "Watch a camera's temperature and the brightness of its frames",
                 "oc_capture watch --sdk C:\\sdk --camera 0 --exposure 500ms\n"
                 "oc_capture watch --sdk C:\\sdk --camera 2600MM --seconds 600 --out cooling.png",
                 explanation) {
  addCamera(camera_).required();
  add("--frames", frames_, "N", "Number of frames to look at");
  add("--seconds", seconds_, "S", "Length of the watch");
  add("--out", plot_, "PLOT.png", "All of it as a plot at the end");
  parser().add_flag("--overwrite", watch_.mayOverwrite, "Replace PLOT.png if it exists");
  addReporting(watch_.reporting);
}

WatchCommand WatchOptions::command() const {
  WatchCommand watch = watch_;
  watch.camera = readCameraTexts(camera_);
  if (frames_ && seconds_) {
    throw UsageError("--frames and --seconds cannot be given together.");
  }
  watch.frames = readOptionalNumber("--frames", frames_, 1, std::numeric_limits<int>::max());
  if (seconds_) {
    watch.durationUs = parseSeconds("--seconds", *seconds_);
  }
  if (plot_) {
    watch.plot = readOutputPath(*plot_, {".png"});
  }
  return watch;
}

}  // namespace orvane::host
