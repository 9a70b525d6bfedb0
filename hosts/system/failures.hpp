// The failure of a host program that is the user's: it has an exit status of its own.
#pragma once

#include <stdexcept>

namespace orvane::host {

/// What the user asked for cannot be done as asked; the text is one sentence for the user.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace orvane::host
