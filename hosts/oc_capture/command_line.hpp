// What the user typed, understood as far as that is possible without having seen the cameras.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "oc_capture/bench_options.hpp"
#include "oc_capture/doctor_options.hpp"
#include "oc_capture/list_options.hpp"
#include "oc_capture/play_options.hpp"
#include "oc_capture/record_options.hpp"
#include "oc_capture/snap_options.hpp"
#include "oc_capture/watch_options.hpp"

namespace orvane::host {

/// A text that was asked for in place of any work.
struct HelpText {
  std::string text;
};

using Command = std::variant<HelpText,       //
                             ListCommand,    //
                             RecordCommand,  //
                             SnapCommand,    //
                             PlayCommand,    //
                             BenchCommand,   //
                             WatchCommand,   //
                             DoctorCommand>;

/// Reads the arguments after the program's name, in UTF-8. Throws UsageError with a sentence.
Command parseCommandLine(std::vector<std::string> arguments);

}  // namespace orvane::host
