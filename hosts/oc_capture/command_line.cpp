// What the user typed, understood as far as that is possible without having seen the cameras.
#include "oc_capture/command_line.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

// The subcommands' names, for a sentence.
std::string subcommandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands(nullptr)) {
    names.push_back(command->get_name());
  }
  return alternatives(names);
}

// What the argument parser has to say, as a sentence.
UsageError usageError(const CLI::ParseError& error, const CLI::App& app) {
  const std::string text = error.what();
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr && app.get_subcommands().empty()) {
    return UsageError("Say what to do: " + subcommandNames(app) + ".");
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string option = text.substr(0, text.find(':'));
    return UsageError(option + " needs one value.");
  }
  return UsageError(text + ".");
}

}  // namespace

Command parseCommandLine(std::vector<std::string> arguments) {
  CLI::App app("Lists astronomy cameras, records from them and measures them.", "oc_capture");
  app.require_subcommand(1);
  app.allow_windows_style_options(false);  // a path may start with a slash
  app.footer("\"oc_capture COMMAND --help\" tells about one of them, with examples.");

  const ListOptions list(app);
  const RecordOptions record(app);
  const SnapOptions snap(app);
  const BenchOptions bench(app);
  const WatchOptions watch(app);
  const PlayOptions play(app);
  const DoctorOptions doctor(app);

  try {
    std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    return HelpText{app.help() + "\n"};
  } catch (const CLI::ParseError& error) {
    throw usageError(error, app);
  }
  if (list.isGiven()) {
    return list.command();
  }
  if (snap.isGiven()) {
    return snap.command();
  }
  if (play.isGiven()) {
    return play.command();
  }
  if (doctor.isGiven()) {
    return doctor.command();
  }
  if (bench.isGiven()) {
    return bench.command();
  }
  if (watch.isGiven()) {
    return watch.command();
  }
  return record.command();
}

}  // namespace orvane::host
