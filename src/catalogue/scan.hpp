// Building the catalogue.
#pragma once

namespace orvane {

/// Empties and rebuilds the catalogue: loads the SDKs that are not loaded yet and lets every family
/// that has one append its cameras. Returns the number of cameras, or -1 with a message in the
/// error text while a camera is open. A family's failure becomes part of the error text; a library
/// directory that cannot be converted leaves as std::system_error.
int scanCameras();

}  // namespace orvane
