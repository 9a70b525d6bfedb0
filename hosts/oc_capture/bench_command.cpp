// "oc_capture bench": how fast cameras deliver.
#include "oc_capture/bench_command.hpp"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "formats/png_writer.hpp"
#include "oc_capture/bench_chart.hpp"
#include "oc_capture/camera_options.hpp"
#include "oc_capture/camera_stream.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/status_line.hpp"
#include "oc_capture/text_table.hpp"
#include "session/camera_choice.hpp"
#include "session/frame_timing.hpp"
#include "system/argument_values.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct BenchSettings {
  CameraOptions camera;  // with no camera: all; with no format: all that the camera has
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
  addOutputOptions(
      options, bench.chart,
      {"CHART.png", "The results as a chart", "Replace CHART.png if it exists", {".png"}});
  addReportingOptions(options, bench.reporting);
}

using Clock = std::chrono::steady_clock;

double secondsBetween(Clock::time_point start, Clock::time_point end) {
  return std::chrono::duration<double>(end - start).count();
}

// The measurements to make. All options are checked against their cameras before the first camera
// is opened.
std::vector<ChosenCamera> plannedMeasurements(const BenchSettings& settings) {
  const oc::Scan catalogue = findCameras(settings.camera.sdkDirectory);
  std::vector<oc::CameraInfo> cameras = catalogue.cameras;
  if (!settings.camera.camera.empty()) {
    cameras = {chooseCamera(catalogue.cameras, settings.camera.camera)};
  }
  std::vector<ChosenCamera> planned;
  for (const oc::CameraInfo& camera : cameras) {
    CameraOptions options = settings.camera;
    if (options.format) {
      planned.push_back({camera, settingsFor(options, camera)});
      continue;
    }
    for (const PixelFormat format : camera.formats) {
      options.format = format;
      planned.push_back({camera, settingsFor(options, camera)});
    }
  }
  return planned;
}

// One measurement: one camera in one format.
class Bench {
 public:
  Bench(const BenchSettings& settings, const ChosenCamera& camera, StatusLine& line)
      : settings_(settings), camera_(camera), line_(line) {
    result_.camera = camera.description.name;
    result_.layout = {camera.settings.width, camera.settings.height, camera.settings.format,
                      BayerPattern::None};
  }

  Measurement run() {
    try {
      measure();
    } catch (const oc::Error& error) {
      result_.error = error.what();
    }
    summarise();
    return result_;
  }

 private:
  void summarise() {
    std::sort(waits_.begin(), waits_.end());
    result_.frames = static_cast<std::int64_t>(waits_.size());
    const double elapsed = result_.seconds > 0 ? result_.seconds : 1;
    result_.framesPerSecond = static_cast<double>(result_.frames) / elapsed;
    result_.megabytesPerSecond =
        result_.framesPerSecond * static_cast<double>(frameBytes(result_.layout)) / 1e6;
    result_.waitP50 = quantile(waits_, 0.5) * 1e3;
    result_.waitP90 = quantile(waits_, 0.9) * 1e3;
    result_.waitP99 = quantile(waits_, 0.99) * 1e3;
    result_.waitLongest = quantile(waits_, 1) * 1e3;
  }

  void measure() {
    CameraStream stream(camera_, settings_.camera, std::nullopt);
    result_.layout = stream.state().layout;
    stream.discard(settings_.camera.discard, line_);
    stream.discard(1, line_);
    const std::uint64_t notReadyBefore = stream.state().emptyReads;
    const Clock::time_point start = stream.start();
    const Clock::time_point end = start + std::chrono::microseconds(settings_.durationUs);
    Clock::time_point last = start;
    while (!stopRequested() && Clock::now() < end) {
      if (const oc::Frame frame = stream.next()) {
        waits_.push_back(secondsBetween(last, frame.arrival()));
        last = frame.arrival();
        correctFrame(std::span(frame.data(), frame.size()), frame.layout(),
                     settings_.camera.correction);
      }
      result_.notReadyAnswers =
          static_cast<std::int64_t>(stream.state().emptyReads - notReadyBefore);
      result_.seconds = secondsBetween(start, last);
      if (line_.isDue()) {
        line_.show(result_.camera + ", " + formatName(result_.layout.format) + ": " +
                   std::to_string(waits_.size()) + " frames in " +
                   decimal(secondsBetween(start, Clock::now()), 1) + " s");
      }
    }
    if (waits_.empty() && !stopRequested()) {
      throw oc::Error("no second frame came in time");
    }
  }

  const BenchSettings& settings_;
  const ChosenCamera& camera_;
  StatusLine& line_;
  Measurement result_;
  std::vector<double> waits_;  // seconds
};

TableRow rowOf(const Measurement& result) {
  return {result.camera,
          formatName(result.layout.format),
          std::to_string(result.layout.width) + " x " + std::to_string(result.layout.height),
          decimal(result.framesPerSecond, 1),
          decimal(result.megabytesPerSecond, 1),
          std::to_string(result.notReadyAnswers),
          decimal(result.waitP50, 2),
          decimal(result.waitP90, 2),
          decimal(result.waitP99, 2),
          decimal(result.waitLongest, 2)};
}

void reportText(const BenchSettings& settings, const std::vector<Measurement>& results) {
  std::vector<TableRow> rows{{"Camera", "Format", "Size", "Frames/s", "MB/s", "Not ready",
                              "Wait p50 ms", "p90", "p99", "Longest"}};
  std::transform(results.begin(), results.end(), std::back_inserter(rows), rowOf);
  constexpr std::size_t textColumns = 3;
  std::cout << textTable(rows, textColumns);
  if (settings.chart.isGiven()) {
    std::cout << "Chart: " << inQuotes(utf8FromPath(settings.chart.path)) << "\n";
  }
  std::cout << std::flush;
}

void reportJson(const BenchSettings& settings, const std::vector<Measurement>& results) {
  using Json = nlohmann::ordered_json;
  Json document;
  document["exposureUs"] = settings.camera.exposureUs;
  document["measurements"] = Json::array();
  for (const Measurement& result : results) {
    Json entry;
    entry["camera"] = result.camera;
    entry["format"] = formatName(result.layout.format);
    entry["width"] = result.layout.width;
    entry["height"] = result.layout.height;
    entry["frames"] = result.frames;
    entry["seconds"] = result.seconds;
    entry["framesPerSecond"] = result.framesPerSecond;
    entry["megabytesPerSecond"] = result.megabytesPerSecond;
    entry["notReadyAnswers"] = result.notReadyAnswers;
    entry["waitMilliseconds"] = {{"p50", result.waitP50},
                                 {"p90", result.waitP90},
                                 {"p99", result.waitP99},
                                 {"max", result.waitLongest}};
    entry["error"] = result.error;
    document["measurements"].push_back(entry);
  }
  document["chart"] = settings.chart.isGiven() ? Json(utf8FromPath(settings.chart.path)) : Json();
  std::cout << document.dump(2) << "\n" << std::flush;
}

// Writes what failed to standard error. Returns the exit status.
int reportFailures(const std::vector<Measurement>& results) {
  int status = 0;
  for (const Measurement& result : results) {
    if (!result.error.empty()) {
      std::cerr << "oc_capture: " << result.camera << ", " << formatName(result.layout.format)
                << ": " << result.error << "\n";
      status = 1;
    }
  }
  return status;
}

// Measures one after another; after a failure it goes on with the next.
std::vector<Measurement> measureAll(const BenchSettings& settings) {
  const std::vector<ChosenCamera> planned = plannedMeasurements(settings);
  std::vector<Measurement> results;
  StatusLine line(settings.reporting.isQuiet);
  for (const ChosenCamera& camera : planned) {
    if (!stopRequested()) {
      results.push_back(Bench(settings, camera, line).run());
    }
  }
  return results;
}

int bench(const BenchSettings& settings) {
  requireUsable(settings.chart);
  catchStopRequests();
  useFineSleep();
  const std::vector<Measurement> results = measureAll(settings);
  if (settings.chart.isGiven()) {
    writePng(settings.chart.path, benchChart(results, settings.camera.exposureUs));
  }
  if (settings.reporting.asJson) {
    reportJson(settings, results);
  } else if (!settings.reporting.isQuiet) {
    reportText(settings, results);
  }
  return reportFailures(results);
}

constexpr const char* explanation =
    R"(Without --camera all cameras are measured, without --format all formats of each.
What is measured: frames and megabytes a second, the answers that no frame was
ready, and the waits from one frame to the next: the median (p50), what 90 and
99 of 100 waits do not exceed, and the longest. The clock starts with the first
frame after those of --discard.)";

constexpr const char* examples =
    R"(  oc_capture bench --sdk C:\sdk --exposure 1ms --out rates.png
  oc_capture bench --sdk C:\sdk --camera ASI294 --format raw16 --seconds 10)";

}  // namespace

const Command benchCommand{
    "bench",
    "Measure how fast cameras deliver",
    explanation,
    examples,
    prepareCommand<BenchSettings, addOptions, bench>,
};

}  // namespace orvane::host
