// One command of the program: a row of the table in main.cpp, and the options that it may have.
#include "oc_capture/command.hpp"

#include <CLI/CLI.hpp>

namespace orvane::host {

namespace {

constexpr const char* statusText =
    R"(Exit status: 0 done, also when Ctrl-C ended it; 1 a camera or a file failed;
2 wrong arguments.)";

std::string textBelowOptions(const Command& command) {
  const std::string explanation = command.explanation;
  return (explanation.empty() ? "" : explanation + "\n\n") + "Examples:\n" + command.examples +
         "\n\n" + statusText;
}

}  // namespace

CommandOptions::CommandOptions(CLI::App& app, const Command& command)
    : parser_(*app.add_subcommand(command.name, command.description)) {
  parser_.footer(textBelowOptions(command));
}

void CommandOptions::add(const char* name, const char* type, const char* description,
                         ReadValue read, Presence presence) {
  // The parser calls back before it checks for required options and for --help. So the value is
  // only kept here, and is read when the command line is known to be complete.
  const auto keep = [this, name, read = std::move(read)](const std::string& text) {
    givenValues_.push_back([name, read, text] { read(name, text); });
  };
  parser_.add_option_function<std::string>(name, keep, description)
      ->type_name(type)
      ->required(presence == Presence::Required);
}

void CommandOptions::addFlag(const char* name, bool& flag, const char* description) {
  parser_.add_flag(name, flag, description);
}

bool CommandOptions::isGiven() const {
  return parser_.parsed();
}

void CommandOptions::readValues() const {
  for (const auto& readValue : givenValues_) {
    readValue();
  }
}

ReadValue intoText(std::string& value) {
  return [&value](const char*, const std::string& text) { value = text; };
}

void addReportingOptions(CommandOptions& options, Reporting& reporting) {
  options.addFlag("--quiet", reporting.isQuiet, "Write nothing but errors and the JSON document");
  options.addFlag("--json", reporting.asJson, "Write one JSON document at the end");
}

}  // namespace orvane::host
