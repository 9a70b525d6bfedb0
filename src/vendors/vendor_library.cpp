// Loads an SDK library and throws the exceptions for missing functions and failed results.
#include "vendors/vendor_library.hpp"

#include <stdexcept>

namespace orvane {

void loadVendorLibrary(VendorLibrary& library, std::string_view baseName,
                       std::string_view directory) {
  if (library.module != nullptr) {
    return;
  }
  library.name = baseName;
  library.module = platform::loadLibrary(platform::libraryPath(directory, baseName));
}

void throwMissingSymbol(const VendorLibrary& library, const char* symbolName) {
  throw std::runtime_error(library.name + ": missing " + symbolName);
}

void throwVendorResult(std::int64_t code, const char* label) {
  throw std::runtime_error(label + (": " + std::to_string(code)));
}

}  // namespace orvane
