// Images as screen pixels: brightness, colour and size.
#include "live_view/screen_pixels.hpp"

#include <gtest/gtest.h>

namespace orvane::host {

namespace {

using Pixels = std::vector<std::uint32_t>;

Pixels applied(const ScreenCurves& curves, const Image& image,
               ScreenTint tint = ScreenTint::Natural) {
  ScreenPixels screen;
  curves.apply(image, tint, screen);
  EXPECT_EQ(screen.width, image.width);
  EXPECT_EQ(screen.height, image.height);
  return screen.pixels;
}

TEST(ScreenCurves, ShowSamplesAsTheyAre) {
  EXPECT_EQ(applied(ScreenCurves(), {2, 1, 3, {0, 65535, 0x8080, 257, 514, 0}}),
            (Pixels{0x00FF80, 0x010200}));
  EXPECT_EQ(applied(ScreenCurves(), {2, 1, 1, {0x4040, 65535}}), (Pixels{0x404040, 0xFFFFFF}));
}

TEST(ScreenCurves, EachChannelHasItsOwnOrAllThreeShareOne) {
  const ScreenCurves three({{0, 1000, 0.5}, {0, 65535, 0.5}, {1000, 2000, 0.5}});
  EXPECT_EQ(applied(three, {1, 1, 3, {1000, 0, 1000}}), (Pixels{0xFF0000}));
  const ScreenCurves one(std::vector<Stretch>{{0, 2550, 0.5}});
  EXPECT_EQ(applied(one, {1, 1, 3, {2550, 0, 1280}}), (Pixels{0xFF0080}));
}

TEST(ScreenCurves, LevelsFollowTheStretch) {
  // The stretch makes 0.25 out of 1000; the levels make 0.5 out of that.
  const ScreenCurves curves(std::vector<Stretch>{{0, 4000, 0.5}}, {0, 0.5, 1});
  EXPECT_EQ(applied(curves, {3, 1, 1, {0, 2000, 4000}}), (Pixels{0, 0xFFFFFF, 0xFFFFFF}));
  EXPECT_NEAR(applied(curves, {1, 1, 1, {1000}}).front() & 0xFFU, 0x7F, 1);
}

// On average, an area has the brightness that lies between two of the screen's.
TEST(ScreenCurves, DitherWhatLiesBetween) {
  for (const int part : {0, 64, 128, 200}) {
    const auto sample = static_cast<std::uint16_t>(100 * 257 + part);
    const Pixels pixels =
        applied(ScreenCurves(), {16, 16, 1, std::vector<std::uint16_t>(256, sample)});
    double sum = 0;
    for (const std::uint32_t pixel : pixels) {
      EXPECT_TRUE((pixel & 0xFFU) == 100 || (pixel & 0xFFU) == 101);
      sum += pixel & 0xFFU;
    }
    EXPECT_NEAR(sum / 256, 100 + part / 257.0, 0.02);
  }
}

// Half of the pixels are brighter, and no two rows and no two columns of a square are alike.
TEST(ScreenCurves, DitherEvenly) {
  const Pixels pixels =
      applied(ScreenCurves(), {8, 8, 1, std::vector<std::uint16_t>(64, 100 * 257 + 128)});
  for (std::size_t line = 0; line < 8; ++line) {
    std::uint32_t row = 0;
    std::uint32_t column = 0;
    for (std::size_t at = 0; at < 8; ++at) {
      row += (pixels[8 * line + at] & 0xFFU) - 100;
      column += (pixels[8 * at + line] & 0xFFU) - 100;
    }
    EXPECT_EQ(row, 4U);
    EXPECT_EQ(column, 4U);
  }
}

TEST(ScreenCurves, RedTintLeavesNoOtherColour) {
  const Image image{3, 1, 3, {65535, 65535, 65535, 0, 65535, 0, 0, 0, 65535}};
  EXPECT_EQ(applied(ScreenCurves(), image, ScreenTint::Red),
            (Pixels{0xFF0000, 0x950000, 0x1C0000}));
}

ScreenPixels drawn(const ScreenPixels& screen, int width, int height) {
  ScreenPixels target{width, height, Pixels(static_cast<std::size_t>(width * height), 0x123456)};
  drawScaled(screen, {target.pixels.data(), width, width, height});
  return target;
}

TEST(DrawScaled, OfTheSameSizeIsACopy) {
  const ScreenPixels screen{3, 2, {1, 2, 3, 4, 5, 6}};
  EXPECT_EQ(drawn(screen, 3, 2).pixels, screen.pixels);
}

TEST(DrawScaled, LeavesWhatLiesBesideTheTarget) {
  Pixels picture(12, 7);
  const ScreenPixels screen{2, 2, {1, 2, 3, 4}};
  drawScaled(screen, {picture.data() + 5, 4, 2, 2});
  EXPECT_EQ(picture, (Pixels{7, 7, 7, 7, 7, 1, 2, 7, 7, 3, 4, 7}));
}

TEST(DrawScaled, MixesChannelsByThemselves) {
  const ScreenPixels screen{2, 1, {0x00FF00, 0xFF00FF}};
  // A quarter and three quarters of the way between the two pixels' middles.
  EXPECT_EQ(drawn(screen, 4, 1).pixels, (Pixels{0x00FF00, 0x3FBF3F, 0xBF3FBF, 0xFF00FF}));
}

TEST(DrawScaled, EvenSurfacesStayEven) {
  const ScreenPixels screen{5, 4, Pixels(20, 0xABCDEF)};
  for (const auto& [width, height] : {std::pair{3, 2}, std::pair{11, 9}, std::pair{1, 1}}) {
    EXPECT_EQ(drawn(screen, width, height).pixels,
              Pixels(static_cast<std::size_t>(width * height), 0xABCDEF));
  }
}

TEST(DrawScaled, HalvesBetweenTwoPixels) {
  const ScreenPixels screen{4, 2, {0x10, 0x20, 0x30, 0x40, 0x30, 0x40, 0x50, 0x60}};
  EXPECT_EQ(drawn(screen, 2, 1).pixels, (Pixels{0x28, 0x48}));
}

TEST(DrawScaled, DrawsNothingWhereThereIsNothing) {
  drawScaled({}, {nullptr, 0, 10, 10});
  drawScaled({1, 1, {5}}, {nullptr, 0, 0, 10});
}

}  // namespace

}  // namespace orvane::host
