// The places of everything in the window, in pixels of the screen.
#pragma once

#include <array>

#include "live_view/reduced_frame.hpp"

namespace orvane::host {

/// A caption with a value and a slider below.
struct SliderPlace {
  PixelRect caption;
  PixelRect track;  ///< takes the mouse; the line is drawn in its middle
};

/// A figure of the focus with its history.
struct FocusPlace {
  PixelRect caption;
  PixelRect figure;
  PixelRect best;
  PixelRect trend;
};

struct WindowLayout {
  PixelRect picture;
  PixelRect panel;
  PixelRect status;
  PixelRect notice;            ///< the left part of the status line, and the lines above it
  PixelRect noticeText;        ///< in it
  int wrappedNoticeWidth = 0;  ///< of the text when it has more than one line

  PixelRect cameraName;
  PixelRect cameraFormat;
  std::array<SliderPlace, 3> sliders;  ///< of exposure, gain and offset
  PixelRect histogramCaption;
  PixelRect histogram;
  PixelRect histogramAxis;  ///< the numbers below the histogram
  PixelRect histogramNumbers;
  std::array<SliderPlace, 3> levels;  ///< of black, white and gamma, side by side
  std::array<FocusPlace, 2> focus;    ///< of a star, and of a planet or the Moon, side by side
  PixelRect facts;                    ///< the lines with frame rate, temperature and so on
  PixelRect record;
};

/// `dpi` is 96 where a screen has no magnification.
/// The notice has the whole status line, or a column of `noticeLines` lines below the picture.
WindowLayout layOut(int width, int height, int dpi, int noticeLines = 1);

/// A length given for 96 dots per inch, on this screen.
int scaled(int length, int dpi);

/// A list over the picture.
struct ListPlace {
  PixelRect box;
  PixelRect title;
  PixelRect firstRow;  ///< the others follow below without a gap
  int rows = 0;

  PixelRect row(int number) const {
    return {firstRow.left, firstRow.top + number * firstRow.height, firstRow.width,
            firstRow.height};
  }

  /// The row at this point; -1 for none.
  int rowAt(int x, int y) const;
};

/// A list of `rows` rows of this width (for 96 dots per inch) in the middle of the picture, with
/// fewer rows if there is not enough room.
ListPlace placeList(const PixelRect& picture, int width, int rows, int dpi);

/// The place of the whole frame: as large as the area allows, with its shape kept.
PixelRect fittedPicture(const PixelRect& area, int frameWidth, int frameHeight);

/// The column of a plot for a part of its range, 0 to 1.
int plotColumn(const PixelRect& plot, double part);

/// The mouse's place on a slider, 0 (left) to 1.
double placeOnTrack(const PixelRect& track, int x);

}  // namespace orvane::host
