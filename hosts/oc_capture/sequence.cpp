// Several runs of a command, their starts in even intervals: "--count" and "--every".
#include "oc_capture/sequence.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <exception>
#include <iostream>
#include <orvane_desktop_camera.hpp>
#include <stdexcept>
#include <thread>

#include "oc_capture/status_line.hpp"
#include "system/argument_values.hpp"
#include "system/disk_space.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using Clock = std::chrono::steady_clock;

double secondsOf(Clock::duration time) {
  return std::chrono::duration<double>(time).count();
}

std::string secondsText(Clock::duration time) {
  const double seconds = secondsOf(time);
  return seconds < 10 ? decimal(seconds, 1) + " s" : decimal(std::ceil(seconds), 0) + " s";
}

// The runs of one sequence.
class Sequence {
 public:
  Sequence(const SequenceOptions& options, const Reporting& reporting, const RunNames& names,
           const std::filesystem::path& directory, const std::function<RunResult(int)>& run)
      : options_(options),
        reporting_(reporting),
        names_(names),
        directory_(directory),
        run_(run),
        count_(*options.count) {}

  int run() {
    for (int number = 1; number <= count_ && ending_.empty() && !failure_; ++number) {
      waitForStart(number);
      if (ending_.empty()) {
        runOnce(number);
      }
    }
    if (!reporting_.asJson) {
      report(reporting_, {}, summary());
    } else {
      report(reporting_, document(), "");
    }
    if (failure_) {
      std::rethrow_exception(failure_);
    }
    return 0;
  }

 private:
  // All starts are counted from the first, so that they do not drift.
  Clock::time_point plannedStart(int number) const {
    return start_ + (number - 1) * std::chrono::microseconds(options_.intervalUs.value_or(0));
  }

  void waitForStart(int number) {
    if (number > 1) {
      const Clock::time_point planned = plannedStart(number);
      StatusLine line(reporting_.isQuiet);
      const Clock::duration late = Clock::now() - planned;
      if (options_.intervalUs && late > Clock::duration::zero()) {
        line.tell("The " + std::string(names_.one) + " took " + secondsText(late) +
                  " longer than the interval; the next one starts at once.");
      }
      for (Clock::duration left = -late; left > Clock::duration::zero() && !stopRequested();
           left = planned - Clock::now()) {
        if (line.isDue()) {
          line.show(std::to_string(number - 1) + " of " + std::to_string(count_) + ", next in " +
                    decimal(std::ceil(secondsOf(left)), 0) + " s");
        }
        constexpr std::chrono::milliseconds longest{50};
        std::this_thread::sleep_for(std::min<Clock::duration>(left, longest));
      }
      if (stopRequested()) {
        ending_ = "Stopped";
        return;
      }
    }
    const std::optional<std::int64_t> free = freeSpace(directory_);
    if (options_.leastFree && free && *free < *options_.leastFree) {
      ending_ = "Less than " + sizeText(*options_.leastFree) + " is free on the disk: stopped";
    }
  }

  void runOnce(int number) {
    const Clock::time_point now = Clock::now();
    start_ = number == 1 ? now : start_;
    RunResult result;
    try {
      result = run_(number);
      if (!result.failure.empty()) {
        throw oc::Error(result.failure);
      }
      ++done_;
    } catch (const std::exception& error) {
      // A run that was stopped before its first frame is no failure of the others.
      if ((stopRequested() || result.endsSequence) && done_ > 0) {
        result = {.endsSequence = result.endsSequence};
      } else {
        failure_ = std::current_exception();
        error_ = error.what();
      }
    }
    if (!result.document.is_null()) {
      Json entry{{"run", number},
                 {"startedAfterSeconds", secondsOf(now - start_)},
                 {"lateSeconds", options_.intervalUs ? secondsOf(now - plannedStart(number)) : 0}};
      entry.update(result.document);
      runs_.push_back(entry);
    }
    if (!reporting_.asJson) {
      report(reporting_, {}, result.text);
    }
    std::cerr << result.note;
    if (stopRequested() && number < count_) {
      ending_ = "Stopped";
    } else if (result.endsSequence) {
      ending_ = "Stopped by --stop-below";
    }
  }

  std::string doneText() const {
    return std::to_string(done_) + " of " + std::to_string(count_) + " " + names_.several;
  }

  std::string summary() const {
    return ending_.empty() ? doneText() + " are done.\n" : ending_ + " after " + doneText() + ".\n";
  }

  Json document() const {
    return {{"count", count_},
            {"done", done_},
            {"intervalSeconds",
             options_.intervalUs ? Json(static_cast<double>(*options_.intervalUs) / 1e6) : Json()},
            {"ending", orNull(ending_)},
            {"runs", runs_},
            {"error", error_}};
  }

  const SequenceOptions& options_;
  const Reporting& reporting_;
  const RunNames& names_;
  const std::filesystem::path& directory_;
  const std::function<RunResult(int)>& run_;
  const int count_;
  Clock::time_point start_ = Clock::now();
  Json runs_ = Json::array();
  int done_ = 0;
  std::string ending_;  // why it ends before its last run
  std::exception_ptr failure_;
  std::string error_;
};

}  // namespace

void addSequenceOptions(CommandOptions& options, SequenceOptions& sequence, const RunNames& names) {
  constexpr int most = 100'000;
  options.add("--count", "N", names.countDescription, intoNumber(sequence.count, 1, most));
  options.add(
      "--every", "TIME",
      "With --count: time from start to start, as in\n60s; one after the other if not given",
      [&sequence](const char* option, const std::string& text) {
        constexpr std::int64_t longest = 86'400'000'000;
        sequence.intervalUs = parseDuration(option, text);
        if (sequence.intervalUs > longest) {
          throw UsageError(std::string(option) + " can be 86400s at most.");
        }
      });
  options.add("--stop-below", "SIZE",
              "Stop before less than this is free on the disk,\nas in 2GB or 500MB",
              [&sequence](const char* option, const std::string& text) {
                sequence.leastFree = parseSize(option, text);
              });
}

void requirePossible(const SequenceOptions& sequence, const std::filesystem::path& directory) {
  if (sequence.intervalUs && !sequence.count) {
    throw UsageError("--every needs --count.");
  }
  if (!sequence.leastFree) {
    return;
  }
  const std::optional<std::int64_t> free = freeSpace(directory);
  if (!free) {
    throw UsageError("--stop-below cannot be used: the free space of " +
                     inQuotes(utf8FromPath(directory)) + " is not known.");
  }
  if (*free < *sequence.leastFree) {
    throw UsageError("Only " + sizeText(*free) + " are free for " +
                     inQuotes(utf8FromPath(directory)) + ", which is less than --stop-below " +
                     sizeText(*sequence.leastFree) + ".");
  }
}

int runSequence(const SequenceOptions& sequence, const Reporting& reporting, const RunNames& names,
                const std::filesystem::path& directory, const std::function<RunResult(int)>& run) {
  if (sequence.count) {
    return Sequence(sequence, reporting, names, directory, run).run();
  }
  const RunResult result = run(1);
  if (!result.document.is_null()) {
    report(reporting, result.document, result.text);
  }
  std::cerr << result.note;
  if (!result.failure.empty()) {
    throw oc::Error(result.failure);
  }
  return 0;
}

}  // namespace orvane::host
