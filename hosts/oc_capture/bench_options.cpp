// What "oc_capture bench" is told on the command line.
#include "oc_capture/bench_options.hpp"

#include <CLI/CLI.hpp>

#include "oc_capture/output_path.hpp"
#include "system/argument_values.hpp"

namespace orvane::host {

namespace {

constexpr const char* explanation =
    "Without --camera all cameras are measured, without --format all formats of each. What is\n"
    "measured: frames and megabytes a second, the answers that no frame was ready, and the waits\n"
    "from one frame to the next: the median (p50), what 90 and 99 of 100 waits do not exceed, and\n"
    "the longest. The clock starts with the first frame after those of --discard.";

}  // namespace

BenchOptions::BenchOptions(CLI::App& app)
    : Subcommand(app, "bench", "Measure how fast cameras deliver",
                 "oc_capture bench --sdk C:\\sdk --exposure 1ms --out rates.png\n"
                 "oc_capture bench --sdk C:\\sdk --camera ASI294 --format raw16 --seconds 10",
                 explanation) {
  addCamera(camera_);
  add("--seconds", seconds_, "S", "Length of each measurement; 2 if not given");
  add("--out", chart_, "CHART.png", "The results as a chart");
  parser().add_flag("--overwrite", bench_.mayOverwrite, "Replace CHART.png if it exists");
  addReporting(bench_.reporting);
}

BenchCommand BenchOptions::command() const {
  BenchCommand bench = bench_;
  bench.camera = readCameraTexts(camera_);
  bench.durationUs = parseSeconds("--seconds", seconds_);
  if (chart_) {
    bench.chart = readOutputPath(*chart_, {".png"});
  }
  return bench;
}

}  // namespace orvane::host
