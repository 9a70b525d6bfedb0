// The events of one call of an export: loads of libraries, failed look-ups and calls of SDK
// functions. The contract reads them back.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "torture/sdk_call.hpp"

namespace orvane::testing {

/// One event.
struct Event {
  enum class Kind {
    Load,     ///< an attempt to load the library `name`
    Missing,  ///< a failed look-up of the function `name`
    Call,     ///< `call`
  };

  Kind kind = Kind::Call;
  std::string name{};
  bool isLoaded = false;
  SdkCall call{};
};

/// The library's behaviour differs from the contract. Not derived from std::exception, because the
/// contract's handlers must not catch it.
struct Violation {
  std::string text;
};

/// A failed allocation: the number of events before it, and which of the places for allocations
/// there it is.
struct FailedAllocation {
  std::size_t eventsBefore = 0;
  int place = 0;
};

/// The events of one export. The contract requires them one by one, each by its name and its
/// arguments.
class Transcript {
 public:
  explicit Transcript(std::vector<Event> events, std::optional<FailedAllocation> failure = {})
      : events_(std::move(events)), failure_(failure) {}

  /// Requires this call and returns its outputs and result. Throws std::runtime_error "<library>:
  /// missing <function>" if the look-up failed, and a Violation for any other event.
  const SdkCall& call(const std::string& library, const std::string& function,
                      std::initializer_list<std::string> inputs);

  /// Requires an attempt to load this library. Returns whether it succeeded.
  bool load(const std::string& library);

  /// The contract allows an allocation here. Throws std::bad_alloc if this is the one that failed.
  void allocate();

  /// The library itself reports a failure. The allocation of its message may fail, too.
  [[noreturn]] void refuse(const char* message);

  /// Whether allocate() has thrown.
  bool hasFailed() const { return hasFailed_; }

  /// Throws a Violation if events are left that the contract did not require.
  void expectEnd() const;

 private:
  const Event& next(const std::string& demanded);

  std::vector<Event> events_;
  std::size_t position_ = 0;
  std::optional<FailedAllocation> failure_;
  int placesSeen_ = 0;
  bool hasFailed_ = false;
};

}  // namespace orvane::testing
