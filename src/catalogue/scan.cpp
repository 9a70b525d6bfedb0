// The scan driver: loads the libraries, lists their cameras, collects the failures.
#include "catalogue/scan.hpp"

#include <exception>

#include "api/state.hpp"
#include "vendors/vendor_family.hpp"

namespace orvane {

namespace {

void appendSeparated(std::string& list, std::string_view separator, std::string_view item) {
  if (!list.empty()) {
    list += separator;
  }
  list += item;
}

}  // namespace

int scanCameras() {
  if (state.active.openIndex >= 0) {
    state.lastError = "Stop the preview before rescanning";
    return -1;
  }
  state.catalogue.clear();
  state.lastError.clear();
  state.loadedLibraries.clear();

  for (const VendorFamily* family : vendorTable) {
    VendorLibrary& library = libraryOf(family->vendor);
    loadVendorLibrary(library, family->baseName, state.libraryDir);
    if (library.module == nullptr) {
      continue;
    }
    appendSeparated(state.loadedLibraries, ", ", family->baseName);
    try {
      family->scan();
    } catch (const std::exception& failure) {
      appendSeparated(state.lastError, "; ", failure.what());
    }
  }
  return static_cast<int>(state.catalogue.size());
}

}  // namespace orvane
