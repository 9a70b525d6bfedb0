// oc_capture: lists cameras and records from them, with nothing but the library's public header.
// Here: the program's start, and how its failures become messages and exit statuses.
#include <cstdio>
#include <exception>
#include <iostream>
#include <variant>

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

constexpr int done = 0;
constexpr int failed = 1;
constexpr int wrongArguments = 2;

int carryOut(const HelpText& help) {
  std::cout << help.text << std::flush;
  return done;
}

int carryOut(const ListCommand& command) {
  return listCameras(command);
}

int carryOut(const RecordCommand& command) {
  record(command);
  return done;
}

int carryOut(const SnapCommand& command) {
  snap(command);
  return done;
}

int carryOut(const PlayCommand& command) {
  play(command);
  return done;
}

int carryOut(const DoctorCommand& command) {
  return examineSdks(command);
}

int carryOut(const BenchCommand& command) {
  return bench(command);
}

int carryOut(const WatchCommand& command) {
  watch(command);
  return done;
}

int report(const std::exception& error, int status) {
  std::cerr << "oc_capture: " << error.what() << "\n";
  return status;
}

int run(int argc, char** argv) {
  try {
    useUtf8Console();
    return std::visit([](const auto& command) { return carryOut(command); },
                      parseCommandLine(commandLineArguments(argc, argv)));
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
