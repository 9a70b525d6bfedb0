// One call into a simulated SDK, parsed from its log.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::testing {

/// A parsed line of the log.
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

}  // namespace orvane::testing
