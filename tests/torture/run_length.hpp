// The length of a test, which its user may choose.
#pragma once

namespace orvane::testing {

/// The number in an environment variable, or `otherwise` if it is not set. Throws
/// std::runtime_error if it is not a number.
long chosen(const char* variable, long otherwise);

}  // namespace orvane::testing
