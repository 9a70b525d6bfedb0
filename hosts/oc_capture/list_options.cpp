// What "oc_capture list" is told on the command line.
#include "oc_capture/list_options.hpp"

#include <CLI/CLI.hpp>

namespace orvane::host {

ListOptions::ListOptions(CLI::App& app)
    : Subcommand(app, "list", "List the cameras and what they can do",
                 "oc_capture list --sdk C:\\sdk\n"
                 "oc_capture list --sdk C:\\sdk --json") {
  addSdk(list_.sdkDirectory);
  parser().add_flag("--json", list_.asJson, "Write one JSON document");
  parser().add_flag("--quiet", list_.isQuiet, "Write nothing but errors and the JSON document");
}

}  // namespace orvane::host
