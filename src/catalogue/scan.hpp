// Building the catalogue.
#pragma once

namespace orvane {

/// Rebuilds the catalogue: loads the SDKs that are not loaded yet, then lets every family whose SDK
/// is loaded append its cameras. Returns the number of cameras, or -1 with a message in the error
/// text if a camera is open. A family's failure is added to the error text. Throws
/// std::system_error if the library directory cannot be converted to the system's form.
int scanCameras();

}  // namespace orvane
