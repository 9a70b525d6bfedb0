// Catches exceptions that leave the library and that GCC's runtime did not throw.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace orvane::testing {

/// An exception that left a body.
struct LeavingException {
  /// "int 7" for a thrown 7, "object" for any other type, "" if nothing was thrown. On Windows
  /// "moved object" if an object of a simulated SDK is not at the address where it was thrown.
  std::string what;

  /// The structured exception on Windows; 0 and empty on Linux.
  std::uint32_t code = 0;
  std::vector<std::uintptr_t> parameters;
};

/// Runs the body as a host built with Microsoft's compiler would: on Windows it catches every
/// structured exception but GCC's, on Linux every C++ exception.
LeavingException leavingException(const std::function<void()>& body);

}  // namespace orvane::testing
