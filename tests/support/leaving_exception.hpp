// Catches exceptions that leave the library and that GCC's runtime did not throw.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace orvane::testing {

/// An exception that left a body.
struct LeavingException {
  /// "int 7" for a thrown 7, "object" for any other type, "" if nothing was thrown. With mingw-w64
  /// "moved object" if an object of a simulated SDK is not at the address where it was thrown.
  std::string what;

  /// The structured exception with mingw-w64; else 0 and empty.
  std::uint32_t code = 0;
  std::vector<std::uintptr_t> parameters;
};

/// Runs the body as a host built with Microsoft's compiler would: with mingw-w64 it catches every
/// structured exception but GCC's, else every C++ exception.
LeavingException leavingException(const std::function<void()>& body);

}  // namespace orvane::testing
