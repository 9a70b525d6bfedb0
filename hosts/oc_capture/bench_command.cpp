// "oc_capture bench": how fast cameras deliver.
#include "oc_capture/bench_command.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "formats/png_writer.hpp"
#include "oc_capture/bench_chart.hpp"
#include "oc_capture/capture_settings.hpp"
#include "oc_capture/chosen_camera.hpp"
#include "oc_capture/frame_source.hpp"
#include "oc_capture/measurement.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/status_line.hpp"
#include "session/camera_choice.hpp"
#include "session/camera_session.hpp"
#include "session/frame_timing.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using Clock = std::chrono::steady_clock;

double secondsBetween(Clock::time_point start, Clock::time_point end) {
  return std::chrono::duration<double>(end - start).count();
}

// What is to be measured, all of it held against its camera before the first is opened.
std::vector<ChosenCamera> plannedMeasurements(const BenchCommand& command) {
  const CameraCatalogue catalogue = findCameras(command.camera.sdkDirectory);
  std::vector<CameraDescription> cameras = catalogue.cameras;
  if (!command.camera.camera.empty()) {
    cameras = {chooseCamera(catalogue.cameras, command.camera.camera)};
  }
  std::vector<ChosenCamera> planned;
  for (const CameraDescription& camera : cameras) {
    CameraChoice choice = command.camera;
    if (choice.format) {
      planned.push_back({camera, settingsFor(choice, camera)});
      continue;
    }
    for (const PixelFormat format : camera.formats) {
      choice.format = format;
      planned.push_back({camera, settingsFor(choice, camera)});
    }
  }
  return planned;
}

// One camera in one format.
class Bench {
 public:
  Bench(const BenchCommand& command, const ChosenCamera& camera, StatusLine& line)
      : command_(command), camera_(camera), line_(line) {
    result_.camera = camera.description.name;
    result_.layout = {camera.settings.width, camera.settings.height, camera.settings.format,
                      BayerPattern::None};
  }

  Measurement run() {
    try {
      measure();
    } catch (const CameraError& error) {
      result_.error = error.what();
    }
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
    return result_;
  }

 private:
  void measure() {
    CameraSession session(camera_.description, camera_.settings);
    result_.layout = session.layout();
    FrameSource source(session, camera_.settings.exposureUs);
    source.discard(command_.camera.discard, line_);
    source.discard(1, line_);
    const std::int64_t notReadyBefore = source.notReadyAnswers();
    const Clock::time_point start = Clock::now();
    const Clock::time_point end = start + std::chrono::microseconds(command_.durationUs);
    Clock::time_point last = start;
    while (!stopRequested() && Clock::now() < end) {
      const auto frame = source.poll();
      if (!frame.empty()) {
        const Clock::time_point now = Clock::now();
        waits_.push_back(secondsBetween(last, now));
        last = now;
        correctFrame(frame, session.layout(), command_.camera.correction);
      }
      result_.notReadyAnswers = source.notReadyAnswers() - notReadyBefore;
      result_.seconds = secondsBetween(start, last);
      if (line_.isDue()) {
        line_.show(result_.camera + ", " + formatName(result_.layout.format) + ": " +
                   std::to_string(waits_.size()) + " frames in " +
                   decimal(secondsBetween(start, Clock::now()), 1) + " s");
      }
    }
    if (waits_.empty() && !stopRequested()) {
      throw CameraError("no second frame came in time");
    }
  }

  const BenchCommand& command_;
  const ChosenCamera& camera_;
  StatusLine& line_;
  Measurement result_;
  std::vector<double> waits_;  // seconds
};

constexpr std::size_t columnCount = 10;
using Row = std::array<std::string, columnCount>;

Row rowOf(const Measurement& result) {
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

void reportText(const BenchCommand& command, const std::vector<Measurement>& results) {
  std::vector<Row> rows{{"Camera", "Format", "Size", "Frames/s", "MB/s", "Not ready", "Wait p50 ms",
                         "p90", "p99", "Longest"}};
  std::transform(results.begin(), results.end(), std::back_inserter(rows), rowOf);
  std::array<std::size_t, columnCount> widths{};
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < columnCount; ++column) {
      widths[column] = std::max(widths[column], utf8Length(row[column]));
    }
  }
  constexpr std::size_t textColumns = 3;
  for (const Row& row : rows) {
    std::string line;
    for (std::size_t column = 0; column < columnCount; ++column) {
      const std::string space(widths[column] - utf8Length(row[column]), ' ');
      line += (line.empty() ? "" : "  ") +
              (column < textColumns ? row[column] + space : space + row[column]);
    }
    std::cout << line << "\n";
  }
  if (command.chart) {
    std::cout << "Chart: " << inQuotes(utf8FromPath(*command.chart)) << "\n";
  }
  std::cout << std::flush;
}

void reportJson(const BenchCommand& command, const std::vector<Measurement>& results) {
  using Json = nlohmann::ordered_json;
  Json document;
  document["exposureUs"] = command.camera.exposureUs;
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
  document["chart"] = command.chart ? Json(utf8FromPath(*command.chart)) : Json();
  std::cout << document.dump(2) << "\n" << std::flush;
}

}  // namespace

int bench(const BenchCommand& command) {
  if (command.chart) {
    requireUsable(*command.chart, command.mayOverwrite);
  }
  catchStopRequests();
  useFineSleep();
  const std::vector<ChosenCamera> planned = plannedMeasurements(command);
  std::vector<Measurement> results;
  {
    StatusLine line(command.reporting.isQuiet);
    for (const ChosenCamera& camera : planned) {
      if (!stopRequested()) {
        results.push_back(Bench(command, camera, line).run());
      }
    }
  }
  if (command.chart) {
    writePng(*command.chart, benchChart(results, command.camera.exposureUs));
  }
  if (command.reporting.asJson) {
    reportJson(command, results);
  } else if (!command.reporting.isQuiet) {
    reportText(command, results);
  }
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

}  // namespace orvane::host
