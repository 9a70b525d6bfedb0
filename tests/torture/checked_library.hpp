// The library, with every call compared with the contract.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "orvane_desktop_camera_loader.h"
#include "torture/contract.hpp"

namespace orvane::testing {

/// How a checked library observes what a call does to its surroundings.
struct Surroundings {
  /// Returns the events since the last call. Throws a Violation if they are inconsistent.
  std::function<std::vector<SdkCall>()> takeEvents;
  /// Called directly before and after each function. `leave` returns the number of events before a
  /// failed allocation, if one failed. Both may be empty.
  std::function<void()> enter{};
  std::function<std::optional<std::size_t>()> leave{};
};

/// Calls the functions. After each call the result, the calls into the SDKs and the library's state
/// must match the contract; otherwise it throws a Violation. Returns the result, or an empty one if
/// std::bad_alloc left the function as the contract requires.
class CheckedLibrary {
 public:
  /// `library` has the functions under test, linked or loaded at run time. `contract` must be in
  /// the same state as the library.
  CheckedLibrary(const OrvaneDesktopCamera& library, Contract contract, Surroundings surroundings)
      : oc_(library), surroundings_(std::move(surroundings)), contract_(std::move(contract)) {}

  void libraryDir(const char* directory);
  std::optional<int> scan();
  std::optional<std::string> info(int index);
  std::optional<int> open(const OpenArguments& arguments);
  /// Reads into a buffer of this length, or without a buffer. The bytes after it must not change.
  std::optional<int> read(int bufferLength, int timeoutMs, bool hasBuffer = true);
  std::optional<int> apply(std::int64_t exposureUs, int gain, int offset);
  std::optional<double> temperature();
  void close();

  /// The state that the contract requires, which the library matches.
  const Contract& contract() const { return contract_; }

 private:
  /// Calls `run` and requires what the rule of the contract returns. Both get the arguments.
  template <class Run, class Rule, class... Arguments>
  auto step(const char* function, Run run, Rule rule, const Arguments&... arguments);

  OrvaneDesktopCamera oc_;
  Surroundings surroundings_;
  Contract contract_;
  std::vector<std::uint8_t> buffer_;
};

}  // namespace orvane::testing
