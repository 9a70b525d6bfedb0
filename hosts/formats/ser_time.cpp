// Points in time as SER files count them: in ticks of 100 ns since the start of the year 1.
#include "formats/ser_time.hpp"

#include <ctime>
#include <ratio>

#include "system/system.hpp"

namespace orvane::host {

namespace {

using Clock = std::chrono::system_clock;
using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

// The start of this year, in ticks.
constexpr Ticks startOf(int year) {
  using std::chrono::sys_days;
  return sys_days(std::chrono::year(year) / 1 / 1) - sys_days(std::chrono::year(1) / 1 / 1);
}

}  // namespace

std::int64_t serTicks(Clock::time_point time) {
  const Ticks toEpoch = startOf(1970);
  return (std::chrono::duration_cast<Ticks>(time.time_since_epoch()) + toEpoch).count();
}

std::int64_t serLocalTicks(Clock::time_point time) {
  const auto second = std::chrono::floor<std::chrono::seconds>(time);
  const std::tm local = localTime(Clock::to_time_t(second));
  const auto day = std::chrono::sys_days(std::chrono::year(local.tm_year + 1900) /
                                         (local.tm_mon + 1) / local.tm_mday);
  const auto shown = day + std::chrono::hours(local.tm_hour) + std::chrono::minutes(local.tm_min) +
                     std::chrono::seconds(local.tm_sec);
  return serTicks(std::chrono::time_point_cast<Clock::duration>(shown) + (time - second));
}

std::optional<Clock::time_point> timeOfSerTicks(std::int64_t ticks) {
  // A 64-bit count of nanoseconds reaches little further.
  if (ticks < startOf(1700).count() || ticks >= startOf(2200).count()) {
    return std::nullopt;
  }
  return Clock::time_point(
      std::chrono::duration_cast<Clock::duration>(Ticks(ticks) - startOf(1970)));
}

}  // namespace orvane::host
