// The findings of "oc_capture doctor", as text and as JSON.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "sdk_check/examination.hpp"

namespace orvane::host {

/// What the library reports after a scan.
struct LibraryFindings {
  std::string libraries;  ///< oc_libraries()
  std::string error;      ///< oc_error()
  int cameraCount = 0;    ///< oc_scan()
};

struct DoctorFindings {
  std::filesystem::path directory;
  std::vector<SdkFindings> sdks;  ///< all four
  bool wasAskedToScan = false;
  std::optional<LibraryFindings> scan;  ///< empty without a scan

  /// Every SDK that is present works, and so did the scan, if there was one.
  bool isHealthy() const;
};

/// Lines for a person. The last line is a summary.
std::string doctorText(const DoctorFindings& findings);

/// One JSON document.
std::string doctorJson(const DoctorFindings& findings);

}  // namespace orvane::host
