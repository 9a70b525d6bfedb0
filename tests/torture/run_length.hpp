// How long a test runs, where its user may choose.
#pragma once

namespace orvane::testing {

/// The number in an environment variable, or `otherwise` where it is not set. Throws
/// std::runtime_error where it is no number.
long chosen(const char* variable, long otherwise);

}  // namespace orvane::testing
