// Black point, white point and gamma of the picture.
#include "live_view/picture_levels.hpp"

#include <gtest/gtest.h>

namespace orvane::host {

namespace {

TEST(PictureLevels, WithoutAnyTheBrightnessStays) {
  for (const double brightness : {0.0, 0.2, 0.7, 1.0}) {
    EXPECT_DOUBLE_EQ(PictureLevels().applied(brightness), brightness);
  }
}

TEST(PictureLevels, BlackAndWhiteAreTheEnds) {
  const PictureLevels levels{0.2, 0.6, 1};
  EXPECT_DOUBLE_EQ(levels.applied(0.1), 0);
  EXPECT_DOUBLE_EQ(levels.applied(0.2), 0);
  EXPECT_DOUBLE_EQ(levels.applied(0.3), 0.25);
  EXPECT_DOUBLE_EQ(levels.applied(0.6), 1);
  EXPECT_DOUBLE_EQ(levels.applied(0.9), 1);
}

TEST(PictureLevels, GammaBrightensTheMiddleOnly) {
  const PictureLevels levels{0, 1, 2};
  EXPECT_DOUBLE_EQ(levels.applied(0), 0);
  EXPECT_DOUBLE_EQ(levels.applied(0.25), 0.5);
  EXPECT_DOUBLE_EQ(levels.applied(1), 1);
}

TEST(PictureLevels, TheInverseLeadsBack) {
  const PictureLevels levels{0.1, 0.7, 1.6};
  for (const double brightness : {0.1, 0.15, 0.4, 0.7}) {
    EXPECT_NEAR(levels.inverse(levels.applied(brightness)), brightness, 1e-12);
  }
}

TEST(LevelPlaces, RunFromEndToEnd) {
  const PictureLevels neutral;
  EXPECT_EQ(placeOf(LevelKind::Black, neutral), 0);
  EXPECT_EQ(placeOf(LevelKind::White, neutral), 1);
  EXPECT_EQ(placeOf(LevelKind::Gamma, neutral), 0.5);
  for (const LevelKind kind : levelKinds) {
    for (const double place : {0.1, 0.25, 0.5, 0.9}) {
      EXPECT_NEAR(placeOf(kind, levelsAfter(kind, place, neutral)), place, 1e-12);
    }
  }
  EXPECT_DOUBLE_EQ(levelsAfter(LevelKind::Gamma, 1, neutral).gamma, 5);
  EXPECT_DOUBLE_EQ(levelsAfter(LevelKind::Gamma, -3, neutral).gamma, 0.2);
  EXPECT_EQ(levelsAfter(LevelKind::Gamma, 0.5, {0, 1, 3}).gamma, 1);
}

TEST(LevelPlaces, BlackStaysBelowWhite) {
  const PictureLevels darkest = levelsAfter(LevelKind::Black, 1, {0, 0.25, 1});
  EXPECT_LT(darkest.black, darkest.white);
  EXPECT_NEAR(darkest.black, 0.48 * 0.48, 1e-12);
  const PictureLevels brightest = levelsAfter(LevelKind::White, 0, {0.25, 1, 1});
  EXPECT_GT(brightest.white, brightest.black);
}

TEST(LevelCommands, StepForthAndBack) {
  const std::pair<ViewCommand, ViewCommand> pairs[] = {
      {ViewCommand::MoreBlack, ViewCommand::LessBlack},
      {ViewCommand::LessWhite, ViewCommand::MoreWhite},
      {ViewCommand::MoreGamma, ViewCommand::LessGamma},
      {ViewCommand::MuchMoreBlack, ViewCommand::MuchLessBlack},
      {ViewCommand::MuchLessWhite, ViewCommand::MuchMoreWhite},
      {ViewCommand::MuchMoreGamma, ViewCommand::MuchLessGamma},
  };
  for (const auto& [forth, back] : pairs) {
    const PictureLevels moved = *levelsAfter(forth, {});
    EXPECT_NE(moved, PictureLevels());
    EXPECT_EQ(*levelsAfter(back, moved), PictureLevels());
  }
  EXPECT_DOUBLE_EQ(levelsAfter(ViewCommand::MuchMoreBlack, {})->black, 0.01);
  EXPECT_GT(levelsAfter(ViewCommand::MoreGamma, {})->gamma, 1);
  EXPECT_LT(levelsAfter(ViewCommand::LessWhite, {})->white, 1);
}

TEST(LevelCommands, StopAtTheEnds) {
  EXPECT_EQ(*levelsAfter(ViewCommand::LessBlack, {}), PictureLevels());
  EXPECT_EQ(*levelsAfter(ViewCommand::MuchMoreWhite, {}), PictureLevels());
}

TEST(LevelCommands, OneResetsAllAndOthersChangeNone) {
  EXPECT_EQ(*levelsAfter(ViewCommand::ResetLevels, {0.1, 0.5, 2}), PictureLevels());
  EXPECT_FALSE(levelsAfter(ViewCommand::MoreGain, {}));
  EXPECT_FALSE(levelsAfter(ViewCommand::None, {}));
}

TEST(LevelTexts, ArePercentAndANumber) {
  const PictureLevels levels{0.004, 0.123, 1.25};
  EXPECT_EQ(levelName(LevelKind::Black), "Black");
  EXPECT_EQ(levelName(LevelKind::White), "White");
  EXPECT_EQ(levelName(LevelKind::Gamma), "Gamma");
  EXPECT_EQ(levelText(LevelKind::Black, levels), "0.40 %");
  EXPECT_EQ(levelText(LevelKind::Black, {0.0004, 1, 1}), "0.04 %");
  EXPECT_EQ(levelText(LevelKind::White, {0, 0.023, 1}), "2.3 %");
  EXPECT_EQ(levelText(LevelKind::White, levels), "12 %");
  EXPECT_EQ(levelText(LevelKind::Gamma, levels), "1.25");
  EXPECT_EQ(levelText(LevelKind::Black, {}), "0 %");
}

}  // namespace

}  // namespace orvane::host
