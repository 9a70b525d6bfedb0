// Text: UTF-8, lists, and file names.
#include "system/text.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace orvane::host {

namespace {

TEST(ValidUtf8, LeavesValidTextAlone) {
  for (const char* text : {"", "ZWO ASI120MC", "\"\\\x7f", "caf\u00e9 \u2728 \U0001F52D"}) {
    EXPECT_EQ(validUtf8(text), text);
  }
}

TEST(ValidUtf8, ReplacesWhatIsNot) {
  EXPECT_EQ(validUtf8("a\xff"
                      "b"),
            "a\uFFFD"
            "b");
  EXPECT_EQ(validUtf8("caf\xe9"), "caf\uFFFD");  // Latin-1, cut off at the end
}

TEST(Utf8Beginning, IsCutBetweenCharacters) {
  EXPECT_EQ(utf8Beginning("abc", 3), "abc");
  EXPECT_EQ(utf8Beginning("abcd", 3), "abc");
  EXPECT_EQ(utf8Beginning("ab\u00e9", 3), "ab");
  EXPECT_EQ(utf8Beginning("ab\u00e9", 4), "ab\u00e9");
  EXPECT_EQ(utf8Beginning("\U0001F52D", 3), "");
}

TEST(Utf8Length, CountsCharacters) {
  EXPECT_EQ(utf8Length(""), 0U);
  EXPECT_EQ(utf8Length("abc"), 3U);
  EXPECT_EQ(utf8Length("caf\u00e9"), 4U);
}

TEST(ContainsIgnoringCase, KnowsPlainLettersOnly) {
  EXPECT_TRUE(containsIgnoringCase("ZWO ASI120MC", "asi120mc"));
  EXPECT_TRUE(containsIgnoringCase("zwo", "ZWO"));
  EXPECT_TRUE(containsIgnoringCase("zwo", ""));
  EXPECT_FALSE(containsIgnoringCase("zwo", "zwoo"));
  EXPECT_FALSE(containsIgnoringCase("[", "{"));  // as far apart as a letter's two cases
  EXPECT_FALSE(containsIgnoringCase("\u00e9", "\u00c9"));
}

TEST(Decimal, HasNoExponent) {
  EXPECT_EQ(decimal(3.75), "3.75");
  EXPECT_EQ(decimal(2), "2");
  EXPECT_EQ(decimal(1e-7), "0.0000001");
  EXPECT_EQ(decimal(1e15), "1000000000000000");
  EXPECT_EQ(decimal(1e308).size(), 309U);
}

TEST(Decimal, IsRoundedWhereAsked) {
  EXPECT_EQ(decimal(3.14159, 2), "3.14");
  EXPECT_EQ(decimal(2, 1), "2.0");
  EXPECT_EQ(decimal(-0.26, 1), "-0.3");
}

TEST(Joined, PutsTheSeparatorBetween) {
  const auto number = [](int value) { return std::to_string(value); };
  EXPECT_EQ(joined(std::vector<int>{}, ", ", number), "");
  EXPECT_EQ(joined(std::vector<int>{1}, ", ", number), "1");
  EXPECT_EQ(joined(std::vector<int>{1, 2, 3}, ", ", number), "1, 2, 3");
}

TEST(Paths, KeepTheirTextInUtf8) {
  for (const char* text : {"moon.ser", "caf\u00e9 \u2728 \U0001F52D.ser"}) {
    EXPECT_EQ(utf8FromPath(pathFromUtf8(text)), text);
  }
}

TEST(Alternatives, ReadAsASentence) {
  EXPECT_EQ(alternatives({}), "");
  EXPECT_EQ(alternatives({"a"}), "a");
  EXPECT_EQ(alternatives({"a", "b"}), "a or b");
  EXPECT_EQ(alternatives({"a", "b", "c"}), "a, b or c");
}

}  // namespace

}  // namespace orvane::host
