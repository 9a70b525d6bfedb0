// The failure of a host program that its user caused. It has an exit status of its own.
#pragma once

#include <stdexcept>

namespace orvane::host {

/// The user asked for something that cannot be done. The text is one sentence for the user.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace orvane::host
