// The places of everything in the window.
#include "live_view/window_layout.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace orvane::host {

namespace {

bool contains(const PixelRect& outer, const PixelRect& inner) {
  return inner.left >= outer.left && inner.top >= outer.top &&
         inner.left + inner.width <= outer.left + outer.width &&
         inner.top + inner.height <= outer.top + outer.height;
}

std::vector<PixelRect> itemsOf(const WindowLayout& layout) {
  std::vector<PixelRect> items = {layout.cameraName, layout.cameraFormat};
  for (const SliderPlace& slider : layout.sliders) {
    items.insert(items.end(), {slider.caption, slider.track});
  }
  items.insert(items.end(),
               {layout.histogramCaption, layout.histogram, layout.histogramAxis,
                layout.histogramNumbers, layout.levels[0].caption, layout.levels[0].track,
                layout.focus[0].caption, layout.focus[0].figure, layout.focus[0].best,
                layout.focus[0].trend, layout.facts, layout.record});
  return items;
}

class EveryDpi : public ::testing::TestWithParam<int> {};

TEST_P(EveryDpi, ItemsFollowEachOtherWithinThePanel) {
  const int dpi = GetParam();
  const WindowLayout layout = layOut(scaled(844, dpi), scaled(661, dpi), dpi);  // the least window
  int bottom = 0;
  for (const PixelRect& item : itemsOf(layout)) {
    EXPECT_TRUE(contains(layout.panel, item)) << item.top;
    EXPECT_GE(item.top, bottom);
    EXPECT_GT(item.height, 0);
    bottom = item.top + item.height;
  }
}

// Both lie in the panel, at the same height, and do not overlap.
void expectSideBySide(const WindowLayout& layout, const PixelRect& left, const PixelRect& right) {
  EXPECT_TRUE(contains(layout.panel, left));
  EXPECT_TRUE(contains(layout.panel, right));
  EXPECT_EQ(left.top, right.top);
  EXPECT_EQ(left.height, right.height);
  EXPECT_GT(right.left, left.right());
}

TEST_P(EveryDpi, LevelsAndFocusFiguresAreSideBySide) {
  const int dpi = GetParam();
  const WindowLayout layout = layOut(scaled(844, dpi), scaled(661, dpi), dpi);
  for (const std::size_t level : {0U, 1U}) {
    expectSideBySide(layout, layout.levels[level].caption, layout.levels[level + 1].caption);
    expectSideBySide(layout, layout.levels[level].track, layout.levels[level + 1].track);
  }
  const auto& [star, disc] = layout.focus;
  expectSideBySide(layout, star.caption, disc.caption);
  expectSideBySide(layout, star.figure, disc.figure);
  expectSideBySide(layout, star.best, disc.best);
  expectSideBySide(layout, star.trend, disc.trend);
}

TEST_P(EveryDpi, ThreePartsFillTheWindow) {
  const int dpi = GetParam();
  const WindowLayout layout = layOut(2001, 1503, dpi);
  EXPECT_EQ(layout.picture.left + layout.picture.width, layout.panel.left);
  EXPECT_EQ(layout.panel.left + layout.panel.width, 2001);
  EXPECT_EQ(layout.picture.height, layout.panel.height);
  EXPECT_EQ(layout.status.top, layout.picture.height);
  EXPECT_EQ(layout.status.top + layout.status.height, 1503);
  EXPECT_EQ(layout.status.width, 2001);
  EXPECT_EQ(layout.panel.width, scaled(312, dpi));
}

TEST_P(EveryDpi, ALongNoticeTakesItsLinesFromThePicture) {
  const int dpi = GetParam();
  const WindowLayout one = layOut(2001, 1503, dpi);
  const WindowLayout three = layOut(2001, 1503, dpi, 3);
  EXPECT_EQ(one.notice, one.status);
  EXPECT_TRUE(contains(one.status, one.noticeText));
  EXPECT_EQ(three.picture.height, one.picture.height - 2 * scaled(20, dpi));
  EXPECT_EQ(three.notice.top, three.picture.height);
  EXPECT_EQ(three.notice.width, three.picture.width);
  EXPECT_EQ(three.noticeText.width, three.wrappedNoticeWidth);
  EXPECT_TRUE(contains(three.notice, three.noticeText));
  EXPECT_GE(three.noticeText.height, 3 * scaled(20, dpi));
  EXPECT_EQ(three.panel, one.panel);
  EXPECT_EQ(three.record, one.record);
}

INSTANTIATE_TEST_SUITE_P(WindowLayout, EveryDpi, ::testing::Values(96, 120, 144, 192, 288));

TEST(WindowLayout, ATinyWindowHasNoNegativeSizes) {
  const WindowLayout layout = layOut(1, 1, 96);
  EXPECT_GE(layout.picture.width, 0);
  EXPECT_GE(layout.picture.height, 0);
  EXPECT_GE(layout.facts.height, 0);
}

TEST(FittedPicture, KeepsItsShapeInTheMiddle) {
  EXPECT_EQ(fittedPicture({10, 20, 1000, 1000}, 2000, 1000), (PixelRect{10, 270, 1000, 500}));
  EXPECT_EQ(fittedPicture({0, 0, 1000, 400}, 1000, 1000), (PixelRect{300, 0, 400, 400}));
  EXPECT_EQ(fittedPicture({0, 0, 100, 100}, 10, 10), (PixelRect{0, 0, 100, 100}));
  EXPECT_EQ(fittedPicture({0, 0, 100, 100}, 10000, 1), (PixelRect{0, 49, 100, 1}));
  EXPECT_EQ(fittedPicture({5, 6, 100, 100}, 0, 0), (PixelRect{5, 6, 0, 0}));
}

TEST(PlotColumn, RunsFromEndToEnd) {
  const PixelRect plot{100, 0, 201, 20};
  EXPECT_EQ(plotColumn(plot, 0), 100);
  EXPECT_EQ(plotColumn(plot, 0.5), 200);
  EXPECT_EQ(plotColumn(plot, 1), 300);
  EXPECT_EQ(plotColumn(plot, -1), 100);
  EXPECT_EQ(plotColumn(plot, 2), 300);
}

TEST(PlaceOnTrack, RunsFromEndToEnd) {
  const PixelRect track{100, 0, 201, 20};
  EXPECT_EQ(placeOnTrack(track, 50), 0);
  EXPECT_EQ(placeOnTrack(track, 100), 0);
  EXPECT_EQ(placeOnTrack(track, 200), 0.5);
  EXPECT_EQ(placeOnTrack(track, 300), 1);
  EXPECT_EQ(placeOnTrack(track, 999), 1);
  EXPECT_EQ(placeOnTrack({0, 0, 1, 1}, 0), 0);
}

TEST(ListPlace, LiesInThePictureAndKnowsItsRows) {
  const PixelRect picture{0, 0, 960, 740};
  const ListPlace list = placeList(picture, 540, 15, 96);
  EXPECT_EQ(list.rows, 15);
  EXPECT_TRUE(contains(picture, list.box));
  EXPECT_TRUE(contains(list.box, list.row(0)));
  EXPECT_TRUE(contains(list.box, list.row(14)));
  EXPECT_EQ(list.rowAt(list.row(3).left + 5, list.row(3).top), 3);
  EXPECT_EQ(list.rowAt(list.row(3).left + 5, list.row(4).top - 1), 3);
  EXPECT_EQ(list.rowAt(list.box.left, list.box.top), -1);
  EXPECT_EQ(list.rowAt(0, 0), -1);
}

TEST(ListPlace, HasNoMoreRowsThanRoom) {
  const ListPlace list = placeList({0, 0, 300, 200}, 540, 100, 96);
  EXPECT_GT(list.rows, 0);
  EXPECT_LT(list.rows, 100);
  EXPECT_TRUE(contains({0, 0, 300, 200}, list.box));
  EXPECT_EQ(placeList({0, 0, 300, 10}, 540, 100, 96).rows, 0);
}

}  // namespace

}  // namespace orvane::host
