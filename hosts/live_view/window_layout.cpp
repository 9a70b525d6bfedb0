// The places of everything in the window, in pixels of the screen.
#include "live_view/window_layout.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace orvane::host {

namespace {

// For 96 dots per inch.
constexpr int panelWidth = 312;
constexpr int statusHeight = 32;
constexpr int margin = 16;
constexpr int topMargin = 12;
constexpr int sectionGap = 9;
constexpr int columnGap = 12;
constexpr int lineHeight = 20;
constexpr int smallLineHeight = 17;
constexpr int nameHeight = 28;
constexpr int trackHeight = 22;
constexpr int histogramHeight = 84;
constexpr int figureHeight = 34;
constexpr int trendHeight = 36;
constexpr int recordHeight = 52;
constexpr int noticeLineHeight = 20;
constexpr int keysWidth = 64;

// Divides a column into rectangles, from the top down.
class Column {
 public:
  Column(const PixelRect& inside, int dpi) : at_(inside), dpi_(dpi) {}

  PixelRect next(int height) {
    const PixelRect rect{at_.left, at_.top, at_.width, scaled(height, dpi_)};
    skip(height);
    return rect;
  }

  void skip(int height) { at_.top += scaled(height, dpi_); }

  // The next rectangle, divided into equal parts side by side.
  template <std::size_t count>
  std::array<PixelRect, count> nextRow(int height) {
    const PixelRect all = next(height);
    const int gap = scaled(columnGap, dpi_);
    const int parts = static_cast<int>(count);
    std::array<PixelRect, count> row;
    for (int part = 0; part < parts; ++part) {
      const int width = (all.width - (parts - 1) * gap) / parts;
      row.at(static_cast<std::size_t>(part)) = {all.left + part * (width + gap), all.top, width,
                                                all.height};
    }
    return row;
  }

  int top() const { return at_.top; }

 private:
  PixelRect at_;
  int dpi_;
};

}  // namespace

int scaled(int length, int dpi) {
  return (length * dpi + 48) / 96;
}

WindowLayout layOut(int width, int height, int dpi, int noticeLines) {
  const auto at = [&](int length) { return scaled(length, dpi); };
  WindowLayout layout;
  const int statusTop = std::max(0, height - at(statusHeight));
  const int panelLeft = std::max(0, width - at(panelWidth));
  layout.status = {0, statusTop, width, height - statusTop};
  layout.panel = {panelLeft, 0, width - panelLeft, statusTop};
  const int noticeTop =
      std::max(0, statusTop - at(noticeLineHeight) * std::max(0, noticeLines - 1));
  const int textTop = noticeTop + at((statusHeight - noticeLineHeight) / 2);
  layout.picture = {0, 0, panelLeft, noticeTop};
  layout.notice = {0, noticeTop, noticeLines > 1 ? panelLeft : width, height - noticeTop};
  layout.wrappedNoticeWidth = std::max(0, panelLeft - 2 * at(margin));
  layout.noticeText = {
      at(margin), textTop,
      noticeLines > 1 ? layout.wrappedNoticeWidth : std::max(0, width - at(3 * margin + keysWidth)),
      std::max(0, height - textTop)};

  const int innerWidth = at(panelWidth - 2 * margin);
  Column column({panelLeft + at(margin), at(topMargin), innerWidth, 0}, dpi);
  layout.cameraName = column.next(nameHeight);
  layout.cameraFormat = column.next(lineHeight);
  column.skip(sectionGap);
  for (SliderPlace& slider : layout.sliders) {
    slider.caption = column.next(lineHeight);
    slider.track = column.next(trackHeight);
  }
  column.skip(sectionGap);
  layout.histogramCaption = column.next(lineHeight);
  layout.histogram = column.next(histogramHeight);
  layout.histogramAxis = column.next(smallLineHeight);
  layout.histogramNumbers = column.next(smallLineHeight);
  column.skip(4);
  const auto levelCaptions = column.nextRow<3>(smallLineHeight);
  const auto levelTracks = column.nextRow<3>(trackHeight);
  for (std::size_t level = 0; level < layout.levels.size(); ++level) {
    layout.levels.at(level) = {levelCaptions.at(level), levelTracks.at(level)};
  }
  column.skip(sectionGap);
  const auto captions = column.nextRow<2>(lineHeight);
  const auto figures = column.nextRow<2>(figureHeight);
  const auto bests = column.nextRow<2>(smallLineHeight);
  const auto trends = column.nextRow<2>(trendHeight);
  for (std::size_t side = 0; side < layout.focus.size(); ++side) {
    layout.focus.at(side) = {captions.at(side), figures.at(side), bests.at(side), trends.at(side)};
  }
  column.skip(sectionGap);

  const int recordTop = statusTop - at(margin) - at(recordHeight);
  layout.record = {panelLeft + at(margin), recordTop, innerWidth, at(recordHeight)};
  layout.facts = {panelLeft + at(margin), column.top(), innerWidth,
                  std::max(0, recordTop - at(8) - column.top())};
  return layout;
}

int ListPlace::rowAt(int x, int y) const {
  const PixelRect all{firstRow.left, firstRow.top, firstRow.width, rows * firstRow.height};
  return all.contains(x, y) ? (y - firstRow.top) / firstRow.height : -1;
}

ListPlace placeList(const PixelRect& picture, int width, int rows, int dpi) {
  const auto at = [&](int length) { return scaled(length, dpi); };
  constexpr int rowHeight = 24;
  constexpr int titleHeight = 40;
  const int room = picture.height - at(titleHeight + 3 * margin);
  ListPlace list;
  list.rows = std::clamp(room / at(rowHeight), 0, rows);
  list.box.width = std::min(at(width), std::max(0, picture.width - at(margin)));
  list.box.height = at(titleHeight + margin) + list.rows * at(rowHeight);
  list.box.left = picture.left + (picture.width - list.box.width) / 2;
  list.box.top = picture.top + std::max(0, (picture.height - list.box.height) / 2);
  const int innerLeft = list.box.left + at(margin);
  const int innerWidth = list.box.width - 2 * at(margin);
  list.title = {innerLeft, list.box.top + at(4), innerWidth, at(titleHeight)};
  list.firstRow = {innerLeft, list.box.top + at(titleHeight + 4), innerWidth, at(rowHeight)};
  return list;
}

PixelRect fittedPicture(const PixelRect& area, int frameWidth, int frameHeight) {
  if (frameWidth <= 0 || frameHeight <= 0) {
    return {area.left, area.top, 0, 0};
  }
  const std::int64_t widthAtFullHeight = std::int64_t{area.height} * frameWidth / frameHeight;
  PixelRect picture = area;
  if (widthAtFullHeight <= area.width) {
    picture.width = std::max(1, static_cast<int>(widthAtFullHeight));
  } else {
    picture.height =
        std::max(1, static_cast<int>(std::int64_t{area.width} * frameHeight / frameWidth));
  }
  picture.left += (area.width - picture.width) / 2;
  picture.top += (area.height - picture.height) / 2;
  return picture;
}

int plotColumn(const PixelRect& plot, double part) {
  return plot.left + static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * (plot.width - 1)));
}

double placeOnTrack(const PixelRect& track, int x) {
  if (track.width <= 1) {
    return 0;
  }
  return std::clamp(static_cast<double>(x - track.left) / (track.width - 1), 0.0, 1.0);
}

}  // namespace orvane::host
