// Points in time as SER files count them: in ticks of 100 ns since the start of the year 1.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace orvane::host {

/// A point in time, UTC.
std::int64_t serTicks(std::chrono::system_clock::time_point time);

/// The same point in time in this computer's time zone.
std::int64_t serLocalTicks(std::chrono::system_clock::time_point time);

/// The point in time of such a count; none if it is before 1700 or after 2200.
std::optional<std::chrono::system_clock::time_point> timeOfSerTicks(std::int64_t ticks);

}  // namespace orvane::host
