// Closing a device that was opened for a moment, whatever happens in between.
#pragma once

namespace orvane {

/// Runs the body, then the close, also when the body throws; the body's exception then passes on. A
/// close that throws is not swallowed, as it would be in a destructor: it is the failure reported.
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
