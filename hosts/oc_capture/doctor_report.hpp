// What the doctor found, for a person and for a program to read.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "sdk_check/examination.hpp"

namespace orvane::host {

/// What the library says after a scan.
struct LibraryFindings {
  std::string libraries;  ///< oc_libraries()
  std::string error;      ///< oc_error()
  int cameraCount = 0;    ///< oc_scan()
};

struct DoctorFindings {
  std::filesystem::path directory;
  std::vector<SdkFindings> sdks;  ///< all four
  bool wasAskedToScan = false;
  std::optional<LibraryFindings> scan;  ///< nothing where there was none

  /// Whether everything that is there works, as far as it was asked.
  bool isHealthy() const;
};

/// Lines for a person, the last of which sums up.
std::string doctorText(const DoctorFindings& findings);

/// One JSON document.
std::string doctorJson(const DoctorFindings& findings);

}  // namespace orvane::host
