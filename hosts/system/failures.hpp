// The two ways in which a host program fails, so that each ends with its own exit status.
#pragma once

#include <stdexcept>

namespace orvane::host {

/// What the user asked for cannot be done as asked; the text is one sentence for the user.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A camera or its SDK failed; the text is the library's own where it gave one.
class CameraError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace orvane::host
