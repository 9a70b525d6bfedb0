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

const LivePicture::Clock::time_point startTime{std::chrono::hours(1)};

class LivePictureTest : public ::testing::Test {
 protected:
  void setMeasuredFrame() {
    picture.setFrame(frameWithStar(100, 50, 1));
    ASSERT_TRUE(picture.measure(startTime));
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
  EXPECT_FALSE(picture.measure(startTime));
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
  EXPECT_NEAR(at(300, 100) & 0xFFU, 3, 1);
  picture.setStretched(true);
  draw(320, 200);
  EXPECT_GT(at(300, 100) & 0xFFU, 20U);
}

TEST_F(LivePictureTest, AsItIsTheFullScaleIsWhite) {
  const FrameLayout layout{32, 32, PixelFormat::Raw16, BayerPattern::None};
  // 12 bits, right-aligned.
  picture.setFrame(
      frameOf(layout, 1, frame16(layout, [](int x, int) { return x < 16 ? 4095 : 2047; })));
  picture.setStretched(false);
  ASSERT_TRUE(picture.measure(startTime));
  draw(32, 32);
  EXPECT_EQ(at(2, 10) & 0xFFU, 255U);
  EXPECT_NEAR(at(28, 10) & 0xFFU, 127, 1);
}

TEST_F(LivePictureTest, LevelsChangeThePicture) {
  setMeasuredFrame();
  draw(320, 200);
  const std::uint32_t before = at(300, 100) & 0xFFU;
  picture.setLevels({0, 1, 2});
  draw(320, 200);
  EXPECT_GT(at(300, 100) & 0xFFU, before + 20);
  picture.setLevels({0.9, 1, 1});
  draw(320, 200);
  EXPECT_EQ(at(300, 100) & 0xFFU, 0U);
  EXPECT_EQ(at(100, 50), 0xFFFFFFU);  // the star
}

TEST_F(LivePictureTest, TellsWhichSamplesAreBlackAndWhite) {
  setMeasuredFrame();
  picture.setStretched(false);
  EXPECT_NEAR(picture.partShownAs(0), 0, 1e-9);
  EXPECT_NEAR(picture.partShownAs(1), 1, 1e-9);
  picture.setLevels({0.1, 0.6, 1});
  EXPECT_NEAR(picture.partShownAs(0), 0.1, 1e-9);
  EXPECT_NEAR(picture.partShownAs(0.5), 0.35, 1e-9);
  EXPECT_NEAR(picture.partShownAs(1), 0.6, 1e-9);
  // Brightened, black is just below the sky at 800 of 65520.
  picture.setLevels({});
  picture.setStretched(true);
  EXPECT_LT(picture.partShownAs(0), 800 / 65520.0);
  EXPECT_GT(picture.partShownAs(0), 0);
  EXPECT_GT(picture.partShownAs(1), 800 / 65520.0);
}

// A slope of few steps, brightened: no pixel differs much from its neighbours.
TEST_F(LivePictureTest, EightBitsAreBrightenedWithoutBands) {
  const FrameLayout layout{128, 64, PixelFormat::Raw8, BayerPattern::None};
  std::vector<std::uint8_t> bytes;
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 128; ++x) {
      bytes.push_back(static_cast<std::uint8_t>(10 + x / 16));
    }
  }
  picture.setFrame(frameOf(layout, 1, bytes));
  picture.setStretched(false);
  picture.setLevels({0, 0.1, 1});  // a step of the samples is ten of the screen
  ASSERT_TRUE(picture.measure(startTime));
  draw(128, 64);
  for (int x = 8; x < 119; ++x) {
    EXPECT_LE(
        std::abs(static_cast<int>(at(x + 1, 32) & 0xFFU) - static_cast<int>(at(x, 32) & 0xFFU)), 5)
        << x;
  }
  EXPECT_GT(at(120, 32) & 0xFFU, (at(8, 32) & 0xFFU) + 50);
  EXPECT_EQ(bytes[32 * 128 + 40], 12);  // the frame itself is as it was
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
  picture.measure(startTime);
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
  EXPECT_TRUE(picture.measure(startTime));
  EXPECT_TRUE(picture.measurements().areThere);
  EXPECT_FALSE(picture.measure(startTime + std::chrono::milliseconds(100)));
  EXPECT_TRUE(picture.measure(startTime + std::chrono::hours(1)));
  EXPECT_EQ(picture.measurements().diameters.size(), 2U);
}

TEST_F(LivePictureTest, RemembersTheLeastDiameterOfOneStream) {
  LivePicture::Clock::time_point now = startTime;
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
  EXPECT_TRUE(picture.measure(startTime));
  EXPECT_NEAR(*picture.measurements().leastDiameter, 2 * sharp, 0.4);
}

TEST_F(LivePictureTest, RemembersTheMostSharpnessOfOneRegion) {
  const FrameLayout layout{320, 200, PixelFormat::Raw16, BayerPattern::None};
  LivePicture::Clock::time_point now = startTime;
  double most = 0;
  for (const double blur : {3.0, 1.0, 5.0}) {
    picture.setFrame(
        frameOf(layout, 1, frame16(layout, [blur](int x, int y) {
                  return 500 + 20000 / (1 + std::exp((std::hypot(x - 160, y - 100) - 40) / blur));
                })));
    ASSERT_TRUE(picture.measure(now));
    most = std::max(most, picture.measurements().focus.sharpness);
    now += std::chrono::hours(1);
  }
  const Measurements& measured = picture.measurements();
  EXPECT_EQ(measured.sharpnesses.size(), 3U);
  EXPECT_EQ(measured.sharpnesses[1], most);
  EXPECT_EQ(measured.mostSharpness, most);

  picture.setRegion(Region{100, 40, 120, 120});
  EXPECT_FALSE(measured.mostSharpness);
  EXPECT_TRUE(picture.measure(startTime));  // at once
  EXPECT_EQ(measured.sharpnesses.size(), 1U);
  picture.setRegion(Region{100, 40, 120, 120});  // the same
  EXPECT_EQ(measured.sharpnesses.size(), 1U);
}

TEST_F(LivePictureTest, KeepsNoMoreDiametersThanItShows) {
  for (std::size_t round = 0; round < LivePicture::trendLength + 5; ++round) {
    picture.setFrame(frameWithStar(100, 50, 1));
    picture.measure(startTime + std::chrono::hours(round));
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
  picture.measure(startTime);
  EXPECT_NEAR(picture.measurements().focus.star->x, 100, 0.2);
  picture.followStarAt(255, 146);
  EXPECT_TRUE(picture.measure(startTime + std::chrono::milliseconds(1)));
  EXPECT_NEAR(picture.measurements().focus.star->x, 250, 0.2);
  EXPECT_EQ(picture.measurements().diameters.size(), 1U);
}

TEST_F(LivePictureTest, ClearedItShowsNothing) {
  picture.setFrame(frameWithStar(100, 50, 1));
  picture.clear();
  EXPECT_FALSE(picture.hasFrame());
  EXPECT_FALSE(picture.measure(startTime));
}

TEST_F(LivePictureTest, FramesTooSmallForABayerPatternShowNothingAndDoNoHarm) {
  picture.setFrame(frameOf({1, 1, PixelFormat::Raw8, BayerPattern::Rggb}, 1, {9}));
  EXPECT_TRUE(picture.measure(startTime));
  draw(10, 10);
  EXPECT_EQ(at(5, 5), background);
}

}  // namespace

}  // namespace orvane::host
