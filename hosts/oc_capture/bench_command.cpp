// "oc_capture bench": how fast cameras deliver.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "formats/png_writer.hpp"
#include "oc_capture/bench_chart.hpp"
#include "oc_capture/camera_options.hpp"
#include "oc_capture/camera_stream.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/report.hpp"
#include "oc_capture/status_line.hpp"
#include "session/camera_choice.hpp"
#include "session/causes.hpp"
#include "session/frame_timing.hpp"
#include "system/argument_values.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct BenchSettings {
  CameraOptions camera;  // without a camera: all; without a format: all that the camera has
  std::int64_t durationUs = 2'000'000;  // of each measurement
  OutputPath chart;
  Reporting reporting;
};

void addOptions(CommandOptions& options, BenchSettings& bench) {
  addCameraOptions(options, bench.camera, Presence::Optional);
  options.add("--seconds", "S", "Length of each measurement; 2 if not given",
              [&bench](const char* option, const std::string& text) {
                bench.durationUs = parseSeconds(option, text);
              });
  addOutputOptions(options, bench.chart, {"CHART.png", "The results as a chart", {".png"}});
  addReportingOptions(options, bench.reporting);
}

using Clock = std::chrono::steady_clock;

// The measurements to make. All options are checked against the cameras' descriptions before the
// first camera is opened.
std::vector<ChosenCamera> plannedMeasurements(const BenchSettings& settings) {
  const oc::Scan catalogue = findCameras(settings.camera.sdkDirectory);
  std::vector<oc::CameraInfo> cameras = catalogue.cameras;
  if (!settings.camera.camera.empty()) {
    cameras = {chooseCamera(catalogue.cameras, settings.camera.camera)};
  }
  std::vector<ChosenCamera> planned;
  for (const oc::CameraInfo& camera : cameras) {
    CameraOptions options = settings.camera;
    for (const PixelFormat format :
         options.format ? std::vector{*options.format} : camera.formats) {
      options.format = format;
      planned.push_back({camera, settingsFor(options, camera)});
    }
  }
  return planned;
}

void summarise(Measurement& result, std::vector<double>& waits) {
  std::sort(waits.begin(), waits.end());
  result.frames = static_cast<std::int64_t>(waits.size());
  const double elapsed = result.seconds > 0 ? result.seconds : 1;
  result.framesPerSecond = static_cast<double>(result.frames) / elapsed;
  result.megabytesPerSecond =
      result.framesPerSecond * static_cast<double>(frameBytes(result.layout)) / 1e6;
  result.waitP50 = quantile(waits, 0.5) * 1e3;
  result.waitP90 = quantile(waits, 0.9) * 1e3;
  result.waitP99 = quantile(waits, 0.99) * 1e3;
  result.waitLongest = quantile(waits, 1) * 1e3;
}

// Appends the seconds from frame to frame to `waits`. Throws oc::Error when the camera fails.
void measureWaits(const BenchSettings& settings, const ChosenCamera& camera, StatusLine& line,
                  Measurement& result, std::vector<double>& waits) {
  CameraStream stream(camera, settings.camera, std::nullopt);
  result.layout = stream.layout();
  stream.discard(settings.camera.discard, line);
  stream.discard(1, line);
  const std::uint64_t notReadyBefore = stream.state().emptyReads;
  const Clock::time_point start = stream.start();
  const Clock::time_point end = start + std::chrono::microseconds(settings.durationUs);
  Clock::time_point last = start;
  while (!stopRequested() && Clock::now() < end) {
    if (const CorrectedFrame next = stream.next()) {
      waits.push_back(secondsBetween(last, next.frame.arrival()));
      last = next.frame.arrival();
    }
    stream.tellFailures(line);
    const oc::CaptureState state = stream.state();
    result.notReadyAnswers = static_cast<std::int64_t>(state.emptyReads - notReadyBefore);
    result.failedReads = state.failedReads;
    result.seconds = secondsBetween(start, last);
    if (line.isDue()) {
      line.show(result.camera + ", " + formatName(result.layout.format) + ": " +
                std::to_string(waits.size()) + " frames in " +
                decimal(secondsBetween(start, Clock::now()), 1) + " s");
    }
  }
  if (waits.empty() && !stopRequested()) {
    throw oc::Error("no second frame came in time");
  }
}

// Measures one camera in one format. A failure is in the result.
Measurement measure(const BenchSettings& settings, const ChosenCamera& camera, StatusLine& line) {
  Measurement result;
  result.camera = camera.description.name;
  result.layout = {camera.settings.width, camera.settings.height, camera.settings.format,
                   BayerPattern::None};
  std::vector<double> waits;
  try {
    measureWaits(settings, camera, line, result, waits);
  } catch (const oc::Error& error) {
    result.error = error.what();
  }
  summarise(result, waits);
  return result;
}

TableRow rowOf(const Measurement& result) {
  return {result.camera,
          formatName(result.layout.format),
          dimensionsText(result.layout.width, result.layout.height),
          decimal(result.framesPerSecond, 1),
          decimal(result.megabytesPerSecond, 1),
          std::to_string(result.notReadyAnswers),
          decimal(result.waitP50, 2),
          decimal(result.waitP90, 2),
          decimal(result.waitP99, 2),
          decimal(result.waitLongest, 2)};
}

std::string textOf(const BenchSettings& settings, const std::vector<Measurement>& results) {
  std::vector<TableRow> rows{{"Camera", "Format", "Size", "Frames/s", "MB/s", "Not ready",
                              "Wait p50 ms", "p90", "p99", "Longest"}};
  std::transform(results.begin(), results.end(), std::back_inserter(rows), rowOf);
  constexpr std::size_t textColumns = 3;
  const std::string chart = utf8FromPath(settings.chart.path);
  std::uint64_t failedReads = 0;
  for (const Measurement& result : results) {
    failedReads += result.failedReads;
  }
  return textTable(rows, textColumns) + failedReadsText(failedReads) +
         (chart.empty() ? "" : "Chart: " + inQuotes(chart) + "\n");
}

Json jsonOf(const BenchSettings& settings, const std::vector<Measurement>& results,
            const std::string& error) {
  Json measurements = Json::array();
  for (const Measurement& result : results) {
    const Json waits{{"p50", result.waitP50},
                     {"p90", result.waitP90},
                     {"p99", result.waitP99},
                     {"max", result.waitLongest}};
    measurements.push_back({{"camera", result.camera},
                            {"format", formatName(result.layout.format)},
                            {"width", result.layout.width},
                            {"height", result.layout.height},
                            {"frames", result.frames},
                            {"seconds", result.seconds},
                            {"framesPerSecond", result.framesPerSecond},
                            {"megabytesPerSecond", result.megabytesPerSecond},
                            {"notReadyAnswers", result.notReadyAnswers},
                            {"failedReads", result.failedReads},
                            {"waitMilliseconds", waits},
                            {"error", result.error},
                            {"explanation", explained(result.error)}});
  }
  return {{"exposureUs", settings.camera.exposureUs},
          {"region", regionJson(settings.camera.correction.region)},
          {"measurements", measurements},
          {"chart", orNull(error.empty() ? utf8FromPath(settings.chart.path) : "")},
          {"error", error},
          {"explanation", explained(error)}};
}

// Measures one after another. A failure does not stop the next.
void measureAll(const BenchSettings& settings, std::vector<Measurement>& results) {
  const std::vector<ChosenCamera> planned = plannedMeasurements(settings);
  StatusLine line(settings.reporting.isQuiet);
  for (const ChosenCamera& camera : planned) {
    if (!stopRequested()) {
      results.push_back(measure(settings, camera, line));
    }
  }
}

int bench(const BenchSettings& settings) {
  requireUsable(settings.chart);
  std::vector<Measurement> results;
  const std::string error = failureOf([&] {
    measureAll(settings, results);
    if (settings.chart.isGiven()) {
      writePng(settings.chart.path, benchChart(results, settings.camera.exposureUs),
               settings.chart.existing());
    }
  });
  report(settings.reporting, jsonOf(settings, results, error),
         error.empty() ? textOf(settings, results) : "");
  int status = 0;
  for (const Measurement& result : results) {
    if (!result.error.empty()) {
      reportFailure(result.error, result.camera + ", " + formatName(result.layout.format) + ": ");
      status = 1;
    }
  }
  if (!error.empty()) {
    throw oc::Error(error);
  }
  return status;
}

}  // namespace

const Command benchCommand{
    .name = "bench",
    .description = "Measure how fast cameras deliver",
    .explanation =
        R"(Without --camera all cameras are measured, without --format all formats of each.
Measures frames and megabytes a second, the number of reads that returned no
frame, and the waits from one frame to the next: their median (p50), 90th and
99th percentile, and the longest. The clock starts with the first frame after
those of --discard.)",
    .examples =
        R"(  oc_capture bench --sdk C:\sdk --exposure 1ms --out rates.png
  oc_capture bench --sdk C:\sdk --camera ASI294 --format raw16 --seconds 10)",
    .whenDone = "measured, also until Ctrl-C",
    .whenFailed = "no camera, or a measurement failed",
    .prepare = prepareCommand<BenchSettings, addOptions, bench>,
};

}  // namespace orvane::host
