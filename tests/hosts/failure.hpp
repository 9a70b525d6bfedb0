// The message of a call that fails.
#pragma once

#include <exception>
#include <string>

namespace orvane::testing {

/// What the call's exception says; "no failure" if it throws none.
template <class Exception = std::exception, class Call>
std::string failureOf(Call call) {
  try {
    call();
  } catch (const Exception& error) {
    return error.what();
  }
  return "no failure";
}

}  // namespace orvane::testing
