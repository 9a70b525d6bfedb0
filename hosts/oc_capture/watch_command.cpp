// "oc_capture watch": a camera's temperature and the brightness of its frames.
#include "oc_capture/watch_command.hpp"

#include <algorithm>
#include <chrono>
#include <exception>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>

#include "formats/png_writer.hpp"
#include "oc_capture/camera_options.hpp"
#include "oc_capture/camera_stream.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/status_line.hpp"
#include "oc_capture/watch_history.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct WatchSettings {
  CameraOptions camera;
  CaptureLength length;
  OutputPath plot;
  Reporting reporting;
};

void addOptions(CommandOptions& options, WatchSettings& watch) {
  addCameraOptions(options, watch.camera);
  addLengthOptions(options, watch.length, "Number of frames to look at", "Length of the watch");
  addOutputOptions(
      options, watch.plot,
      {"PLOT.png", "All of it as a plot at the end", "Replace PLOT.png if it exists", {".png"}});
  addReportingOptions(options, watch.reporting);
}

using Clock = std::chrono::steady_clock;

// Totals over all frames of a watch.
struct Summary {
  FrameLayout layout;
  std::int64_t frames = 0;
  double seconds = 0;
  double sumOfMeans = 0;
  int smallest = 0;
  int largest = 0;
  std::int64_t mostSaturated = 0;
  std::optional<double> lowestTemperature;
  std::optional<double> highestTemperature;
  std::string error;

  void add(const WatchPoint& point) {
    smallest =
        frames == 0 ? point.statistics.smallest : std::min(smallest, point.statistics.smallest);
    largest = std::max(largest, point.statistics.largest);
    mostSaturated = std::max(mostSaturated, point.statistics.saturated);
    sumOfMeans += point.statistics.mean;
    seconds = point.seconds;
    ++frames;
    if (point.temperature) {
      lowestTemperature =
          std::min(lowestTemperature.value_or(*point.temperature), *point.temperature);
      highestTemperature =
          std::max(highestTemperature.value_or(*point.temperature), *point.temperature);
    }
  }

  double mean() const { return frames > 0 ? sumOfMeans / static_cast<double>(frames) : 0; }
};

std::string lineOf(const WatchPoint& point, std::int64_t frames) {
  const FrameStatistics& statistics = point.statistics;
  std::string line = decimal(point.seconds, 1) + " s, " + std::to_string(frames) + " frames, ";
  line += point.temperature ? decimal(*point.temperature, 1) + " \u00b0C, " : "no temperature, ";
  line += "mean " + decimal(statistics.mean, 1) + ", min " + std::to_string(statistics.smallest) +
          ", max " + std::to_string(statistics.largest) + ", saturated " +
          std::to_string(statistics.saturated);
  return line;
}

// Watches one camera.
class Watch {
 public:
  Watch(const WatchSettings& settings, const ChosenCamera& camera)
      : settings_(settings), camera_(camera), line_(settings.reporting.isQuiet) {}

  // A failure of the camera is in the summary.
  void run() {
    try {
      look();
    } catch (const oc::Error& error) {
      summary_.error = error.what();
    }
    if (summary_.frames > 0) {
      line_.show(lineOf(last_, summary_.frames));
    }
  }

  const Summary& summary() const { return summary_; }
  const WatchHistory& history() const { return history_; }

 private:
  void look() {
    CameraStream stream(camera_, settings_.camera, settings_.length.frames);
    summary_.layout = correctedLayout(stream.state().layout, settings_.camera.correction);
    stream.discard(settings_.camera.discard, line_);
    const Clock::time_point start = Clock::now();
    const auto elapsed = [&] { return Clock::now() - start; };
    while (!stopRequested() && !settings_.length.isReached(summary_.frames, elapsed())) {
      if (const oc::Frame frame = stream.next()) {
        correctFrame(std::span(frame.data(), frame.size()), frame.layout(),
                     settings_.camera.correction);
        last_ = {std::chrono::duration<double>(elapsed()).count(), stream.state().temperature,
                 frameStatistics(frame.pixels(), frame.layout(), camera_.description.bitDepth)};
        summary_.add(last_);
        history_.add(last_);
      }
      if (line_.isDue()) {
        line_.show(summary_.frames > 0 ? lineOf(last_, summary_.frames)
                                       : "Waiting for the first frame");
      }
    }
  }

  const WatchSettings& settings_;
  const ChosenCamera& camera_;
  StatusLine line_;
  WatchPoint last_;
  WatchHistory history_;
  Summary summary_;
};

void reportJson(const WatchSettings& settings, const ChosenCamera& camera, const Summary& summary,
                bool hasPlot) {
  using Json = nlohmann::ordered_json;
  const auto orNull = [](const std::optional<double>& value) {
    return value ? Json(*value) : Json();
  };
  Json document;
  document["camera"] = camera.description.name;
  document["width"] = summary.layout.width;
  document["height"] = summary.layout.height;
  document["format"] = formatName(camera.settings.format);
  document["frames"] = summary.frames;
  document["seconds"] = summary.seconds;
  document["mean"] = summary.mean();
  document["min"] = summary.smallest;
  document["max"] = summary.largest;
  document["mostSaturatedPixels"] = summary.mostSaturated;
  document["lowestTemperature"] = orNull(summary.lowestTemperature);
  document["highestTemperature"] = orNull(summary.highestTemperature);
  document["plot"] = hasPlot ? Json(utf8FromPath(settings.plot.path)) : Json();
  document["error"] = summary.error;
  std::cout << document.dump(2) << "\n" << std::flush;
}

void reportText(const WatchSettings& settings, const Summary& summary, bool hasPlot) {
  std::cout << "Watched " << summary.frames << " frames in " << decimal(summary.seconds, 1)
            << " s: mean " << decimal(summary.mean(), 1) << ", min " << summary.smallest << ", max "
            << summary.largest << ", saturated pixels at most " << summary.mostSaturated;
  if (summary.lowestTemperature) {
    std::cout << ", " << decimal(*summary.lowestTemperature, 1) << " to "
              << decimal(*summary.highestTemperature, 1) << " \u00b0C";
  }
  if (hasPlot) {
    std::cout << "; plot " << inQuotes(utf8FromPath(settings.plot.path));
  }
  std::cout << ".\n" << std::flush;
}

int watch(const WatchSettings& settings) {
  requireUsable(settings.plot);
  catchStopRequests();
  useFineSleep();
  const ChosenCamera camera = findCamera(settings.camera);
  Summary summary;
  WatchHistory history;
  {
    Watch watch(settings, camera);
    watch.run();
    summary = watch.summary();
    history = watch.history();
  }
  if (summary.error.empty() && summary.frames == 0 && !stopRequested()) {
    summary.error = "No frame came before the watch's end.";
  }
  const bool hasPlot = settings.plot.isGiven() && !history.points().empty();
  if (hasPlot) {
    writePng(settings.plot.path, watchPlot(history, camera.description.name + ", " +
                                                        formatName(camera.settings.format)));
  }
  if (settings.reporting.asJson) {
    reportJson(settings, camera, summary, hasPlot);
  } else if (!settings.reporting.isQuiet && summary.error.empty()) {
    reportText(settings, summary, hasPlot);
  }
  if (!summary.error.empty()) {
    throw oc::Error(summary.error);
  }
  return 0;
}

constexpr const char* explanation =
    R"(Shows the sensor's temperature and, of the last frame, the mean, the smallest
and the largest sample and the number of saturated pixels. Ends after --frames
frames, after --seconds seconds, or on Ctrl-C. A plot of a long watch joins
neighbouring frames.)";

constexpr const char* examples =
    R"(  oc_capture watch --sdk C:\sdk --camera 0 --exposure 500ms
  oc_capture watch --sdk C:\sdk --camera 2600MM --seconds 600 --out cooling.png)";

}  // namespace

const Command watchCommand{
    "watch",
    "Watch a camera's temperature and the brightness of its frames",
    explanation,
    examples,
    prepareCommand<WatchSettings, addOptions, watch>,
};

}  // namespace orvane::host
