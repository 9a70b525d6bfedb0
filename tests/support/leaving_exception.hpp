// What a host sees of an exception that leaves the library and that is not GCC's.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace orvane::testing {

/// An exception that left a body.
struct LeavingException {
  /// "int 7", or "object" for any other; "" when none left. On Windows also "moved object" for an
  /// object of a simulated SDK's that does not lie where it was thrown.
  std::string what;

  /// Windows: the structured exception. 0 and empty elsewhere.
  std::uint32_t code = 0;
  std::vector<std::uintptr_t> parameters;
};

/// Runs the body as a host would that a compiler of the makers' built: on Windows structured
/// exceptions are caught, any of them, and C++ exceptions elsewhere.
LeavingException leavingException(const std::function<void()>& body);

}  // namespace orvane::testing
