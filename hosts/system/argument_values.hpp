// Reads the numbers and durations that a user types.
#pragma once

#include <cstdint>
#include <string>

namespace orvane::host {

/// A whole number from `smallest` to `largest`. Throws UsageError with a sentence that names the
/// option.
int parseWholeNumber(const std::string& option, const std::string& text, int smallest, int largest);

/// A number of seconds above 0, such as "90" or "1.5", in microseconds. Throws UsageError.
std::int64_t parseSeconds(const std::string& option, const std::string& text);

/// A duration such as "500us", "20ms" or "1.5s", in whole microseconds, 1 or more. There may be
/// spaces before the unit. A number without a unit is refused, because other programs take it for
/// different units. Throws UsageError.
std::int64_t parseDuration(const std::string& option, const std::string& text);

/// A number of bytes such as "500MB" or "2GB", 1 or more; the units are powers of 1000. There may
/// be spaces before the unit. Throws UsageError.
std::int64_t parseSize(const std::string& option, const std::string& text);

/// A number of bytes as text, as in "2 GB" or "1.5 MB", rounded to a tenth.
std::string sizeText(std::int64_t bytes);

/// Such a duration as text, in the largest unit in which it is 1 or more.
std::string durationText(std::int64_t microseconds);

}  // namespace orvane::host
