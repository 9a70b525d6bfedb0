// "oc_capture doctor": whether the makers' SDKs are there, load, and have all that is needed.
#include "oc_capture/doctor_command.hpp"

#include <algorithm>
#include <iostream>
#include <stdexcept>

#include "oc_capture/doctor_report.hpp"
#include "session/camera_session.hpp"
#include "session/sdk_directory.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

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
