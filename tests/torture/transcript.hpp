// What one call of an export did to the outside: the libraries that it tried to load, the failed
// look-ups of SDK functions, the calls that it made. The contract reads it back.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "torture/sdk_call.hpp"

namespace orvane::testing {

/// One thing that happened.
struct Event {
  enum class Kind {
    Load,     ///< an attempt to load the library `name`
    Missing,  ///< a look-up of the function `name` that found nothing
    Call,     ///< `call`
  };

  Kind kind = Kind::Call;
  std::string name;
  bool isLoaded = false;
  SdkCall call;
};

/// What the library did is not what the contract says. Deliberately no std::exception: the
/// contract's own handlers must let it pass.
struct Violation {
  std::string text;
};

/// An allocation that failed: between which events, and which of the contract's places there.
struct FailedAllocation {
  std::size_t eventsBefore = 0;
  int place = 0;
};

/// The events of one export, handed out one by one to the contract, which asks for each in turn
/// under the name and with the arguments that it demands.
class Transcript {
 public:
  explicit Transcript(std::vector<Event> events, std::optional<FailedAllocation> failure = {})
      : events_(std::move(events)), failure_(failure) {}

  /// The contract demands this call: its outputs and result. A function that was missing throws
  /// std::runtime_error "<library>: missing <function>", any other event a Violation.
  const SdkCall& call(const std::string& library, const std::string& function,
                      std::initializer_list<std::string> inputs);

  /// The contract demands an attempt to load this library; returns whether that succeeded.
  bool load(const std::string& library);

  /// The contract allows an allocation here: throws std::bad_alloc if it is the one that failed.
  void allocate();

  /// Whether allocate() has thrown.
  bool hasFailed() const { return hasFailed_; }

  /// Nothing happened that the contract did not demand; throws a Violation otherwise.
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
