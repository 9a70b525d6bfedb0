// Points in time as text.
#pragma once

#include <chrono>
#include <string>

namespace orvane::host {

/// A point in time in UTC to the microsecond, as in "2024-02-29T23:05:07.004200".
std::string utcText(std::chrono::system_clock::time_point time);

}  // namespace orvane::host
