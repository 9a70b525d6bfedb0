// "oc_capture doctor": whether the makers' SDKs are there, load, and have all that is needed.
#include <algorithm>
#include <iostream>
#include <stdexcept>

#include "oc_capture/camera_options.hpp"
#include "oc_capture/doctor_report.hpp"
#include "session/camera_catalogue.hpp"
#include "session/sdk_directory.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct DoctorSettings {
  std::string sdkDirectory;
  bool mayScan = false;  // opens every camera for a moment
  bool asJson = false;
};

void addOptions(CommandOptions& options, DoctorSettings& doctor) {
  addSdkOptions(options, doctor.sdkDirectory);
  options.addFlag("--scan", doctor.mayScan, "Scan too, which opens every camera");
  options.addFlag("--json", doctor.asJson, "Write one JSON document");
}

// False if an SDK was not loaded because that could end this program. The scan would load it.
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
  const oc::Scan found = presentable(oc::scan(findings.directory));
  findings.scan = LibraryFindings{joined(found.libraries, ", "), found.error,
                                  static_cast<int>(found.cameras.size())};
}

int examineSdks(const DoctorSettings& settings) {
  DoctorFindings findings;
  findings.directory = fullSdkDirectory(settings.sdkDirectory);
  for (const Sdk& sdk : allSdks()) {
    findings.sdks.push_back(examineSdk(sdk, findings.directory));
  }
  if (settings.mayScan) {
    scan(findings);
  }
  std::cout << (settings.asJson ? doctorJson(findings) : doctorText(findings)) << std::flush;
  if (!std::cout) {
    throw std::runtime_error("The findings could not be written.");
  }
  return findings.isHealthy() ? 0 : 1;
}

constexpr const char* explanation =
    R"(Tells about each of the four SDKs: its file, whether it loads or the system's
message, the functions that the library calls but the SDK lacks, and the
libraries that the SDK needs. The SDKs are loaded, but no camera is opened.
The exit status is 1 if an SDK is there but not healthy, or if the scan failed.

With --scan the library itself scans for cameras, too. It opens every camera
for a moment, which disturbs a program that is using one.)";

constexpr const char* examples =
    R"(  oc_capture doctor --sdk C:\sdk
  oc_capture doctor --sdk C:\sdk --scan --json)";

}  // namespace

const Command doctorCommand{
    "doctor", "Tell why an SDK cannot be used, without opening a camera", explanation,
    examples, prepareCommand<DoctorSettings, addOptions, examineSdks>,
};

}  // namespace orvane::host
