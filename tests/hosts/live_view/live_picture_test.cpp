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

const LivePicture::Clock::time_point start{std::chrono::hours(1)};

class LivePictureTest : public ::testing::Test {
 protected:
  void setMeasuredFrame() {
    picture.setFrame(frameWithStar(100, 50, 1));
    ASSERT_TRUE(picture.measure(start));
  }

  // Draws the picture into an area of this size.
  PictureView draw(int width, int height) {
    width_ = width;
    pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0xFFFFFFFF);
    return picture.draw({pixels.data(), width, width, height}, background);
  }

  std::uint32_t at(int x, int y) const {
    return pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                     static_cast<std::size_t>(x));
  }

  LivePicture picture;
  std::vector<std::uint32_t> pixels;

 private:
  int width_ = 0;
};

TEST_F(LivePictureTest, WithoutAFrameThereIsBackground) {
  const PictureView view = draw(30, 20);
  EXPECT_EQ(view.onScreen.width, 0);
  EXPECT_EQ(std::set<std::uint32_t>(pixels.begin(), pixels.end()),
            (std::set<std::uint32_t>{background}));
  EXPECT_FALSE(picture.measure(start));
}

TEST_F(LivePictureTest, ShowsTheWholeFrameInItsShape) {
  setMeasuredFrame();
  const PictureView view = draw(160, 200);
  EXPECT_EQ(view.onScreen, (PixelRect{0, 50, 160, 100}));
  EXPECT_DOUBLE_EQ(view.scale, 0.5);
  EXPECT_EQ(at(80, 49), background);
  EXPECT_EQ(at(80, 150), background);
  EXPECT_NE(at(80, 100), background);
  // The star is where the view says, and white; the sky is neither black nor white.
  EXPECT_DOUBLE_EQ(view.screenX(100), 50);
  EXPECT_DOUBLE_EQ(view.screenY(50), 75);
  EXPECT_DOUBLE_EQ(view.frameX(50), 100);
  EXPECT_DOUBLE_EQ(view.frameY(75), 50);
  EXPECT_EQ(at(50, 75), 0xFFFFFFU);
  EXPECT_GT(at(140, 100) & 0xFFU, 20U);
  EXPECT_LT(at(140, 100) & 0xFFU, 120U);
}

TEST_F(LivePictureTest, AsItIsTheSkyIsDark) {
  setMeasuredFrame();
  picture.setStretched(false);
  draw(320, 200);
  EXPECT_EQ(at(300, 100) & 0xFFU, 3U);
  picture.setStretched(true);
  draw(320, 200);
  EXPECT_GT(at(300, 100) & 0xFFU, 20U);
}

TEST_F(LivePictureTest, InRedThereIsNoOtherColour) {
  setMeasuredFrame();
  picture.setTint(ScreenTint::Red);
  draw(320, 200);
  for (const std::uint32_t pixel : pixels) {
    ASSERT_EQ(pixel & 0xFFFFU, 0U);
  }
}

TEST_F(LivePictureTest, PixelByPixelItCanBeMovedButNotAway) {
  picture.setFrame(frameWithStar(160, 100, 1));
  picture.measure(start);
  picture.setPixelByPixel(true);
  PictureView view = draw(100, 80);
  EXPECT_EQ(view.onScreen, (PixelRect{0, 0, 100, 80}));
  EXPECT_EQ(view.scale, 1);
  EXPECT_EQ(view.frameLeft, 110);
  EXPECT_EQ(view.frameTop, 60);
  EXPECT_EQ(at(50, 40), 0xFFFFFFU);
  const int moves[][4] = {{10, -5, 100, 65}, {10000, 10000, 0, 0}, {-10000, -10000, 220, 120}};
  for (const auto& [right, down, left, top] : moves) {
    picture.move(right, down);
    view = draw(100, 80);
    EXPECT_EQ(view.frameLeft, left);
    EXPECT_EQ(view.frameTop, top);
  }
}

TEST_F(LivePictureTest, PixelByPixelASmallFrameIsInTheMiddle) {
  picture.setFrame(frameWithStar(160, 100, 1));
  picture.setPixelByPixel(true);
  EXPECT_EQ(draw(400, 300).onScreen, (PixelRect{40, 50, 320, 200}));
  EXPECT_EQ(at(39, 100), background);
}

TEST_F(LivePictureTest, MeasuresFromTimeToTime) {
  picture.setFrame(frameWithStar(100, 50, 1));
  EXPECT_FALSE(picture.measurements().areThere);
  EXPECT_TRUE(picture.measure(start));
  EXPECT_TRUE(picture.measurements().areThere);
  EXPECT_FALSE(picture.measure(start + std::chrono::milliseconds(100)));
  EXPECT_TRUE(picture.measure(start + std::chrono::hours(1)));
  EXPECT_EQ(picture.measurements().diameters.size(), 2U);
}

TEST_F(LivePictureTest, RemembersTheLeastDiameterOfOneStream) {
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

TEST_F(LivePictureTest, KeepsNoMoreDiametersThanItShows) {
  for (std::size_t round = 0; round < LivePicture::trendLength + 5; ++round) {
    picture.setFrame(frameWithStar(100, 50, 1));
    picture.measure(start + std::chrono::hours(round));
  }
  EXPECT_EQ(picture.measurements().diameters.size(), LivePicture::trendLength);
}

TEST_F(LivePictureTest, FollowsTheStarThatWasChosen) {
  const FrameLayout layout{320, 200, PixelFormat::Raw16, BayerPattern::None};
  const std::vector<std::uint8_t> twoStars = frame16(layout, [](int x, int y) {
    return 800 + 20 * grain(x, y) + starLight(x, y, 100, 50, 2, 50000) +
           starLight(x, y, 250, 150, 2, 20000);
  });
  picture.setFrame(frameOf(layout, 1, twoStars));
  picture.measure(start);
  EXPECT_NEAR(picture.measurements().focus.star->x, 100, 0.2);
  picture.followStarAt(255, 146);
  EXPECT_TRUE(picture.measure(start + std::chrono::milliseconds(1)));
  EXPECT_NEAR(picture.measurements().focus.star->x, 250, 0.2);
  EXPECT_EQ(picture.measurements().diameters.size(), 1U);
}

TEST_F(LivePictureTest, ClearedItShowsNothing) {
  picture.setFrame(frameWithStar(100, 50, 1));
  picture.clear();
  EXPECT_FALSE(picture.hasFrame());
  EXPECT_FALSE(picture.measure(start));
}

TEST_F(LivePictureTest, FramesTooSmallForABayerPatternShowNothingAndDoNoHarm) {
  picture.setFrame(frameOf({1, 1, PixelFormat::Raw8, BayerPattern::Rggb}, 1, {9}));
  EXPECT_TRUE(picture.measure(start));
  draw(10, 10);
  EXPECT_EQ(at(5, 5), background);
}

}  // namespace

}  // namespace orvane::host
