// The events of one call of an export: loads of libraries, failed look-ups and calls of SDK
// functions. The contract reads them back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::testing {

/// One call into a simulated SDK, parsed from a line of its log.
struct SdkCall {
  std::string function;
  std::string inputs;              ///< as in the log, separated by ", "
  std::vector<std::string> texts;  ///< the outputs in quotation marks
  std::vector<double> numbers;     ///< the numeric outputs
  std::string result;              ///< empty for a function without one

  /// The result as an integer.
  std::int64_t code() const;
  /// The result as a floating-point number.
  double real() const;
  /// Output number `position`, or `otherwise` if the call wrote none.
  double number(std::size_t position, double otherwise = 0) const;
};

/// All calls in a log, in order. Throws std::runtime_error if a line is not a call.
std::vector<SdkCall> parseLog(std::string_view log);

/// A number in the form of the log.
std::string logged(std::int64_t number);
std::string logged(double number);
/// Text in the form of the log.
std::string quoted(const std::string& text);

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
