// A picture to draw on, and the axes of charts.
#include "imaging/canvas.hpp"

#include <gtest/gtest.h>

namespace orvane::host {

namespace {

constexpr Colour white{255, 255, 255};
constexpr Colour black{0, 0, 0};

// The picture as letters, a line each row: "#" for what is not white.
std::string drawn(const Canvas& canvas) {
  const ScreenImage& image = canvas.image();
  std::string text;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      text += image.samples[static_cast<std::size_t>(y * image.width + x) * 3] == 255 ? "." : "#";
    }
    text += "\n";
  }
  return text;
}

TEST(Canvas, FillsWhatLiesInside) {
  Canvas canvas(4, 3, white);
  EXPECT_EQ(drawn(canvas), "....\n....\n....\n");
  canvas.fill(2, 1, 100, 1, black);
  canvas.fill(-5, -5, 6, 6, black);
  canvas.fill(0, 2, 0, 5, black);
  EXPECT_EQ(drawn(canvas), "#...\n..##\n....\n");
}

TEST(Canvas, KeepsTheOrderOfColours) {
  const Canvas canvas(1, 1, {1, 2, 3});
  EXPECT_EQ(canvas.image().channels, 3);
  EXPECT_EQ(canvas.image().samples, (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST(Canvas, DrawsLines) {
  Canvas canvas(4, 3, white);
  canvas.line(0, 0, 2, 2, black);
  canvas.line(3, 2, 3, 1, black);
  EXPECT_EQ(drawn(canvas), "#...\n.#.#\n..##\n");
  Canvas thick(3, 3, white);
  thick.line(0, 1, 2, 1, black, 2);
  EXPECT_EQ(drawn(thick), "...\n###\n###\n");
}

TEST(Canvas, WritesLetters) {
  Canvas canvas(6, 9, white);
  canvas.text(0, 0, "T", black, 1);
  const std::string letter = drawn(canvas);
  EXPECT_NE(letter.find("#####"), std::string::npos) << letter;  // its bar
  EXPECT_NE(letter, drawn(Canvas(6, 9, white)));

  Canvas large(12, 18, white);
  large.text(0, 0, "T", black, 2);
  for (int y = 0; y < 18; ++y) {
    for (int x = 0; x < 12; ++x) {
      EXPECT_EQ(drawn(large)[static_cast<std::size_t>(y * 13 + x)],
                letter[static_cast<std::size_t>(y / 2 * 7 + x / 2)]);
    }
  }
}

TEST(Canvas, WritesAQuestionMarkForLettersThatItLacks) {
  Canvas odd(40, 12, white);
  odd.text(0, 0, "a\u00b0\U0001F52D\n", black, 1);
  Canvas marks(40, 12, white);
  marks.text(0, 0, "a???", black, 1);
  EXPECT_EQ(drawn(odd), drawn(marks));
  EXPECT_EQ(Canvas::textWidth("a\u00b0", 3), Canvas::textWidth("a?", 1) * 3);
}

TEST(Canvas, PlacesTextByItsEndOrMiddle) {
  const int width = Canvas::textWidth("watch", 1);
  Canvas plain(100, 12, white);
  plain.text(90 - width, 0, "watch", black, 1);
  Canvas left(100, 12, white);
  left.textToTheLeft(90, 0, "watch", black, 1);
  EXPECT_EQ(drawn(plain), drawn(left));
  Canvas middle(100, 12, white);
  middle.textInTheMiddle(90 - width + width / 2, 0, "watch", black, 1);
  EXPECT_EQ(drawn(plain), drawn(middle));
}

TEST(Canvas, TakesPicturesGreyAndInColour) {
  Canvas canvas(2, 1, white);
  canvas.picture(0, 0, {1, 1, 1, {7}});
  canvas.picture(1, 0, {2, 1, 3, {1, 2, 3, 4, 5, 6}});
  EXPECT_EQ(canvas.image().samples, (std::vector<std::uint8_t>{7, 7, 7, 1, 2, 3}));
}

std::string labels(const Axis& axis) {
  std::string text;
  for (const double tick : axis.ticks()) {
    text += axis.label(tick) + " ";
  }
  return text;
}

TEST(Axis, HasRoundNumbersAroundItsValues) {
  EXPECT_EQ(labels(axisFor(0, 187, 5)), "0 50 100 150 200 ");
  EXPECT_EQ(labels(axisFor(0, 200, 5)), "0 50 100 150 200 ");
  EXPECT_EQ(labels(axisFor(0, 1, 5)), "0.0 0.2 0.4 0.6 0.8 1.0 ");
  EXPECT_EQ(labels(axisFor(-10.3, -9.9, 4)), "-10.3 -10.2 -10.1 -10.0 -9.9 ");
  EXPECT_EQ(labels(axisFor(-1, 1, 2)), "-1 0 1 ");
  EXPECT_EQ(labels(axisFor(0, 0.004, 4)), "0.000 0.001 0.002 0.003 0.004 ");
  EXPECT_EQ(labels(axisFor(3e6, 7e6, 2)), "2000000 4000000 6000000 8000000 ");
}

TEST(Axis, GivesEqualValuesSomeRoom) {
  const Axis zero = axisFor(0, 0, 4);
  EXPECT_LT(zero.low, 0);
  EXPECT_GT(zero.high, 0);
  const Axis large = axisFor(1000, 1000, 4);
  EXPECT_LT(large.low, 1000);
  EXPECT_GT(large.high, 1000);
}

TEST(Axis, SaysWhereAValueLies) {
  const Axis axis = axisFor(10, 20, 5);
  EXPECT_DOUBLE_EQ(axis.part(10), 0);
  EXPECT_DOUBLE_EQ(axis.part(12.5), 0.25);
  EXPECT_DOUBLE_EQ(axis.part(20), 1);
  EXPECT_DOUBLE_EQ(axis.part(-1e9), 0);
  EXPECT_DOUBLE_EQ(axis.part(1e9), 1);
}

}  // namespace

}  // namespace orvane::host
