// The program's commands, and the options that they have.
#pragma once

#include <functional>
#include <memory>
#include <span>
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

/// Runs a command. Returns the exit status, 0 or 1. Throws UsageError when the command cannot do
/// what is asked, and another std::exception when a camera or a file fails.
using RunCommand = std::function<int()>;

/// The options of one command, as a part of the argument parser.
class CommandOptions {
 public:
  /// Adds the command to the parser. If the command line names it, the parser reads the options'
  /// values and then sets `given`.
  CommandOptions(CLI::App& app, const Command& command, RunCommand& given);
  CommandOptions(const CommandOptions&) = delete;
  CommandOptions& operator=(const CommandOptions&) = delete;

  /// An option with a value, or a positional argument if `name` has no dashes.
  void add(const char* name, const char* type, const char* description, ReadValue read,
           Presence presence = Presence::Optional);

  /// An option without a value, which sets `flag`.
  void addFlag(const char* name, bool& flag, const std::string& description);

 private:
  CLI::App& parser_;
  std::vector<std::function<void()>> givenValues_;
};

struct Command {
  const char* name;
  const char* description;                         ///< one line of the program's help
  const char* explanation = "";                    ///< below the options in the command's help
  const char* examples;                            ///< one a line
  const char* whenDone;                            ///< what the exit status 0 means
  const char* whenFailed;                          ///< what the exit status 1 means
  const char* whenRefused = "wrong arguments";     ///< what the exit status 2 means
  RunCommand (*prepare)(CommandOptions& options);  ///< see prepareCommand()
};

extern const Command listCommand;
extern const Command recordCommand;
extern const Command snapCommand;
extern const Command benchCommand;
extern const Command watchCommand;
extern const Command playCommand;
extern const Command repairCommand;
extern const Command doctorCommand;

/// Makes a command's settings, and adds its options, which write into them. Returns the function
/// that runs the command with these settings.
template <class Settings, void (*addOptions)(CommandOptions&, Settings&),
          int (*run)(const Settings&)>
RunCommand prepareCommand(CommandOptions& options) {
  const auto settings = std::make_shared<Settings>();
  addOptions(options, *settings);
  return [settings] { return run(*settings); };
}

/// Reads the arguments after the program's name, in UTF-8. Returns what runs the command that they
/// name, or what prints a help text. Throws UsageError with a sentence.
RunCommand parseCommandLine(std::span<const Command* const> commands,
                            std::vector<std::string> arguments);

// Functions that store an option's value.

ReadValue intoText(std::string& value);

/// `Value` is int or std::optional<int>.
template <class Value>
ReadValue intoNumber(Value& value, int smallest, int largest) {
  return [&value, smallest, largest](const char* option, const std::string& text) {
    value = parseWholeNumber(option, text, smallest, largest);
  };
}

}  // namespace orvane::host
