// oc_alpaca shows the cameras of this computer to astronomy programs, also on other computers, by
// the ASCOM Alpaca protocol. This file has its arguments.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <chrono>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "oc_alpaca/devices.hpp"
#include "oc_alpaca/router.hpp"
#include "oc_alpaca/server.hpp"
#include "oc_alpaca/worker.hpp"
#include "session/camera_catalogue.hpp"
#include "session/license_texts.hpp"
#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace {

using namespace orvane::host;

constexpr const char* helpFooter =
    R"(Examples:
  oc_alpaca --sdk C:\sdk
  oc_alpaca --sdk C:\sdk --listen 0.0.0.0

Ctrl-C ends the server. Exit status: 0 ended by the user, 1 a failure, 2 wrong arguments.)";

struct Arguments {
  std::string sdkDirectory;
  std::uint16_t port = 11111;
  std::uint16_t discoveryPort = 32227;
  std::string address = "127.0.0.1";
  std::string logFile;
  std::string offsetRange;
  int largestSample = largest16BitSample;
  bool isWorker = false;
  std::string memory;
  std::string textToPrint;  // --help, --version or --licenses
};

Arguments parse(std::vector<std::string> words) {
  Arguments arguments;
  CLI::App app("Shows cameras to astronomy programs by the ASCOM Alpaca protocol.", "oc_alpaca");
  app.set_version_flag("--version", "oc_alpaca " ORVANE_VERSION, "Print the version and exit");
  app.add_flag_callback(
      "--licenses", [] { throw CLI::CallForVersion(licenseTexts(), 0); },
      "Print the licences and exit");
  app.allow_windows_style_options(false);  // a path may start with a slash
  app.footer(helpFooter);
  app.add_option("--sdk", arguments.sdkDirectory, "Directory with the makers' SDKs")
      ->type_name("DIR")
      ->required();
  app.add_option("--port", arguments.port, "Port of the server; 0 takes a free one")
      ->capture_default_str()
      ->type_name("PORT");
  app.add_option("--discovery-port", arguments.discoveryPort, "UDP port where clients look for it")
      ->capture_default_str()
      ->type_name("PORT");
  app.add_option(
         "--listen", arguments.address,
         "Address of a network interface; 0.0.0.0 is all. Anyone who reaches it can use the "
         "cameras: there is no password")
      ->capture_default_str()
      ->type_name("ADDRESS");
  app.add_option("--log-file", arguments.logFile, "Append what happens to the cameras to this file")
      ->type_name("FILE");
  app.add_option("--offset-range", arguments.offsetRange,
                 "Let clients set the offset in this range, in the maker's units")
      ->type_name("A:B");
  app.add_option("--max-adu", arguments.largestSample,
                 "Largest value of 16-bit pictures, for cameras that never reach 65535")
      ->capture_default_str()
      ->check(CLI::Range(largest8BitSample, largest16BitSample))
      ->type_name("ADU");
  // Of the processes that the server starts.
  app.add_flag("--worker", arguments.isWorker)->group("");
  app.add_option("--memory", arguments.memory)->group("");
  try {
    std::reverse(words.begin(), words.end());  // the order that the parser expects
    app.parse(std::move(words));
  } catch (const CLI::CallForHelp&) {
    arguments.textToPrint = app.help();
  } catch (const CLI::CallForVersion& version) {
    arguments.textToPrint = version.what();
  } catch (const CLI::ParseError& error) {
    throw UsageError(std::string(error.what()) + ".");
  }
  return arguments;
}

std::optional<OffsetRange> offsetRangeFrom(const std::string& text) {
  if (text.empty()) {
    return std::nullopt;
  }
  OffsetRange range;
  const char* const end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, range.smallest);
  const bool hasColon = first.ec == std::errc() && first.ptr != end && *first.ptr == ':';
  const auto second = std::from_chars(hasColon ? first.ptr + 1 : end, end, range.largest);
  if (second.ec != std::errc() || second.ptr != end || range.smallest > range.largest) {
    throw UsageError("--offset-range must be two whole numbers such as 0:255, not " +
                     inQuotes(text) + ".");
  }
  return range;
}

void warnAboutNetwork(const std::string& address) {
  std::cerr << "oc_alpaca: Listening on " << address
            << ": whoever reaches this address takes the cameras. There is no password and no "
               "encryption. Use this only in a network where you trust everybody.\n";
}

int serve(const Arguments& arguments) {
  const bool isOpen = !Server::isLoopback(arguments.address);
  EventLog log = arguments.logFile.empty() ? EventLog() : EventLog(arguments.logFile);
  DeviceOptions options;
  options.sdkDirectory = utf8FromPath(fullSdkDirectory(arguments.sdkDirectory));
  options.offsets = offsetRangeFrom(arguments.offsetRange);
  options.largestSample = arguments.largestSample;
  options.log = &log;
  catchStopRequests();
  useFineSleep();
  // The server is destroyed first: no answer is made after the cameras are gone.
  Devices devices(options);
  Server* running = nullptr;
  Router router(devices, Server::hostName(),
                [&running](std::function<void()> work) { running->later(std::move(work)); });
  Server server;
  running = &server;
  server.listen(arguments.address, arguments.port,
                [&router](const Request& request) { return router.answer(request); });
  server.answerDiscovery(arguments.discoveryPort, isOpen);
  if (!devices.scanText().empty()) {
    std::cerr << "oc_alpaca: " << devices.scanText() << "\n";
  }
  if (isOpen) {
    warnAboutNetwork(arguments.address);
  }
  std::cout << "Cameras: " << devices.size() << "\nListening on http://" << arguments.address << ":"
            << server.port() << "/setup\n"
            << std::flush;
  constexpr std::chrono::milliseconds tick{100};
  while (!stopRequested()) {
    devices.checkPatience();
    std::this_thread::sleep_for(tick);
  }
  devices.disconnect();
  return 0;
}

int run(std::vector<std::string> words) {
  useUtf8Console();
  const Arguments arguments = parse(std::move(words));
  if (!arguments.textToPrint.empty()) {
    std::cout << arguments.textToPrint << "\n" << std::flush;
    return 0;
  }
  return arguments.isWorker ? runWorker(arguments.sdkDirectory, arguments.memory)
                            : serve(arguments);
}

}  // namespace

int main(int argc, char** argv) {
  return exitStatusOf([&] { return run(commandLineArguments(argc, argv)); },
                      [](const char* text) { std::cerr << "oc_alpaca: " << text << "\n"; });
}
