// Failures. Inside the library they are exceptions. At its boundary they become return values and
// error texts.
#pragma once

#include <algorithm>
#include <exception>
#include <string_view>

#include "api/state.hpp"
#include "vendors/sdk_call.hpp"

namespace orvane {

/// Throws std::runtime_error with the message.
[[noreturn]] void throwFailure(const char* message);

/// Stores the message for oc_error(), truncated to the existing capacity if allocation fails.
inline void keepMessage(std::string_view message) noexcept {
  try {
    state.lastError = message;
  } catch (const std::exception&) {
    message = message.substr(0, std::min(message.size(), state.lastError.capacity()));
    state.lastError = message;
  }
}

/// Returns the body's result. If the body throws an exception derived from std::exception, stores
/// its message and returns `failure`. Any other exception passes unchanged.
template <class Result, class Body>
Result orFailure(Result failure, Body body) {
  return passingSdkExceptions([&]() -> Result {
    try {
      return body();
    } catch (const std::exception& exception) {
      keepMessage(exception.what());
      return failure;
    }
  });
}

/// Runs the body and ignores whatever it throws.
template <class Body>
void quietly(Body body) noexcept {
  try {
    body();
  } catch (...) {  // NOLINT(bugprone-empty-catch): that is the purpose
  }
}

}  // namespace orvane
