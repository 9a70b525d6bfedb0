// Several runs of a command, their starts in even intervals: "--count" and "--every".
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "oc_capture/command.hpp"
#include "oc_capture/report.hpp"

namespace orvane::host {

struct SequenceOptions {
  std::optional<int> count;                ///< none: a single run
  std::optional<std::int64_t> intervalUs;  ///< from start to start; none: one after the other
  std::optional<std::int64_t> leastFree;   ///< bytes of the disk; see DiskReserve
};

/// How runs are called in sentences, such as "recording" and "recordings".
struct RunNames {
  const char* one;
  const char* several;
  const char* countDescription;  ///< help text of "--count"
};

/// "--count", "--every" and "--stop-below".
void addSequenceOptions(CommandOptions& options, SequenceOptions& sequence, const RunNames& names);

/// Throws UsageError if "--every" is given without "--count", or less than "--stop-below" is free
/// on the disk of this directory.
void requirePossible(const SequenceOptions& sequence, const std::filesystem::path& directory);

/// What a run has done.
// Moving JSON does not throw. NOLINTNEXTLINE(bugprone-exception-escape)
struct RunResult {
  Json document = {};         ///< null if there is nothing to report
  std::string text = {};      ///< the same as a text
  std::string note = {};      ///< for standard error, after that
  std::string failure = {};   ///< empty if the run has done its work
  bool endsSequence = false;  ///< the disk is as full as it may be
};

/// Runs once or as often as the options say, reports, and returns the exit status 0. `run` gets the
/// number of the run, from 1. A failure ends the sequence: throws it after the report. Ctrl-C ends
/// it, too, which is no failure once there was a run.
int runSequence(const SequenceOptions& sequence, const Reporting& reporting, const RunNames& names,
                const std::filesystem::path& directory, const std::function<RunResult(int)>& run);

}  // namespace orvane::host
