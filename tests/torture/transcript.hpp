// The events of one call of an export: calls of SDK functions, failed look-ups and loads of
// libraries. The contract reads them back.
#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace orvane::testing {

/// One call into a simulated SDK, parsed from a line of its log. An attempt to load a library is
/// the call load(<library>) with the result 1 or 0.
struct SdkCall {
  std::string function{};
  std::string inputs{};              ///< as in the log, separated by ", "
  std::vector<std::string> texts{};  ///< the outputs in quotation marks
  std::vector<double> numbers{};     ///< the numeric outputs
  std::string result{};              ///< empty for a function without one
  bool isMissing = false;            ///< no call: the look-up of the function failed

  /// The result as an integer.
  std::int64_t code() const;
  /// The result as a floating-point number.
  double real() const;
  /// Output number `position`, or `otherwise` if the call wrote none.
  double number(std::size_t position, double otherwise = 0) const;
};

/// All calls in a log, in order. Throws std::runtime_error if a line is not a call.
std::vector<SdkCall> parseLog(std::string_view log);

/// A number or text in the form of the log.
template <class Value>
std::string logged(const Value& value) {
  if constexpr (std::is_arithmetic_v<Value>) {
    std::array<char, 32> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr};
  } else {
    return value;
  }
}

/// The inputs of a call in the form of the log.
template <class... Values>
std::string joined(const Values&... values) {
  std::string text;
  ((text += (text.empty() ? "" : ", ") + logged(values)), ...);
  return text;
}

/// Text in quotation marks, as in the log.
inline std::string quoted(const std::string& text) {
  return '"' + text + '"';
}

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
  explicit Transcript(std::vector<SdkCall> events, std::optional<FailedAllocation> failure = {})
      : events_(std::move(events)), failure_(failure) {}

  /// Requires this call and returns its outputs and result. Throws std::runtime_error "<library>:
  /// missing <function>" if the look-up failed, and a Violation for any other event.
  const SdkCall& call(const std::string& library, const std::string& function,
                      const std::string& inputs);

  /// Requires an attempt to load this library. Returns whether it succeeded.
  bool load(const std::string& library) { return call(library, "load", library).code() == 1; }

  /// The contract allows an allocation here. Throws std::bad_alloc if this is the one that failed.
  void allocate();

  /// The library itself reports a failure. The allocation of its message may fail, too.
  [[noreturn]] void refuse(const char* message);

  /// Whether allocate() has thrown.
  bool hasFailed() const { return hasFailed_; }

  /// Throws a Violation if events are left that the contract did not require.
  void expectEnd() const;

 private:
  std::vector<SdkCall> events_;
  std::size_t position_ = 0;
  std::optional<FailedAllocation> failure_;
  int placesSeen_ = 0;
  bool hasFailed_ = false;
};

}  // namespace orvane::testing
