// oc_capture lists cameras and records from them through the library's public header. This file has
// the table of its commands.
#include <array>

#include "oc_capture/command.hpp"
#include "oc_capture/report.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"

namespace {

using namespace orvane::host;

// In the order of the help.
constexpr std::array commands{&listCommand,  &recordCommand, &snapCommand,   &benchCommand,
                              &watchCommand, &playCommand,   &repairCommand, &doctorCommand};

}  // namespace

int main(int argc, char** argv) {
  const auto run = [&] {
    useUtf8Console();
    return parseCommandLine(commands, commandLineArguments(argc, argv))();
  };
  return exitStatusOf(run, [](const char* text) { reportFailure(text); });
}
