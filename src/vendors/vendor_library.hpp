// One maker's SDK library: loads it, looks up its functions, turns result codes into exceptions.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/platform.hpp"

namespace orvane {

/// One SDK library. Once loaded it stays loaded, so that its pointers stay valid.
struct VendorLibrary {
  platform::Module module = nullptr;
  std::string name;  ///< base name of the last attempt to load it; empty before the first
};

/// Loads the library from the directory (UTF-8) unless it is loaded already. A library that is
/// missing or cannot be loaded is no failure: `module` stays null, and the next call tries again.
/// Throws std::system_error if the directory cannot be converted to the system's form.
void loadVendorLibrary(VendorLibrary& library, std::string_view baseName,
                       std::string_view directory);

/// Throws std::runtime_error "<library>: missing <function>". Out of line, to keep the look-up,
/// which is on the hot path, small.
[[noreturn]] void throwMissingSymbol(const VendorLibrary& library, const char* symbolName);

/// Looks up a function. Never returns null: throws the exception above if the library is not loaded
/// or lacks the function.
inline platform::FunctionAddress resolveSymbol(const VendorLibrary& library,
                                               const char* symbolName) {
  const platform::FunctionAddress address =
      library.module != nullptr ? platform::findFunction(library.module, symbolName) : nullptr;
  if (address == nullptr) {
    throwMissingSymbol(library, symbolName);
  }
  return address;
}

/// Throws std::runtime_error "<label>: <code>". Out of line for the same reason.
[[noreturn]] void throwVendorResult(std::int64_t code, const char* label);

/// The check for SDKs whose functions return 0 for success. Pass signed codes with their sign and
/// unsigned ones without: the general error of an unsigned SDK prints as 4294967295.
inline void checkVendorResult(std::int64_t code, const char* label) {
  if (code != 0) {
    throwVendorResult(code, label);
  }
}

/// The check for SDKs whose functions return an HRESULT: a negative one is a failure.
inline void checkToupResult(std::int64_t code, const char* label) {
  if (code < 0) {
    throwVendorResult(code, label);
  }
}

}  // namespace orvane
