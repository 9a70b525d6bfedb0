// "oc_capture play": what a recording holds.
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "formats/png_writer.hpp"
#include "formats/ser_reader.hpp"
#include "formats/ser_time.hpp"
#include "formats/ser_writer.hpp"
#include "oc_capture/camera_options.hpp"
#include "oc_capture/contact_sheet.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/report.hpp"
#include "oc_capture/status_line.hpp"
#include "session/frame_timing.hpp"
#include "session/recording_log.hpp"
#include "system/failures.hpp"
#include "system/text.hpp"

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
  addOutputOptions(options, play.sheet, {"SHEET.png", "The contact sheet", {".png"}});
  addCorrectionOptions(options, play.correction);
  addReportingOptions(options, play.reporting);
}

// As a shell takes it.
std::string argumentText(const std::string& text) {
  return text.find(' ') == std::string::npos ? text : inQuotes(text);
}

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
    return std::string("Bayer pattern ") + bayerName(facts.bayer);
  }
  return facts.colorId == 0 ? "mono" : "colour code " + std::to_string(facts.colorId);
}

std::string shape(const SerFacts& facts) {
  return std::to_string(facts.frames) + " frames of " + dimensionsText(facts.width, facts.height) +
         ", " + colours(facts) + ", " + std::to_string(facts.depth) + " bits";
}

std::string startText(const SerFacts& facts) {
  const auto start = timeOfSerTicks(facts.startUtc);
  return start ? utcText(*start) : "";
}

// A line, or nothing if the text is empty.
std::string lineOf(const char* label, const std::string& text) {
  return text.empty() ? "" : label + text + "\n";
}

std::string timingText(const SerFacts& facts, const std::optional<FrameTiming>& timing) {
  if (!timing) {
    return lineOf("Length:    ", facts.timeStamps.empty()
                                     ? "unknown, there are no time stamps"
                                     : "unknown, the time stamps make no sense");
  }
  std::string text =
      lineOf("Length:    ", decimal(timing->seconds, 3) + " s, " +
                                decimal(timing->framesPerSecond, 1) + " frames/s, usually " +
                                decimal(timing->medianInterval * 1e3, 1) +
                                " ms from frame to frame") +
      lineOf("Gaps:      ", gapText(*timing));
  if (timing->stepsBack > 0) {
    text += lineOf("Clock:     ", std::to_string(timing->stepsBack) +
                                      " frames have an earlier time than the one before");
  }
  return text;
}

// What is wrong with the file and can be repaired, or nothing.
std::string damageText(const PlaySettings& settings, const SerFacts& facts) {
  std::string text;
  if (facts.frames < facts.promisedFrames) {
    text = "it is cut off, its header counts " + std::to_string(facts.promisedFrames) + " frames";
  } else if (facts.framesBehind > 0) {
    text = std::to_string(facts.framesBehind) + " whole frames are behind those that it counts";
  } else if (std::error_code ignored;
             facts.timeStamps.empty() &&
             std::filesystem::exists(timeJournalOf(settings.file), ignored)) {
    text = "its time stamps are still in " + inQuotes(utf8FromPath(timeJournalOf(settings.file)));
  }
  return text.empty() ? ""
                      : text + "; to repair it: oc_capture repair " +
                            argumentText(utf8FromPath(settings.file));
}

std::string textOf(const PlaySettings& settings, const SerFacts& facts,
                   const std::optional<FrameTiming>& timing) {
  const std::string start = startText(facts);
  std::string text =
      inQuotes(utf8FromPath(settings.file)) + ": " + shape(facts) + "\n" +
      lineOf("Camera:    ", facts.instrument) + lineOf("Telescope: ", facts.telescope) +
      lineOf("Observer:  ", facts.observer) +
      lineOf("Start:     ", start.empty() ? "" : start + " UTC") + timingText(facts, timing);
  text += lineOf("Damage:    ", damageText(settings, facts));
  if (facts.unusedBytes > 0) {
    text += lineOf("Unused:    ",
                   std::to_string(facts.unusedBytes) + " bytes behind the frames and time stamps");
  }
  if (settings.sheet.isGiven()) {
    text += lineOf("Sheet:     ", inQuotes(utf8FromPath(settings.sheet.path)));
  }
  return text;
}

Json timingJson(const FrameTiming& timing) {
  Json document{{"seconds", timing.seconds},
                {"framesPerSecond", timing.framesPerSecond},
                {"medianIntervalSeconds", timing.medianInterval}};
  document.update(gapsJson(timing));
  document["stepsBack"] = timing.stepsBack;
  return document;
}

Json jsonOf(const PlaySettings& settings, const SerFacts& facts,
            const std::optional<FrameTiming>& timing) {
  return {{"file", utf8FromPath(settings.file)},
          {"frames", facts.frames},
          {"promisedFrames", facts.promisedFrames},
          {"framesBehind", facts.framesBehind},
          {"width", facts.width},
          {"height", facts.height},
          {"colours", colours(facts)},
          {"depth", facts.depth},
          {"instrument", facts.instrument},
          {"telescope", facts.telescope},
          {"observer", facts.observer},
          {"startUtc", orNull(startText(facts))},
          {"hasTimeStamps", !facts.timeStamps.empty()},
          {"timing", timing ? timingJson(*timing) : Json()},
          {"unusedBytes", facts.unusedBytes},
          {"damage", orNull(damageText(settings, facts))},
          {"sheet", orNull(utf8FromPath(settings.sheet.path))}};
}

int play(const PlaySettings& settings) {
  std::error_code ignored;
  if (!std::filesystem::exists(settings.file, ignored)) {
    throw UsageError("There is no file " + inQuotes(utf8FromPath(settings.file)) + ".");
  }
  requireUsable(settings.sheet);
  const SerReader recording(settings.file);
  const SerFacts& facts = recording.facts();
  // With the exposure, the gaps are those of which "record" told.
  const auto timing = frameTiming(
      facts.timeStamps,
      exposureInLog(std::filesystem::path(settings.file).replace_extension(settingsLogEnding)));
  if (settings.sheet.isGiven()) {
    const std::string rate =
        timing ? ", " + decimal(timing->framesPerSecond, 1) + " frames/s" : std::string();
    StatusLine line(settings.reporting.isQuiet);
    writePng(settings.sheet.path,
             contactSheet(recording, settings.correction, utf8FromPath(settings.file.filename()),
                          shape(facts) + rate, line),
             settings.sheet.existing());
  }
  report(settings.reporting, jsonOf(settings, facts, timing), textOf(settings, facts, timing));
  return 0;
}

}  // namespace

const Command playCommand{
    .name = "play",
    .description = "Tell what a recording holds, and show it on a contact sheet",
    .explanation =
        R"(Tells the number of frames, their size, colours and depth. The rate and the
gaps follow from the frames' time stamps: an interval of more than three
frame times is a gap. A frame time is the median, or the exposure if FILE.txt
names a longer one. Of fewer than five intervals none is a gap. A file that
was not finished is read as far as its header counts; "oc_capture repair"
recovers the rest. The contact sheet shows up to twelve frames from the first
to the last, in colour and brightened.)",
    .examples =
        R"(  oc_capture play jupiter.ser
  oc_capture play jupiter.ser --out jupiter-sheet.png)",
    .whenDone = "recording described",
    .whenFailed = "a file cannot be read or written",
    .prepare = prepareCommand<PlaySettings, addOptions, play>,
};

}  // namespace orvane::host
