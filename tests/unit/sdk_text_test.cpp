// Texts and lists in the fixed arrays of an SDK's structures.
#include "vendors/sdk_text.hpp"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(SdkText, EndsBeforeItsNulOrWithTheArray) {
  constexpr char empty[4] = {'\0', 'a', 'b', 'c'};
  constexpr char partial[4] = {'a', '\0', 'b', 'c'};
  constexpr char full[4] = {'a', 'b', 'c', 'd'};
  EXPECT_EQ(boundedText(empty), "");
  EXPECT_EQ(boundedText(partial), "a");
  EXPECT_EQ(boundedText(full), "abcd");
}

TEST(SdkText, ListEndsBeforeItsEndMarkOrWithTheArray) {
  constexpr int empty[3] = {-1, 5, 6};
  constexpr int partial[3] = {4, -1, 6};
  constexpr int full[3] = {4, 5, 6};
  EXPECT_EQ(boundedList(empty, -1), std::vector<std::int32_t>{});
  EXPECT_EQ(boundedList(partial, -1), std::vector<std::int32_t>{4});
  EXPECT_EQ(boundedList(full, -1), (std::vector<std::int32_t>{4, 5, 6}));
}

}  // namespace
}  // namespace orvane
