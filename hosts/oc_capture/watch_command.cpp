// "oc_capture watch": a camera's temperature and the brightness of its frames.
#include <algorithm>
#include <chrono>
#include <optional>
#include <string>

#include "formats/png_writer.hpp"
#include "oc_capture/camera_options.hpp"
#include "oc_capture/camera_stream.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/report.hpp"
#include "oc_capture/status_line.hpp"
#include "oc_capture/watch_history.hpp"
#include "session/causes.hpp"
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
  addOutputOptions(options, watch.plot,
                   {"PLOT.png", "A plot of the watch, written at the end", {".png"}});
  addReportingOptions(options, watch.reporting);
}

using Clock = std::chrono::steady_clock;

// All frames of a watch.
struct Summary {
  FrameLayout layout;
  WatchPoint last;
  WatchHistory history;
  std::int64_t frames = 0;
  double sumOfMeans = 0;
  int smallest = 0;
  int largest = 0;
  std::int64_t mostSaturated = 0;
  std::optional<double> lowestTemperature;
  std::optional<double> highestTemperature;
  std::uint64_t failedReads = 0;
  std::string error;

  void add(const WatchPoint& point) {
    smallest =
        std::min(frames == 0 ? point.statistics.smallest : smallest, point.statistics.smallest);
    largest = std::max(largest, point.statistics.largest);
    mostSaturated = std::max(mostSaturated, point.statistics.saturated);
    sumOfMeans += point.statistics.mean;
    ++frames;
    last = point;
    history.add(point);
    if (point.temperature) {
      lowestTemperature =
          std::min(lowestTemperature.value_or(*point.temperature), *point.temperature);
      highestTemperature =
          std::max(highestTemperature.value_or(*point.temperature), *point.temperature);
    }
  }

  double mean() const { return frames > 0 ? sumOfMeans / static_cast<double>(frames) : 0; }
};

std::string lineOf(const Summary& summary) {
  if (summary.frames == 0) {
    return "Waiting for the first frame";
  }
  const WatchPoint& last = summary.last;
  return decimal(last.seconds, 1) + " s, " + std::to_string(summary.frames) + " frames, " +
         (last.temperature ? decimal(*last.temperature, 1) + " \u00b0C" : "no temperature") +
         ", mean " + decimal(last.statistics.mean, 1) + ", min " +
         std::to_string(last.statistics.smallest) + ", max " +
         std::to_string(last.statistics.largest) + ", saturated " +
         std::to_string(last.statistics.saturated);
}

void watchFrames(const WatchSettings& settings, const ChosenCamera& camera, StatusLine& line,
                 Summary& summary) {
  CameraStream stream(camera, settings.camera, settings.length.frames);
  summary.layout = stream.layout();
  stream.discard(settings.camera.discard, line);
  const Clock::time_point start = Clock::now();
  const auto elapsed = [&] { return Clock::now() - start; };
  while (!stopRequested() && !settings.length.isReached(summary.frames, elapsed())) {
    if (const CorrectedFrame next = stream.next()) {
      summary.add({std::chrono::duration<double>(elapsed()).count(), stream.state().temperature,
                   frameStatistics(next.pixels, summary.layout, camera.description.bitDepth)});
    }
    stream.tellFailures(line);
    summary.failedReads = stream.state().failedReads;
    if (line.isDue()) {
      line.show(lineOf(summary));
    }
  }
}

// A failure of the camera is in the summary.
void watchCamera(const WatchSettings& settings, ChosenCamera& camera, Summary& summary) {
  StatusLine line(settings.reporting.isQuiet);
  summary.error = failureOf([&] {
    camera = findCamera(settings.camera);
    watchFrames(settings, camera, line, summary);
  });
  if (summary.frames > 0) {
    line.show(lineOf(summary));
  }
}

Json jsonOf(const WatchSettings& settings, const ChosenCamera& camera, const Summary& summary,
            const std::string& plot) {
  const bool wasOpen = summary.layout.width > 0;
  const bool hasFrames = summary.frames > 0;
  return {{"camera", orNull(camera.description.name)},
          {"width", ifKnown(wasOpen, summary.layout.width)},
          {"height", ifKnown(wasOpen, summary.layout.height)},
          {"region", regionJson(settings.camera.correction.region)},
          {"format", ifKnown(camera.isFound(), formatName(camera.settings.format))},
          {"frames", summary.frames},
          {"seconds", ifKnown(wasOpen, summary.last.seconds)},
          {"mean", ifKnown(hasFrames, summary.mean())},
          {"min", ifKnown(hasFrames, summary.smallest)},
          {"max", ifKnown(hasFrames, summary.largest)},
          {"mostSaturatedPixels", ifKnown(hasFrames, summary.mostSaturated)},
          {"lowestTemperature", orNull(summary.lowestTemperature)},
          {"highestTemperature", orNull(summary.highestTemperature)},
          {"failedReads", summary.failedReads},
          {"plot", orNull(plot)},
          {"error", summary.error},
          {"explanation", explained(summary.error)}};
}

// Nothing after a failure.
std::string textOf(const Summary& summary, const std::string& plot) {
  if (!summary.error.empty()) {
    return "";
  }
  std::string text = "Watched " + std::to_string(summary.frames) + " frames in " +
                     decimal(summary.last.seconds, 1) + " s: mean " + decimal(summary.mean(), 1) +
                     ", min " + std::to_string(summary.smallest) + ", max " +
                     std::to_string(summary.largest) + ", saturated pixels at most " +
                     std::to_string(summary.mostSaturated);
  if (summary.lowestTemperature) {
    text += ", " + decimal(*summary.lowestTemperature, 1) + " to " +
            decimal(*summary.highestTemperature, 1) + " \u00b0C";
  }
  return text + (plot.empty() ? "" : "; plot " + inQuotes(plot)) + ".\n" +
         failedReadsText(summary.failedReads);
}

int watch(const WatchSettings& settings) {
  requireUsable(settings.plot);
  ChosenCamera camera;
  Summary summary;
  watchCamera(settings, camera, summary);
  if (summary.error.empty() && summary.frames == 0 && !stopRequested()) {
    summary.error = "No frame came before the watch's end.";
  }
  std::string plot;  // empty if there is none
  if (settings.plot.isGiven() && !summary.history.points().empty()) {
    const std::string failure = failureOf([&] {
      writePng(settings.plot.path,
               watchPlot(summary.history,
                         camera.description.name + ", " + formatName(camera.settings.format)),
               settings.plot.existing());
      plot = utf8FromPath(settings.plot.path);
    });
    summary.error = summary.error.empty() ? failure : summary.error;
  }
  report(settings.reporting, jsonOf(settings, camera, summary, plot), textOf(summary, plot));
  if (!summary.error.empty()) {
    throw oc::Error(summary.error);
  }
  return 0;
}

}  // namespace

const Command watchCommand{
    .name = "watch",
    .description = "Watch a camera's temperature and the brightness of its frames",
    .explanation =
        R"(Shows the sensor's temperature and, for the last frame, the mean, the smallest
and the largest sample and the number of saturated pixels. Ends after --frames
frames or --seconds seconds, whichever comes first, or on Ctrl-C. In the plot of
a long watch, a point stands for several neighbouring frames.)",
    .examples =
        R"(  oc_capture watch --sdk C:\sdk --camera 0 --exposure 500ms
  oc_capture watch --sdk C:\sdk --camera 2600MM --seconds 600 --out cooling.png)",
    .whenDone = "watched, also until Ctrl-C",
    .whenFailed = "no camera, no frame, or a failure",
    .prepare = prepareCommand<WatchSettings, addOptions, watch>,
};

}  // namespace orvane::host
