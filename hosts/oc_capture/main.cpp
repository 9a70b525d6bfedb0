// oc_capture lists cameras and records from them through the library's public header. This file has
// the table of its commands, and turns failures into messages and exit statuses.
#include <array>
#include <exception>
#include <iostream>

#include "oc_capture/command.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"

namespace {

using namespace orvane::host;

// In the order of the help.
constexpr std::array commands{&listCommand,  &recordCommand, &snapCommand,  &benchCommand,
                              &watchCommand, &playCommand,   &doctorCommand};

constexpr int failed = 1;
constexpr int wrongArguments = 2;

int report(const std::exception& error, int status) {
  std::cerr << "oc_capture: " << error.what() << "\n";
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    useUtf8Console();
    return parseCommandLine(commands, commandLineArguments(argc, argv))();
  } catch (const UsageError& error) {
    return report(error, wrongArguments);
  } catch (const std::exception& error) {
    return report(error, failed);
  }
}
