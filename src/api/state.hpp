// Everything that the library remembers between two calls.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "capture/active_camera.hpp"
#include "vendors/vendor_library.hpp"

namespace orvane {

/// Constructed empty when the library is loaded; only its memory is released at unload. Used by one
/// caller at a time.
struct LibraryState {
  LibraryState() { lastError.reserve(ordinaryMessageLength); }

  std::string libraryDir;                            ///< UTF-8; where SDKs are loaded from
  std::string lastError;                             ///< what oc_error() returns
  std::string infoJson;                              ///< what oc_info() returned last
  std::string loadedLibraries;                       ///< what oc_libraries() returns
  std::array<VendorLibrary, vendorCount> libraries;  ///< in the order of Vendor
  CameraCatalogue catalogue;                         ///< of the last scan
  ActiveCamera active;                               ///< the one open camera

 private:
  /// Room for any ordinary message, so that running out of memory can still be reported.
  static constexpr std::size_t ordinaryMessageLength = 511;
};

inline LibraryState state;

/// The SDK library of a family.
inline VendorLibrary& libraryOf(Vendor vendor) {
  return state.libraries[static_cast<std::size_t>(vendor)];
}

}  // namespace orvane
