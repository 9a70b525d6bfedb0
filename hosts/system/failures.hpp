// The failures of host programs, and their exit statuses.
#pragma once

#include <exception>
#include <stdexcept>

namespace orvane::host {

/// The user asked for something that cannot be done. The text is one sentence for the user.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Runs a program and returns its exit status: what `run` returns, 2 after a UsageError, 1 after
/// another exception. `report` tells the user the exception's text.
template <class Run, class Report>
int exitStatusOf(Run run, Report report) {
  try {
    return run();
  } catch (const UsageError& error) {
    report(error.what());
    return 2;
  } catch (const std::exception& error) {
    report(error.what());
    return 1;
  }
}

}  // namespace orvane::host
