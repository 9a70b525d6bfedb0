// The command line of the live view.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "live_view/live_session.hpp"

namespace orvane::host {

/// What to do: open the window with these options, or show the text of --help, --version
/// or --licenses.
using LiveCommand = std::variant<LiveOptions, std::string>;

/// Reads the arguments after the program's name, in UTF-8. Throws UsageError with a sentence.
LiveCommand parseLiveCommandLine(std::vector<std::string> arguments);

}  // namespace orvane::host
