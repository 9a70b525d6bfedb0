// Reads the numbers and durations that a user types.
#include "system/argument_values.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <string_view>

#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct Unit {
  std::string_view name;
  double factor;
};

// The micro sign and the Greek letter look the same.
constexpr Unit times[] = {{"us", 1}, {"\u00b5s", 1}, {"\u03bcs", 1}, {"ms", 1e3}, {"s", 1e6}};

constexpr Unit sizes[] = {{"MB", 1e6}, {"GB", 1e9}, {"TB", 1e12}};

constexpr const char* decimalDigits = "0123456789.";

// The number that the text consists of.
template <class Number>
std::optional<Number> numberFrom(std::string_view text) {
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, number);
  return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number) : std::nullopt;
}

// Digits with at most one point: no sign, no exponent, no "inf".
std::optional<double> plainDecimal(std::string_view text) {
  return text.find_first_not_of(decimalDigits) == std::string_view::npos ? numberFrom<double>(text)
                                                                         : std::nullopt;
}

// Rounded. None below one, or above what can be counted.
std::optional<std::int64_t> wholeNumber(double number) {
  const double rounded = std::round(number);
  if (rounded < 1 || rounded > 1e15) {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(rounded);
}

// A number with one of these units. There may be spaces between them.
std::optional<std::int64_t> numberWithUnit(std::string_view text, std::span<const Unit> units) {
  const std::size_t numberEnd = std::min(text.find_first_not_of(decimalDigits), text.size());
  const auto number = plainDecimal(text.substr(0, numberEnd));
  const std::size_t unitStart = std::min(text.find_first_not_of(' ', numberEnd), text.size());
  const std::string_view unitName = text.substr(unitStart);
  for (const Unit& unit : units) {
    if (number && unitName == unit.name) {
      return wholeNumber(*number * unit.factor);
    }
  }
  return std::nullopt;
}

}  // namespace

int parseWholeNumber(const std::string& option, const std::string& text, int smallest,
                     int largest) {
  const auto number = numberFrom<int>(text);
  if (!number || *number < smallest || *number > largest) {
    throw UsageError(option + " needs a whole number from " + std::to_string(smallest) + " to " +
                     std::to_string(largest) + ", not " + inQuotes(text) + ".");
  }
  return *number;
}

std::int64_t parseSeconds(const std::string& option, const std::string& text) {
  const auto seconds = plainDecimal(text);
  const auto microseconds = wholeNumber(seconds.value_or(0) * 1e6);
  if (!microseconds) {
    throw UsageError(option + " needs a number of seconds above 0, such as 30 or 1.5, not " +
                     inQuotes(text) + ".");
  }
  return *microseconds;
}

std::int64_t parseDuration(const std::string& option, const std::string& text) {
  if (plainDecimal(text)) {
    throw UsageError(option + " needs a unit: " + text + "us, " + text + "ms or " + text + "s.");
  }
  const auto microseconds = numberWithUnit(text, times);
  if (!microseconds) {
    throw UsageError(option + " needs a duration such as 500us, 20ms or 1.5s, not " +
                     inQuotes(text) + ".");
  }
  return *microseconds;
}

std::int64_t parseSize(const std::string& option, const std::string& text) {
  const auto bytes = numberWithUnit(text, sizes);
  if (!bytes) {
    throw UsageError(option + " needs a size such as 500MB, 2GB or 1TB, not " + inQuotes(text) +
                     ".");
  }
  return *bytes;
}

std::string sizeText(std::int64_t bytes) {
  const auto* unit = std::begin(sizes);
  const auto number = static_cast<double>(bytes);
  while (unit + 1 != std::end(sizes) && number >= unit[1].factor) {
    ++unit;
  }
  return decimal(std::round(number / unit->factor * 10) / 10) + " " + std::string(unit->name);
}

std::string durationText(std::int64_t microseconds) {
  const auto number = static_cast<double>(microseconds);
  if (microseconds < 1000) {
    return decimal(number) + "us";
  }
  return microseconds < 1000000 ? decimal(number / 1e3) + "ms" : decimal(number / 1e6) + "s";
}

}  // namespace orvane::host
