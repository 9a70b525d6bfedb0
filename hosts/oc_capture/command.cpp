// The program's commands, and the options that they have.
#include "oc_capture/command.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <deque>
#include <iostream>

#include "oc_capture/report.hpp"
#include "session/license_texts.hpp"
#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

std::string textBelowOptions(const Command& command) {
  const std::string explanation = command.explanation;
  return (explanation.empty() ? "" : explanation + "\n\n") + "Examples:\n" + command.examples +
         "\n\nExit status:\n  0  " + command.whenDone + "\n  1  " + command.whenFailed + "\n  2  " +
         command.whenRefused;
}

std::string textBelowCommands(std::span<const Command* const> commands) {
  std::vector<TableRow> rows{{"Exit status", "0", "1"}};
  for (const Command* command : commands) {
    rows.push_back({std::string("  ") + command->name, command->whenDone, command->whenFailed});
  }
  return textTable(rows, rows.front().size()) +
         "2 means wrong arguments, after repair also that there is nothing to repair.\n"
         "Ctrl-C ends a capture with 0 if a frame has come.\n\n"
         "\"oc_capture COMMAND --help\" explains a command, with examples.";
}

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

}  // namespace

CommandOptions::CommandOptions(CLI::App& app, const Command& command, RunCommand& given)
    : parser_(*app.add_subcommand(command.name, command.description)) {
  parser_.footer(textBelowOptions(command));
  parser_.callback([this, &given, run = command.prepare(*this)] {
    for (const auto& readValue : givenValues_) {
      readValue();
    }
    given = run;
  });
}

void CommandOptions::add(const char* name, const char* type, const char* description,
                         ReadValue read, Presence presence) {
  // The parser calls back before it checks for required options and for --help. So this only keeps
  // the value. It is read when the command line is known to be complete.
  const auto keep = [this, name, read = std::move(read)](const std::string& text) {
    givenValues_.push_back([name, read, text] { read(name, text); });
  };
  parser_.add_option_function<std::string>(name, keep, description)
      ->type_name(type)
      ->required(presence == Presence::Required);
}

void CommandOptions::addFlag(const char* name, bool& flag, const std::string& description) {
  parser_.add_flag(name, flag, description);
}

RunCommand parseCommandLine(std::span<const Command* const> commands,
                            std::vector<std::string> arguments) {
  CLI::App app("Lists astronomy cameras, records from them and measures them.", "oc_capture");
  app.require_subcommand(1);
  app.set_version_flag("--version", "oc_capture " ORVANE_VERSION, "Print the version and exit");
  app.add_flag_callback(
      "--licenses", [] { throw CLI::CallForVersion(licenseTexts(), 0); },
      "Print the licences and exit");
  app.allow_windows_style_options(false);  // a path may start with a slash
  app.footer(textBelowCommands(commands));
  RunCommand given;
  std::deque<CommandOptions> options;  // its elements keep their addresses
  for (const Command* command : commands) {
    options.emplace_back(app, *command, given);
  }
  // A narrow column for the list of commands. The commands keep their own formatter.
  app.formatter(std::make_shared<CLI::Formatter>());
  app.get_formatter()->column_width(14);

  try {
    std::reverse(arguments.begin(), arguments.end());  // the order that the parser expects
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    return [text = app.help()] {
      std::cout << text << "\n" << std::flush;
      return 0;
    };
  } catch (const CLI::CallForVersion& version) {
    return [text = std::string(version.what())] {
      std::cout << text << "\n" << std::flush;
      return 0;
    };
  } catch (const CLI::ParseError& error) {
    throw usageError(error, app, commands);
  }
  return given;
}

ReadValue intoText(std::string& value) {
  return [&value](const char*, const std::string& text) { value = text; };
}

}  // namespace orvane::host
