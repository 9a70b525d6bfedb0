// What "oc_capture doctor" is told on the command line.
#include "oc_capture/doctor_options.hpp"

#include <CLI/CLI.hpp>

namespace orvane::host {

namespace {

constexpr const char* explanation =
    "For each of the four SDKs: its file, whether it loads and otherwise what the system says, "
    "the\n"
    "functions that the library calls and the SDK lacks, and the libraries that the SDK needs. "
    "The\n"
    "SDKs are loaded, but no camera is opened. The exit status is 1 when an SDK that is there is\n"
    "not healthy, or the scan failed.\n"
    "\n"
    "With --scan the library itself is asked, too. It then opens every camera for a moment, which\n"
    "disturbs a program that is using one.";

}  // namespace

DoctorOptions::DoctorOptions(CLI::App& app)
    : Subcommand(app, "doctor", "Tell why an SDK cannot be used, without opening a camera",
                 "oc_capture doctor --sdk C:\\sdk\n"
                 "oc_capture doctor --sdk C:\\sdk --scan --json",
                 explanation) {
  addSdk(doctor_.sdkDirectory);
  parser().add_flag("--scan", doctor_.mayScan, "Ask the library too, which opens every camera");
  parser().add_flag("--json", doctor_.asJson, "Write one JSON document");
}

}  // namespace orvane::host
