// One call into a simulated SDK, as its log tells it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::testing {

/// A line of the log, taken apart.
struct SdkCall {
  std::string function;
  std::string inputs;              ///< as they stand in the log, ", " between them
  std::vector<std::string> texts;  ///< the outputs in quotation marks
  std::vector<double> numbers;     ///< all other outputs
  std::string result;              ///< empty for a function without one

  /// The result as a whole number.
  std::int64_t code() const;
  /// The result as a real number.
  double real() const;
  /// Output number `position`, or `otherwise` for a call that wrote none.
  double number(std::size_t position, double otherwise = 0) const;
};

/// Every call of a log, in order. Throws std::runtime_error for a line that is none.
std::vector<SdkCall> parseLog(std::string_view log);

/// Numbers as the log writes them.
std::string logged(std::int64_t number);
std::string logged(double number);
/// Text as the log writes it.
std::string quoted(const std::string& text);

}  // namespace orvane::testing
