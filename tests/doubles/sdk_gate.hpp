// A platform layer that stands between the library and one real SDK library: it sees every look-up,
// and can let functions be missing.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "doubles/simulated_sdk.hpp"
#include "torture/transcript.hpp"

namespace orvane::testing {

/// What passes the gate. Only the library `baseName` in `directory` can be loaded.
struct SdkGate {
  std::string directory;
  std::string baseName;
  const SimulatedSdk* sdk = nullptr;

  std::string hidden;          ///< a function that is missing all the time; "" for none
  std::size_t hiddenLookup{};  ///< the look-up, counted from 1, that finds nothing; 0 for none

  /// Every look-up since the last reset, by name.
  std::vector<const char*> lookups;

  /// The events since the last time. Throws a Violation where calls and look-ups do not belong
  /// together one to one.
  std::vector<Event> takeEvents();

  /// How much had passed since the events were last taken when an allocation failed.
  std::size_t eventsBeforeFailure = 0;

  /// Lets everything pass again, and forgets what has passed.
  void reset();

  /// One attempt to load or look-up; `isFound` whether it had success.
  struct Passed {
    bool isLoad = false;
    const char* name = "";  ///< of a function
    std::string baseName;   ///< of a load
    bool isFound = false;
  };
  std::vector<Passed> passed;
};

/// The one gate.
SdkGate& sdkGate();

}  // namespace orvane::testing
