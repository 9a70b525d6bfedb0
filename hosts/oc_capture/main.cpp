// oc_capture: lists cameras and records from them through the library's public header.
// Here: the table of its commands, and how failures become messages and exit statuses.
#include <array>
#include <exception>
#include <iostream>

#include "oc_capture/bench_command.hpp"
#include "oc_capture/command_line.hpp"
#include "oc_capture/doctor_command.hpp"
#include "oc_capture/list_command.hpp"
#include "oc_capture/play_command.hpp"
#include "oc_capture/record_command.hpp"
#include "oc_capture/snap_command.hpp"
#include "oc_capture/watch_command.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"

namespace orvane::host {

namespace {

// In the order of the help.
constexpr std::array commands{&listCommand,  &recordCommand, &snapCommand,  &benchCommand,
                              &watchCommand, &playCommand,   &doctorCommand};

constexpr int failed = 1;
constexpr int wrongArguments = 2;

int report(const std::exception& error, int status) {
  std::cerr << "oc_capture: " << error.what() << "\n";
  return status;
}

int run(int argc, char** argv) {
  try {
    useUtf8Console();
    return parseCommandLine(commands, commandLineArguments(argc, argv))();
  } catch (const UsageError& error) {
    return report(error, wrongArguments);
  } catch (const std::exception& error) {
    return report(error, failed);
  }
}

}  // namespace

}  // namespace orvane::host

int main(int argc, char** argv) {
  return orvane::host::run(argc, argv);
}
