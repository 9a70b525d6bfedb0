// "oc_capture doctor": whether the makers' SDKs are there, load, and have all that is needed.
#pragma once

#include "oc_capture/doctor_options.hpp"

namespace orvane::host {

/// Writes what was found to standard output. Returns the exit status: 1 when an SDK that is present
/// cannot be used, or when the scan failed.
int examineSdks(const DoctorCommand& command);

}  // namespace orvane::host
