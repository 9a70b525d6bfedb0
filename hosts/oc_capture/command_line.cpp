// Finds out from the command line which command is to run, and with which options.
#include "oc_capture/command_line.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <deque>
#include <iostream>
#include <memory>

#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct ParsedCommand {
  ParsedCommand(CLI::App& app, const Command& command)
      : options(app, command), run(command.prepare(options)) {}

  CommandOptions options;
  RunCommand run;
};

// The parser's error as a sentence.
UsageError usageError(const CLI::ParseError& error, const CLI::App& app,
                      std::span<const Command* const> commands) {
  const std::string text = error.what();
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr && app.get_subcommands().empty()) {
    std::vector<std::string> names;
    for (const Command* command : commands) {
      names.emplace_back(command->name);
    }
    return UsageError("Say what to do: " + alternatives(names) + ".");
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string option = text.substr(0, text.find(':'));
    return UsageError(option + " needs one value.");
  }
  return UsageError(text + ".");
}

RunCommand printsHelp(std::string text) {
  return [text = std::move(text)] {
    std::cout << text << "\n" << std::flush;
    return 0;
  };
}

}  // namespace

RunCommand parseCommandLine(std::span<const Command* const> commands,
                            std::vector<std::string> arguments) {
  CLI::App app("Lists astronomy cameras, records from them and measures them.", "oc_capture");
  app.require_subcommand(1);
  app.allow_windows_style_options(false);  // a path may start with a slash
  app.footer("\"oc_capture COMMAND --help\" tells about one of them, with examples.");
  std::deque<ParsedCommand> parsed;  // its elements keep their addresses
  for (const Command* command : commands) {
    parsed.emplace_back(app, *command);
  }
  // Only for the list of commands, whose names are short; the commands keep their formatter.
  app.formatter(std::make_shared<CLI::Formatter>());
  app.get_formatter()->column_width(14);

  try {
    std::reverse(arguments.begin(), arguments.end());  // the order that the parser expects
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    return printsHelp(app.help());
  } catch (const CLI::ParseError& error) {
    throw usageError(error, app, commands);
  }
  const auto given = std::find_if(parsed.begin(), parsed.end(), [](const ParsedCommand& command) {
    return command.options.isGiven();
  });
  given->options.readValues();
  return given->run;
}

}  // namespace orvane::host
