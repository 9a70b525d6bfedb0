// Points in time as SER files count them: in ticks of 100 ns since the start of the year 1.
#pragma once

#include <chrono>
#include <cstdint>

namespace orvane::host {

/// A point in time, UTC.
std::int64_t serTicks(std::chrono::system_clock::time_point time);

/// The same point in time as a clock on this computer's wall shows it.
std::int64_t serLocalTicks(std::chrono::system_clock::time_point time);

}  // namespace orvane::host
