// Points in time as SER files count them.
#include "formats/ser_time.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

#include "system/text.hpp"

namespace orvane::host {

namespace {

using std::chrono::system_clock;

system_clock::time_point at(std::int64_t microseconds) {
  return system_clock::time_point(
      std::chrono::duration_cast<system_clock::duration>(std::chrono::microseconds(microseconds)));
}

TEST(SerTicks, CountFromTheYearOne) {
  EXPECT_EQ(serTicks(at(0)), 621355968000000000);                // 1970-01-01
  EXPECT_EQ(serTicks(at(946684800000000)), 630822816000000000);  // 2000-01-01
  EXPECT_EQ(serTicks(at(946684800000001)), 630822816000000010);
  EXPECT_EQ(serTicks(at(-1)), 621355968000000000 - 10);
}

TEST(SerTicks, AreShiftedByTheTimeZoneInLocalTime) {
  for (const std::int64_t day : {0, 100, 200, 300}) {  // with and without summer time
    const auto time = at(1700000000123456 + day * 86400000000);
    const std::int64_t shift = serLocalTicks(time) - serTicks(time);
    constexpr std::int64_t minute = 600000000;
    EXPECT_EQ(shift % minute, 0);
    constexpr std::int64_t hour = 60 * minute;
    EXPECT_LE(std::abs(shift), 14 * hour);
  }
}

TEST(SerTicks, BecomeTheTimeAgain) {
  // 29 February 2024, 23:06:40 UTC, and 100 ns more.
  constexpr std::int64_t ticks = 638448448000000001;
  const auto time = timeOfSerTicks(ticks);
  ASSERT_TRUE(time);
  EXPECT_EQ(serTicks(*time), ticks);
  EXPECT_EQ(utcText(*time), "2024-02-29T23:06:40.000000");
}

TEST(SerTicks, OfNoTimeAreNone) {
  for (const std::int64_t ticks : {std::int64_t{0}, std::int64_t{-5}, INT64_MIN, INT64_MAX}) {
    EXPECT_FALSE(timeOfSerTicks(ticks)) << ticks;
  }
}

}  // namespace

}  // namespace orvane::host
