// Closes a device that a scan opened, also when an exception is thrown in between.
#pragma once

namespace orvane {

/// Runs the body, then the close. If the body throws, the close runs and the exception passes on.
/// Not a scope guard: the close may throw, and then its exception is the one that is reported.
template <class Close, class Body>
void closingAfterwards(Close close, Body body) {
  try {
    body();
  } catch (...) {
    close();
    throw;
  }
  close();
}

}  // namespace orvane
