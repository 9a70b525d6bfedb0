// The picture in the window, and what is measured in it.
#include "live_view/live_picture.hpp"

#include <gtest/gtest.h>

#include <set>

#include "synthetic_frame.hpp"

namespace orvane::host {

namespace {

using orvane::testing::frame16;
using orvane::testing::grain;
using orvane::testing::starLight;

constexpr std::uint32_t background = 0x010203;

LiveFrame frameOf(const FrameLayout& layout, std::uint64_t opening,
                  std::vector<std::uint8_t> bytes) {
  const auto owner = std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes));
  return {layout, 12, opening, *owner, owner};
}

LiveFrame frameWithStar(double x0, double y0, std::uint64_t opening, double width = 2) {
  const FrameLayout layout{320, 200, PixelFormat::Raw16, BayerPattern::None};
  return frameOf(layout, opening, frame16(layout, [&](int x, int y) {
                   return 800 + 20 * grain(x, y) + starLight(x, y, x0, y0, width, 50000);
                 }));
}

// A window's part for the picture.
struct Area {
  Area(int areaWidth, int areaHeight)
      : width(areaWidth),
        height(areaHeight),
        pixels(static_cast<std::size_t>(areaWidth) * static_cast<std::size_t>(areaHeight),
               0xFFFFFFFF) {}

  ScreenTarget target() { return {pixels.data(), width, width, height}; }
  std::uint32_t at(int x, int y) const {
    return pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                     static_cast<std::size_t>(x));
  }

  int width;
  int height;
  std::vector<std::uint32_t> pixels;
};

const LivePicture::Clock::time_point start{std::chrono::hours(1)};

TEST(LivePicture, WithoutAFrameThereIsBackground) {
  LivePicture picture;
  Area area(30, 20);
  const PictureView view = picture.draw(area.target(), background);
  EXPECT_EQ(view.onScreen.width, 0);
  EXPECT_EQ(std::set<std::uint32_t>(area.pixels.begin(), area.pixels.end()),
            (std::set<std::uint32_t>{background}));
  EXPECT_FALSE(picture.measure(start));
}

TEST(LivePicture, ShowsTheWholeFrameInItsShape) {
  LivePicture picture;
  picture.setFrame(frameWithStar(100, 50, 1));
  EXPECT_TRUE(picture.measure(start));
  Area area(160, 200);
  const PictureView view = picture.draw(area.target(), background);
  EXPECT_EQ(view.onScreen, (PixelRect{0, 50, 160, 100}));
  EXPECT_DOUBLE_EQ(view.scale, 0.5);
  EXPECT_EQ(area.at(80, 49), background);
  EXPECT_EQ(area.at(80, 150), background);
  EXPECT_NE(area.at(80, 100), background);
  // The star is where the view says, and white; the sky is neither black nor white.
  EXPECT_DOUBLE_EQ(view.screenX(100), 50);
  EXPECT_DOUBLE_EQ(view.screenY(50), 75);
  EXPECT_DOUBLE_EQ(view.frameX(50), 100);
  EXPECT_DOUBLE_EQ(view.frameY(75), 50);
  EXPECT_EQ(area.at(50, 75), 0xFFFFFFU);
  EXPECT_GT(area.at(140, 100) & 0xFFU, 20U);
  EXPECT_LT(area.at(140, 100) & 0xFFU, 120U);
}

TEST(LivePicture, AsItIsTheSkyIsDark) {
  LivePicture picture;
  picture.setFrame(frameWithStar(100, 50, 1));
  picture.measure(start);
  picture.setStretched(false);
  Area area(320, 200);
  picture.draw(area.target(), background);
  EXPECT_EQ(area.at(300, 100) & 0xFFU, 3U);
  picture.setStretched(true);
  picture.draw(area.target(), background);
  EXPECT_GT(area.at(300, 100) & 0xFFU, 20U);
}

TEST(LivePicture, InRedThereIsNoOtherColour) {
  LivePicture picture;
  picture.setFrame(frameWithStar(100, 50, 1));
  picture.measure(start);
  picture.setTint(ScreenTint::Red);
  Area area(320, 200);
  picture.draw(area.target(), 0);
  for (const std::uint32_t pixel : area.pixels) {
    ASSERT_EQ(pixel & 0xFFFFU, 0U);
  }
}

TEST(LivePicture, PixelByPixelItCanBeMovedButNotAway) {
  LivePicture picture;
  picture.setFrame(frameWithStar(160, 100, 1));
  picture.measure(start);
  picture.setPixelByPixel(true);
  Area area(100, 80);
  PictureView view = picture.draw(area.target(), background);
  EXPECT_EQ(view.onScreen, (PixelRect{0, 0, 100, 80}));
  EXPECT_EQ(view.scale, 1);
  EXPECT_EQ(view.frameLeft, 110);
  EXPECT_EQ(view.frameTop, 60);
  EXPECT_EQ(area.at(50, 40), 0xFFFFFFU);
  picture.move(10, -5);
  view = picture.draw(area.target(), background);
  EXPECT_EQ(view.frameLeft, 100);
  EXPECT_EQ(view.frameTop, 65);
  picture.move(10000, 10000);
  view = picture.draw(area.target(), background);
  EXPECT_EQ(view.frameLeft, 0);
  EXPECT_EQ(view.frameTop, 0);
  picture.move(-10000, -10000);
  view = picture.draw(area.target(), background);
  EXPECT_EQ(view.frameLeft, 220);
  EXPECT_EQ(view.frameTop, 120);
}

TEST(LivePicture, PixelByPixelASmallFrameIsInTheMiddle) {
  LivePicture picture;
  picture.setFrame(frameWithStar(160, 100, 1));
  picture.setPixelByPixel(true);
  Area area(400, 300);
  EXPECT_EQ(picture.draw(area.target(), background).onScreen, (PixelRect{40, 50, 320, 200}));
  EXPECT_EQ(area.at(39, 100), background);
}

TEST(LivePicture, MeasuresFromTimeToTime) {
  LivePicture picture;
  picture.setFrame(frameWithStar(100, 50, 1));
  EXPECT_FALSE(picture.measurements().areThere);
  EXPECT_TRUE(picture.measure(start));
  EXPECT_TRUE(picture.measurements().areThere);
  EXPECT_FALSE(picture.measure(start + std::chrono::milliseconds(100)));
  EXPECT_TRUE(picture.measure(start + std::chrono::hours(1)));
  EXPECT_EQ(picture.measurements().diameters.size(), 2U);
}

TEST(LivePicture, RemembersTheLeastDiameterOfOneStream) {
  LivePicture picture;
  LivePicture::Clock::time_point now = start;
  for (const double width : {3.0, 2.0, 4.0}) {
    picture.setFrame(frameWithStar(100, 50, 1, width));
    ASSERT_TRUE(picture.measure(now));
    now += std::chrono::hours(1);
  }
  const double sharp = 2 * 2.0 * std::sqrt(std::acos(-1.0) / 2);
  EXPECT_NEAR(*picture.measurements().leastDiameter, sharp, 0.2);
  EXPECT_EQ(picture.measurements().diameters.size(), 3U);

  picture.setFrame(frameWithStar(100, 50, 2, 4));
  EXPECT_FALSE(picture.measurements().leastDiameter);
  EXPECT_TRUE(picture.measure(start));
  EXPECT_NEAR(*picture.measurements().leastDiameter, 2 * sharp, 0.4);
}

TEST(LivePicture, KeepsNoMoreDiametersThanItShows) {
  LivePicture picture;
  for (std::size_t round = 0; round < LivePicture::trendLength + 5; ++round) {
    picture.setFrame(frameWithStar(100, 50, 1));
    picture.measure(start + std::chrono::hours(round));
  }
  EXPECT_EQ(picture.measurements().diameters.size(), LivePicture::trendLength);
}

TEST(LivePicture, FollowsTheStarThatWasChosen) {
  const FrameLayout layout{320, 200, PixelFormat::Raw16, BayerPattern::None};
  const std::vector<std::uint8_t> twoStars = frame16(layout, [](int x, int y) {
    return 800 + 20 * grain(x, y) + starLight(x, y, 100, 50, 2, 50000) +
           starLight(x, y, 250, 150, 2, 20000);
  });
  LivePicture picture;
  picture.setFrame(frameOf(layout, 1, twoStars));
  picture.measure(start);
  EXPECT_NEAR(picture.measurements().focus.star->x, 100, 0.2);
  picture.followStarAt(255, 146);
  EXPECT_TRUE(picture.measure(start + std::chrono::milliseconds(1)));
  EXPECT_NEAR(picture.measurements().focus.star->x, 250, 0.2);
  EXPECT_EQ(picture.measurements().diameters.size(), 1U);
}

TEST(LivePicture, ClearedItShowsNothing) {
  LivePicture picture;
  picture.setFrame(frameWithStar(100, 50, 1));
  picture.clear();
  EXPECT_FALSE(picture.hasFrame());
  EXPECT_FALSE(picture.measure(start));
}

TEST(LivePicture, FramesTooSmallForABayerPatternShowNothingAndDoNoHarm) {
  LivePicture picture;
  picture.setFrame(frameOf({1, 1, PixelFormat::Raw8, BayerPattern::Rggb}, 1, {9}));
  EXPECT_TRUE(picture.measure(start));
  Area area(10, 10);
  picture.draw(area.target(), background);
  EXPECT_EQ(area.at(5, 5), background);
}

}  // namespace

}  // namespace orvane::host
