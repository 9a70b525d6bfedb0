// "oc_capture play": what a recording holds.
#include "oc_capture/play_command.hpp"

#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <system_error>

#include "formats/png_writer.hpp"
#include "formats/ser_reader.hpp"
#include "formats/ser_time.hpp"
#include "oc_capture/camera_options.hpp"
#include "oc_capture/contact_sheet.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/status_line.hpp"
#include "session/frame_timing.hpp"
#include "system/failures.hpp"
#include "system/text.hpp"
#include "system/utc_text.hpp"

namespace orvane::host {

namespace {

struct PlaySettings {
  std::filesystem::path file;
  OutputPath sheet;
  FrameCorrection correction;
  Reporting reporting;
};

void addOptions(CommandOptions& options, PlaySettings& play) {
  options.add(
      "FILE.ser", "", "The recording",
      [&play](const char*, const std::string& text) { play.file = pathFromUtf8(text); },
      Presence::Required);
  addOutputOptions(options, play.sheet,
                   {"SHEET.png", "The contact sheet", "Replace SHEET.png if it exists", {".png"}});
  addCorrectionOptions(options, play.correction);
  addReportingOptions(options, play.reporting);
}

using Json = nlohmann::ordered_json;

std::string colours(const SerFacts& facts) {
  switch (facts.channels) {
    case SerChannels::Rgb:
      return "RGB";
    case SerChannels::Bgr:
      return "BGR";
    case SerChannels::One:
      break;
  }
  if (facts.bayer != BayerPattern::None) {
    return std::string("mosaic ") + bayerName(facts.bayer);
  }
  return facts.colorId == 0 ? "mono" : "colour code " + std::to_string(facts.colorId);
}

std::string shape(const SerFacts& facts) {
  return std::to_string(facts.frames) + " frames of " + std::to_string(facts.width) + " x " +
         std::to_string(facts.height) + ", " + colours(facts) + ", " + std::to_string(facts.depth) +
         " bits";
}

std::string startText(const SerFacts& facts) {
  const auto start = timeOfSerTicks(facts.startUtc);
  return start ? utcText(*start) : "";
}

std::string rateText(const FrameTiming& timing) {
  return decimal(timing.seconds, 3) + " s, " + decimal(timing.framesPerSecond, 1) +
         " frames/s, usually " + decimal(timing.medianInterval * 1e3, 1) +
         " ms from frame to frame";
}

std::string gapText(const FrameTiming& timing) {
  if (timing.gaps == 0) {
    return "none";
  }
  return std::to_string(timing.gaps) + ", in which about " + std::to_string(timing.missedFrames) +
         " frames are missing; the longest, " + decimal(timing.longestGap * 1e3, 1) +
         " ms, after frame " + std::to_string(timing.longestGapAfter);
}

void printLine(const char* label, const std::string& text) {
  if (!text.empty()) {
    std::cout << label << text << "\n";
  }
}

void reportText(const PlaySettings& settings, const SerFacts& facts,
                const std::optional<FrameTiming>& timing) {
  std::cout << inQuotes(utf8FromPath(settings.file)) << ": " << shape(facts) << "\n";
  printLine("Camera:    ", facts.instrument);
  printLine("Telescope: ", facts.telescope);
  printLine("Observer:  ", facts.observer);
  const std::string start = startText(facts);
  printLine("Start:     ", start.empty() ? "" : start + " UTC");
  if (timing) {
    printLine("Length:    ", rateText(*timing));
    printLine("Gaps:      ", gapText(*timing));
    printLine("Clock:     ", timing->stepsBack == 0
                                 ? ""
                                 : std::to_string(timing->stepsBack) +
                                       " frames have an earlier time than the one before");
  } else {
    printLine("Length:    ", facts.timeStamps.empty() ? "unknown, there are no time stamps"
                                                      : "unknown, the time stamps make no sense");
  }
  if (facts.unusedBytes > 0) {
    printLine("Unused:    ",
              std::to_string(facts.unusedBytes) + " bytes behind the frames and time stamps");
  }
  if (settings.sheet.isGiven()) {
    printLine("Sheet:     ", inQuotes(utf8FromPath(settings.sheet.path)));
  }
  std::cout << std::flush;
}

Json timingJson(const FrameTiming& timing) {
  Json document;
  document["seconds"] = timing.seconds;
  document["framesPerSecond"] = timing.framesPerSecond;
  document["medianIntervalSeconds"] = timing.medianInterval;
  document["gaps"] = timing.gaps;
  document["missedFrames"] = timing.missedFrames;
  document["longestGapSeconds"] = timing.longestGap;
  document["longestGapAfterFrame"] = timing.gaps == 0 ? Json() : Json(timing.longestGapAfter);
  document["stepsBack"] = timing.stepsBack;
  return document;
}

void reportJson(const PlaySettings& settings, const SerFacts& facts,
                const std::optional<FrameTiming>& timing) {
  const std::string start = startText(facts);
  Json document;
  document["file"] = utf8FromPath(settings.file);
  document["frames"] = facts.frames;
  document["width"] = facts.width;
  document["height"] = facts.height;
  document["colours"] = colours(facts);
  document["depth"] = facts.depth;
  document["instrument"] = facts.instrument;
  document["telescope"] = facts.telescope;
  document["observer"] = facts.observer;
  document["startUtc"] = start.empty() ? Json() : Json(start);
  document["hasTimeStamps"] = !facts.timeStamps.empty();
  document["timing"] = timing ? timingJson(*timing) : Json();
  document["unusedBytes"] = facts.unusedBytes;
  document["sheet"] = settings.sheet.isGiven() ? Json(utf8FromPath(settings.sheet.path)) : Json();
  std::cout << document.dump(2) << "\n" << std::flush;
}

void requireFile(const std::filesystem::path& file) {
  std::error_code ignored;
  if (!std::filesystem::exists(file, ignored)) {
    throw UsageError("There is no file " + inQuotes(utf8FromPath(file)) + ".");
  }
}

int play(const PlaySettings& settings) {
  requireFile(settings.file);
  requireUsable(settings.sheet);
  const SerReader recording(settings.file);
  const SerFacts& facts = recording.facts();
  const auto timing = frameTiming(facts.timeStamps);
  if (settings.sheet.isGiven()) {
    const std::string rate =
        timing ? ", " + decimal(timing->framesPerSecond, 1) + " frames/s" : std::string();
    StatusLine line(settings.reporting.isQuiet);
    writePng(settings.sheet.path,
             contactSheet(recording, settings.correction, utf8FromPath(settings.file.filename()),
                          shape(facts) + rate, line));
  }
  if (settings.reporting.asJson) {
    reportJson(settings, facts, timing);
  } else if (!settings.reporting.isQuiet) {
    reportText(settings, facts, timing);
  }
  return 0;
}

constexpr const char* explanation =
    R"(Frames, size, colours, depth, the rate and the gaps as the frames' time stamps
have them. An interval of more than one and a half times the usual one counts
as a gap. The contact sheet shows up to twelve frames from the first to the
last, in colour and brightened.)";

constexpr const char* examples =
    R"(  oc_capture play jupiter.ser
  oc_capture play jupiter.ser --out jupiter-sheet.png)";

}  // namespace

const Command playCommand{
    "play",
    "Tell what a recording holds, and show it on a contact sheet",
    explanation,
    examples,
    prepareCommand<PlaySettings, addOptions, play>,
};

}  // namespace orvane::host
