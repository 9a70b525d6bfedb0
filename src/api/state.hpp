// All state that the library keeps between calls.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "capture/active_camera.hpp"
#include "vendors/vendor_library.hpp"

namespace orvane {

/// Empty when the library is loaded. Unloading frees its memory and does nothing else. Not locked:
/// the library has one caller at a time.
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
  /// Capacity reserved for error messages, so that running out of memory can still be reported.
  static constexpr std::size_t ordinaryMessageLength = 511;
};

inline LibraryState state;

/// The SDK library of a family.
inline VendorLibrary& libraryOf(Vendor vendor) {
  return state.libraries[static_cast<std::size_t>(vendor)];
}

}  // namespace orvane
