// The command line of the live view.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "live_view/live_session.hpp"

namespace orvane::host {

/// The text of --help, shown in place of a window.
struct LiveHelpText {
  std::string text;
};

using LiveCommand = std::variant<LiveOptions, LiveHelpText>;

/// Reads the arguments after the program's name, in UTF-8. Throws UsageError with a sentence.
LiveCommand parseLiveCommandLine(std::vector<std::string> arguments);

}  // namespace orvane::host
