// The length of a test, which its user may choose.
#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace orvane::testing {

/// The number in an environment variable, or `otherwise` if it is not set. Throws
/// std::runtime_error if it is not a number.
inline long chosen(const char* variable, long otherwise) {
  const char* const text = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): one thread
  if (text == nullptr || *text == '\0') {
    return otherwise;
  }
  char* end = nullptr;
  const long number = std::strtol(text, &end, 10);
  if (*end != '\0') {
    throw std::runtime_error(std::string(variable) + " is no number: " + text);
  }
  return number;
}

}  // namespace orvane::testing
