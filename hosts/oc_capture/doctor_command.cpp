// "oc_capture doctor": whether the makers' SDKs are there, load, and have all that is needed.
#include "oc_capture/doctor_command.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <stdexcept>

#include "common/text.hpp"
#include "oc_capture/camera_session.hpp"
#include "oc_capture/doctor_report.hpp"
#include "oc_capture/sdk_directory.hpp"

namespace orvane::host {

namespace {

constexpr const char* helpText =
    "For each of the four SDKs: its file, whether it loads and otherwise what the system says, "
    "the\n"
    "functions that the library calls and the SDK lacks, and the libraries that the SDK needs. "
    "The\n"
    "SDKs are loaded, but no camera is opened.\n"
    "\n"
    "With --scan the library itself is asked, too. It then opens every camera for a moment, which\n"
    "disturbs a program that is using one.\n"
    "\n"
    "Exit status: 0 every SDK that is there is healthy, or there is none; 1 one is not, or the "
    "scan\n"
    "failed; 2 wrong arguments.";

// A scan loads the SDKs again, and ends this program where that is not safe.
bool canBeScanned(const std::vector<SdkFindings>& sdks) {
  return std::none_of(sdks.begin(), sdks.end(), [](const SdkFindings& sdk) {
    return sdk.isPresent && sdk.load == LoadOutcome::NotTried;
  });
}

void scan(DoctorFindings& findings) {
  findings.wasAskedToScan = true;
  if (!canBeScanned(findings.sdks)) {
    return;
  }
  const ScanResult result = scanCameras(utf8FromPath(findings.directory));
  findings.scan = LibraryFindings{validUtf8(result.libraries), validUtf8(result.error),
                                  static_cast<int>(result.infos.size())};
}

}  // namespace

CLI::App* addDoctorCommand(CLI::App& app, DoctorCommand& command) {
  CLI::App* const doctor =
      app.add_subcommand("doctor", "Tell why an SDK cannot be used, without opening a camera");
  doctor->add_option("--sdk", command.sdkDirectory, "Directory with the makers' SDK libraries")
      ->required()
      ->type_name("DIR");
  doctor->add_flag("--scan", command.mayScan, "Ask the library too, which opens every camera");
  doctor->add_flag("--json", command.asJson, "Write one JSON document");
  doctor->footer(helpText);
  return doctor;
}

int examineSdks(const DoctorCommand& command) {
  DoctorFindings findings;
  findings.directory = fullSdkDirectory(command.sdkDirectory);
  for (const Sdk& sdk : allSdks()) {
    findings.sdks.push_back(examineSdk(sdk, findings.directory));
  }
  if (command.mayScan) {
    scan(findings);
  }
  std::cout << (command.asJson ? doctorJson(findings) : doctorText(findings)) << std::flush;
  if (!std::cout) {
    throw std::runtime_error("The findings could not be written.");
  }
  return findings.isHealthy() ? 0 : 1;
}

}  // namespace orvane::host
