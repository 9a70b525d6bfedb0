// Failures: how they begin inside the library, as exceptions, and end at its boundary, as return
// values.
#pragma once

#include <algorithm>
#include <exception>
#include <string_view>

#include "api/state.hpp"
#include "vendors/sdk_call.hpp"

namespace orvane {

/// Throws std::runtime_error with the message.
[[noreturn]] void throwFailure(const char* message);

/// Keeps the message for oc_error(), cut to the memory at hand where there is no more.
inline void keepMessage(std::string_view message) noexcept {
  try {
    state.lastError = message;
  } catch (const std::exception&) {
    message = message.substr(0, std::min(message.size(), state.lastError.capacity()));
    state.lastError = message;
  }
}

/// The body's result, or `failure` with the message kept when it throws an exception of the
/// standard family. Any other exception passes, one of an SDK as the SDK threw it.
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

/// Runs the body and forgets whatever it throws.
template <class Body>
void quietly(Body body) noexcept {
  try {
    body();
  } catch (...) {  // NOLINT(bugprone-empty-catch): that is the purpose
  }
}

}  // namespace orvane
