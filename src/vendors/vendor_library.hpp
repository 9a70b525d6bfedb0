// One maker's SDK library: loading it, finding its functions, and turning its result codes into
// exceptions.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/platform.hpp"

namespace orvane {

/// One SDK library. Once loaded it stays loaded, so that what it handed out stays valid.
struct VendorLibrary {
  platform::Module module = nullptr;
  std::string name;  ///< base name of the last attempt to load it; empty before the first
};

/// Loads the library from the directory (UTF-8) unless it is loaded already. A library that is
/// missing or cannot be loaded is no failure: `module` stays null and the next call tries again.
/// Throws std::system_error where the directory cannot be converted to the system's form.
void loadVendorLibrary(VendorLibrary& library, std::string_view baseName,
                       std::string_view directory);

/// Throws std::runtime_error "<library>: missing <function>". Apart from the look-up, which stays
/// on the hot path.
[[noreturn]] void throwMissingSymbol(const VendorLibrary& library, const char* symbolName);

/// The address of the function of this name, never null: where the library is not loaded or lacks
/// it, the exception above.
inline platform::FunctionAddress resolveSymbol(const VendorLibrary& library,
                                               const char* symbolName) {
  const platform::FunctionAddress address =
      library.module != nullptr ? platform::findFunction(library.module, symbolName) : nullptr;
  if (address == nullptr) {
    throwMissingSymbol(library, symbolName);
  }
  return address;
}

/// Throws std::runtime_error "<label>: <code>". Apart from the checks, which stay on the hot path.
[[noreturn]] void throwVendorResult(std::int64_t code, const char* label);

/// The check for SDKs whose functions return 0 for success. Signed codes are passed with their
/// sign, unsigned ones without: the general error of an unsigned SDK prints as 4294967295.
inline void checkVendorResult(std::int64_t code, const char* label) {
  if (code != 0) {
    throwVendorResult(code, label);
  }
}

/// The check for SDKs whose functions return an HRESULT: negative is failure.
inline void checkToupResult(std::int64_t code, const char* label) {
  if (code < 0) {
    throwVendorResult(code, label);
  }
}

}  // namespace orvane
