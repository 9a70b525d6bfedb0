// Finds out from the command line which command is to run, and with which options.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "oc_capture/command.hpp"

namespace orvane::host {

/// Reads the arguments after the program's name, in UTF-8. Returns what runs the command that they
/// name, or what prints a help text. Throws UsageError with a sentence.
RunCommand parseCommandLine(std::span<const Command* const> commands,
                            std::vector<std::string> arguments);

}  // namespace orvane::host
