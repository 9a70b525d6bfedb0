// When a recording ends by itself.
#include "live_view/recording_limit.hpp"

#include <gtest/gtest.h>

namespace orvane::host {

namespace {

TEST(RecordingLimit, StepsLeadThroughAllAndBackToNone) {
  RecordingLimit limit;
  std::string texts;
  do {
    limit = nextLimit(limit, {});
    texts += "[" + limitText(limit) + "]";
  } while (limit != RecordingLimit());
  EXPECT_EQ(texts, "[10 s][30 s][1 min][90 s][2 min][3 min][5 min][10 min][]");
}

TEST(RecordingLimit, TheOneOfTheCommandLineIsAmongThem) {
  const RecordingLimit given{500, 1'500'000};
  EXPECT_EQ(nextLimit({}, given), given);
  EXPECT_EQ(limitText(nextLimit(given, given)), "10 s");
  EXPECT_EQ(nextLimit({7, {}}, given), RecordingLimit());  // one that is not among them
}

TEST(RecordingLimit, HasAText) {
  EXPECT_EQ(limitText({500, 1'500'000}), "500 frames or 1.5 s");
  EXPECT_EQ(limitText({1, {}}), "1 frame");
  EXPECT_EQ(limitText({{}, 61'000'000}), "61 s");
}

}  // namespace

}  // namespace orvane::host
