// Numbers and durations as users type them.
#include "system/argument_values.hpp"

#include <gtest/gtest.h>

#include <string>

#include "failure.hpp"
#include "system/failures.hpp"

namespace orvane::host {

namespace {

using orvane::testing::failureOf;

TEST(WholeNumber, IsReadWithinItsLimits) {
  EXPECT_EQ(parseWholeNumber("--gain", "0", -5, 5), 0);
  EXPECT_EQ(parseWholeNumber("--gain", "-5", -5, 5), -5);
  EXPECT_EQ(parseWholeNumber("--gain", "2147483647", -5, 2147483647), 2147483647);
}

TEST(WholeNumber, IsRefusedInAnyOtherForm) {
  for (const char* text : {"", " 1", "1 ", "+1", "1.0", "0x1", "1e3", "one", "-", "4", "-1",
                           "99999999999", "1\xc2\xb2"}) {
    EXPECT_EQ(failureOf<UsageError>([&] { parseWholeNumber("--bin", text, 1, 3); }),
              std::string("--bin needs a whole number from 1 to 3, not \"") + text + "\".");
  }
}

TEST(Seconds, MayHaveAFraction) {
  EXPECT_EQ(parseSeconds("--seconds", "30"), 30000000);
  EXPECT_EQ(parseSeconds("--seconds", "1.5"), 1500000);
  EXPECT_EQ(parseSeconds("--seconds", ".25"), 250000);
  EXPECT_EQ(parseSeconds("--seconds", "86400"), 86400000000);
}

TEST(Seconds, AreRefusedInAnyOtherForm) {
  for (const char* text : {"", "0", "0.0", "-1", "1s", "1e3", "inf", "nan", "1,5", "1.2.3", ".",
                           "99999999999999999999"}) {
    EXPECT_EQ(
        failureOf<UsageError>([&] { parseSeconds("--seconds", text); }),
        std::string("--seconds needs a number of seconds above 0, such as 30 or 1.5, not \"") +
            text + "\".");
  }
}

TEST(Duration, TakesItsUnitFromTheText) {
  EXPECT_EQ(parseDuration("--exposure", "500us"), 500);
  EXPECT_EQ(parseDuration("--exposure", "500\u00b5s"), 500);
  EXPECT_EQ(parseDuration("--exposure", "500\u03bcs"), 500);
  EXPECT_EQ(parseDuration("--exposure", "20ms"), 20000);
  EXPECT_EQ(parseDuration("--exposure", "20 ms"), 20000);
  EXPECT_EQ(parseDuration("--exposure", "1.5s"), 1500000);
  EXPECT_EQ(parseDuration("--exposure", "0.001ms"), 1);
  EXPECT_EQ(parseDuration("--exposure", "0.0333s"), 33300);
  EXPECT_EQ(parseDuration("--exposure", "2147.483647s"), 2147483647);
}

TEST(Duration, WithoutAUnitIsRefusedSinceItCouldMeanAnything) {
  EXPECT_EQ(failureOf<UsageError>([] { parseDuration("--exposure", "20"); }),
            "--exposure needs a unit: 20us, 20ms or 20s.");
  EXPECT_EQ(failureOf<UsageError>([] { parseDuration("--exposure", "1.5"); }),
            "--exposure needs a unit: 1.5us, 1.5ms or 1.5s.");
}

TEST(Duration, IsRefusedInAnyOtherForm) {
  for (const char* text : {"", "ms", "-20ms", "20m", "20MS", "20ms ", "1.2.3s", "1e3us", "infs",
                           "0s", "0.1us", "twenty", "20ms5us", "99999999999999999999s"}) {
    EXPECT_EQ(failureOf<UsageError>([&] { parseDuration("--exposure", text); }),
              std::string("--exposure needs a duration such as 500us, 20ms or 1.5s, not \"") +
                  text + "\".");
  }
}

TEST(Size, IsInPowersOfAThousand) {
  EXPECT_EQ(parseSize("--stop-below", "500MB"), 500'000'000);
  EXPECT_EQ(parseSize("--stop-below", "1.5 GB"), 1'500'000'000);
  EXPECT_EQ(parseSize("--stop-below", "2TB"), 2'000'000'000'000);
  for (const char* text : {"", "500", "GB", "2gb", "-2GB", "2GiB", "0GB", "99999TB"}) {
    EXPECT_EQ(
        failureOf<UsageError>([&] { parseSize("--stop-below", text); }),
        std::string("--stop-below needs a size such as 500MB, 2GB or 1TB, not \"") + text + "\".");
  }
}

TEST(SizeText, UsesTheUnitThatSuits) {
  EXPECT_EQ(sizeText(0), "0 MB");
  EXPECT_EQ(sizeText(999'949'999), "999.9 MB");
  EXPECT_EQ(sizeText(2'000'000'000), "2 GB");
  EXPECT_EQ(sizeText(2'340'000'000), "2.3 GB");
  EXPECT_EQ(sizeText(1'500'000'000'000), "1.5 TB");
}

TEST(DurationText, UsesTheUnitThatSuits) {
  EXPECT_EQ(durationText(1), "1us");
  EXPECT_EQ(durationText(999), "999us");
  EXPECT_EQ(durationText(1000), "1ms");
  EXPECT_EQ(durationText(33333), "33.333ms");
  EXPECT_EQ(durationText(1500000), "1.5s");
  EXPECT_EQ(durationText(2000000000), "2000s");
  EXPECT_EQ(durationText(2147483647), "2147.483647s");
}

}  // namespace

}  // namespace orvane::host
