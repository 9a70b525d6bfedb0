// The region that is recorded: drawn and moved.
#include "live_view/region_choice.hpp"

#include <gtest/gtest.h>

namespace orvane::host {

namespace {

TEST(RegionBetween, TakesTheCornersInAnyOrder) {
  const Region region{100, 50, 200, 120};
  EXPECT_EQ(regionBetween(100, 50, 300, 170, 640, 480), region);
  EXPECT_EQ(regionBetween(300.4, 170.2, 99.9, 50.3, 640, 480), region);
  EXPECT_EQ(regionBetween(100, 170, 300, 50, 640, 480), region);
}

TEST(RegionBetween, HasEvenSides) {
  EXPECT_EQ(regionBetween(11, 21, 42, 62, 640, 480), (Region{11, 21, 30, 40}));
}

TEST(RegionBetween, StaysInTheFrame) {
  EXPECT_EQ(regionBetween(-50, -1e9, 1e9, 900, 640, 480), (Region{0, 0, 640, 480}));
  EXPECT_EQ(regionBetween(600, 400, 700, 500, 641, 481), (Region{600, 400, 40, 80}));
}

TEST(RegionBetween, ATinyOneIsNone) {
  EXPECT_FALSE(regionBetween(10, 10, 25, 100, 640, 480));
  EXPECT_FALSE(regionBetween(10, 10, 100, 25, 640, 480));
  EXPECT_TRUE(regionBetween(10, 10, 26, 26, 640, 480));
  EXPECT_FALSE(regionBetween(700, 10, 900, 100, 640, 480));  // beside the frame
  EXPECT_FALSE(regionBetween(0, 0, 100, 100, 0, 0));
}

TEST(RegionMove, GoesWhereTheArrowPoints) {
  const Region start{100, 100, 64, 48};
  const std::pair<ViewCommand, Region> moves[] = {
      {ViewCommand::RegionLeft, {99, 100, 64, 48}},
      {ViewCommand::RegionRight, {101, 100, 64, 48}},
      {ViewCommand::RegionUp, {100, 99, 64, 48}},
      {ViewCommand::RegionDown, {100, 101, 64, 48}},
      {ViewCommand::RegionFarLeft, {68, 100, 64, 48}},
      {ViewCommand::RegionFarRight, {132, 100, 64, 48}},
      {ViewCommand::RegionFarUp, {100, 68, 64, 48}},
      {ViewCommand::RegionFarDown, {100, 132, 64, 48}},
  };
  for (const auto& [command, region] : moves) {
    const auto move = regionMoveOf(command);
    ASSERT_TRUE(move);
    EXPECT_EQ(movedRegion(start, *move, 640, 480), region);
  }
  EXPECT_FALSE(regionMoveOf(ViewCommand::WholeFrame));
  EXPECT_FALSE(regionMoveOf(ViewCommand::None));
}

TEST(RegionMove, EndsAtTheBorder) {
  EXPECT_EQ(movedRegion({10, 5, 64, 48}, {-32, -32}, 640, 480), (Region{0, 0, 64, 48}));
  EXPECT_EQ(movedRegion({570, 430, 64, 48}, {32, 32}, 640, 480), (Region{576, 432, 64, 48}));
  EXPECT_EQ(movedRegion({0, 0, 64, 48}, {32, 32}, 60, 40), (Region{0, 0, 64, 48}));
}

TEST(RegionOutline, LiesWhereThePictureShowsTheRegion) {
  const PictureView whole{{20, 10, 320, 240}, 0.5, 0, 0};
  EXPECT_EQ(regionOutline({100, 50, 200, 120}, whole), (PixelRect{70, 35, 100, 60}));
  const PictureView part{{0, 0, 100, 80}, 1, 110, 60};
  EXPECT_EQ(regionOutline({100, 50, 200, 120}, part), (PixelRect{-10, -10, 200, 120}));
}

}  // namespace

}  // namespace orvane::host
