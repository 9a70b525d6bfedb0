// "oc_capture repair": recovers a recording that was not finished.
#include <filesystem>
#include <string>
#include <system_error>

#include "formats/ser_repair.hpp"
#include "oc_capture/output_path.hpp"
#include "oc_capture/report.hpp"
#include "oc_capture/status_line.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct RepairSettings {
  std::filesystem::path file;
  OutputPath repaired;
  Reporting reporting;
};

void addOptions(CommandOptions& options, RepairSettings& repair) {
  options.add(
      "FILE.ser", "", "The recording that was not finished",
      [&repair](const char*, const std::string& text) { repair.file = pathFromUtf8(text); },
      Presence::Required);
  addOutputOptions(
      options, repair.repaired,
      {"NEW.ser", "The repaired recording;\nFILE-repaired.ser if not given", {".ser"}});
  addReportingOptions(options, repair.reporting);
}

std::string nameOf(const std::filesystem::path& file) {
  return inQuotes(utf8FromPath(file));
}

void requireRepairable(const RepairSettings& settings) {
  std::error_code ignored;
  if (!std::filesystem::exists(settings.file, ignored)) {
    throw UsageError("There is no file " + nameOf(settings.file) + ".");
  }
  if (std::filesystem::equivalent(settings.file, settings.repaired.path, ignored)) {
    throw UsageError("--out needs another file than " + nameOf(settings.file) + ", which stays.");
  }
  if (isBeingWritten(settings.file)) {
    throw UsageError(nameOf(settings.file) + " is being recorded by another program.");
  }
}

Json jsonOf(const RepairSettings& settings, const SerRepairFacts& facts) {
  return {
      {"file", utf8FromPath(settings.file)},    {"repaired", utf8FromPath(settings.repaired.path)},
      {"promisedFrames", facts.promisedFrames}, {"frames", facts.frames},
      {"timedFrames", facts.timedFrames},       {"cutBytes", facts.cutBytes}};
}

std::string timesText(const SerRepairFacts& facts) {
  if (facts.timedFrames == 0) {
    return "No frame's time is known, so there are no time stamps.\n";
  }
  if (facts.timedFrames == facts.frames) {
    return "The times of all frames are known.\n";
  }
  return "The times of " + std::to_string(facts.timedFrames) + " frames are known; the other " +
         std::to_string(facts.frames - facts.timedFrames) + " have the time 0.\n";
}

std::string textOf(const RepairSettings& settings, const SerRepairFacts& facts) {
  std::string text = nameOf(settings.repaired.path) + " has " + std::to_string(facts.frames) +
                     " frames; the header of " + nameOf(settings.file) + " counts " +
                     std::to_string(facts.promisedFrames) + ".\n" + timesText(facts);
  if (facts.cutBytes > 0) {
    text += std::to_string(facts.cutBytes) + " bytes of a frame that was cut off are left out.\n";
  }
  return text;
}

int repair(const RepairSettings& given) {
  RepairSettings settings = given;
  if (!settings.repaired.isGiven()) {
    settings.repaired.path = settings.file;
    settings.repaired.path.replace_extension();
    settings.repaired.path += "-repaired.ser";
  }
  requireRepairable(settings);
  requireUsable(settings.repaired);
  const SerRepair recording(settings.file);
  if (!recording.isNeeded()) {
    throw UsageError(nameOf(settings.file) + " is whole; there is nothing to repair.");
  }
  if (recording.facts().frames == 0) {
    throw UsageError(nameOf(settings.file) + " holds no whole frame; there is nothing to save.");
  }
  StatusLine line(settings.reporting.isQuiet);
  recording.write(settings.repaired.path, settings.repaired.existing(),
                  [&line](std::int64_t bytes, std::int64_t all) {
                    if (line.isDue()) {
                      line.show("Copying: " + decimal(static_cast<double>(bytes) / 1e6, 0) +
                                " of " + decimal(static_cast<double>(all) / 1e6, 0) + " MB");
                    }
                  });
  report(settings.reporting, jsonOf(settings, recording.facts()),
         textOf(settings, recording.facts()));
  return 0;
}

}  // namespace

const Command repairCommand{
    .name = "repair",
    .description = "Recover a recording that was not finished",
    .explanation =
        R"(After a crash or a power failure, the header of a recording may count other
frames than there are, and the time stamps are missing. This command writes a
new recording with all whole frames. Their times come from the file itself or
from its time journal, FILE.ser.orvane-times, which is there until a recording
is finished. A frame whose time is unknown gets the time 0. FILE.ser and its
journal stay.)",
    .examples =
        R"(  oc_capture repair jupiter.ser
  oc_capture repair jupiter.ser --out saved.ser --json)",
    .whenDone = "recording recovered",
    .whenFailed = "a file cannot be read or written",
    .whenRefused = "wrong arguments, or nothing to repair",
    .prepare = prepareCommand<RepairSettings, addOptions, repair>,
};

}  // namespace orvane::host
