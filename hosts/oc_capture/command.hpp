// One command of the program: a row of the table in main.cpp, and the options that it may have.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "system/argument_values.hpp"

namespace CLI {
class App;
}

namespace orvane::host {

struct Command;

/// Takes the text of an option's value. Throws UsageError, with a sentence that names the option.
using ReadValue = std::function<void(const char* option, const std::string& text)>;

enum class Presence { Optional, Required };

/// The options of one command, as a part of the argument parser.
class CommandOptions {
 public:
  CommandOptions(CLI::App& app, const Command& command);
  CommandOptions(const CommandOptions&) = delete;
  CommandOptions& operator=(const CommandOptions&) = delete;

  /// An option with a value, or a positional argument if `name` has no dashes.
  void add(const char* name, const char* type, const char* description, ReadValue read,
           Presence presence = Presence::Optional);

  /// An option without a value, which sets `flag`.
  void addFlag(const char* name, bool& flag, const char* description);

  /// True when the command line names this command.
  bool isGiven() const;

  /// Reads the values that were given, in the options' order. Throws UsageError.
  void readValues() const;

 private:
  CLI::App& parser_;
  std::vector<std::function<void()>> givenValues_;
};

/// Runs a command. Returns the exit status, 0 or 1. Throws UsageError when the command cannot do
/// what is asked, and another std::exception when a camera or a file fails.
using RunCommand = std::function<int()>;

struct Command {
  const char* name;
  const char* description;  ///< one line of the program's help
  const char* explanation;  ///< below the options in the command's help, or empty
  const char* examples;     ///< one a line
  RunCommand (*prepare)(CommandOptions& options);  ///< see prepareCommand()
};

/// Makes a command's settings and adds its options, which write into them. Returns the function
/// that runs the command with these settings; call it after readValues().
template <class Settings, void (*addOptions)(CommandOptions&, Settings&),
          int (*run)(const Settings&)>
RunCommand prepareCommand(CommandOptions& options) {
  const auto settings = std::make_shared<Settings>();
  addOptions(options, *settings);
  return [settings] { return run(*settings); };
}

// Functions that store an option's value.

ReadValue intoText(std::string& value);

/// `Value` is int or std::optional<int>.
template <class Value>
ReadValue intoNumber(Value& value, int smallest, int largest) {
  return [&value, smallest, largest](const char* option, const std::string& text) {
    value = parseWholeNumber(option, text, smallest, largest);
  };
}

/// What is written besides the command's result.
struct Reporting {
  bool isQuiet = false;  ///< nothing but errors and the JSON document
  bool asJson = false;   ///< one JSON document at the end, instead of a sentence
};

/// "--quiet" and "--json".
void addReportingOptions(CommandOptions& options, Reporting& reporting);

}  // namespace orvane::host
