// Points in time as SER files count them: in ticks of 100 ns since the start of the year 1.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace orvane::host {

/// The ticks of a point in time, in UTC.
std::int64_t serTicks(std::chrono::system_clock::time_point time);

/// The same in this computer's time zone.
std::int64_t serLocalTicks(std::chrono::system_clock::time_point time);

/// The inverse of serTicks(). None before 1700 and from 2200 on.
std::optional<std::chrono::system_clock::time_point> timeOfSerTicks(std::int64_t ticks);

}  // namespace orvane::host
