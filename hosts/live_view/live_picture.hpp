// The picture in the window, and the measurements of its frames.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "imaging/frame_layout.hpp"
#include "imaging/statistics.hpp"
#include "live_view/focus.hpp"
#include "live_view/picture_levels.hpp"
#include "live_view/reduced_frame.hpp"
#include "live_view/screen_pixels.hpp"

namespace orvane::host {

/// A frame as the camera delivered it.
struct LiveFrame {
  FrameLayout layout;
  int bitDepth = 8;           ///< of the camera's converter
  std::uint64_t opening = 0;  ///< CaptureState::opening; frames of one opening belong together
  std::span<const std::uint8_t> bytes;
  std::shared_ptr<const void> owner;  ///< of the bytes
};

/// The part of the frame that is on the screen, and its place.
struct PictureView {
  PixelRect onScreen;    ///< within the area that was drawn
  double scale = 1;      ///< screen pixels for one frame pixel
  double frameLeft = 0;  ///< of the frame, at the left edge of `onScreen`
  double frameTop = 0;

  /// From the frame to the area.
  double screenX(double frameX) const { return onScreen.left + (frameX - frameLeft) * scale; }
  double screenY(double frameY) const { return onScreen.top + (frameY - frameTop) * scale; }

  /// From the area to the frame.
  double frameX(double screenX) const { return frameLeft + (screenX - onScreen.left) / scale; }
  double frameY(double screenY) const { return frameTop + (screenY - onScreen.top) / scale; }
};

struct Measurements {
  bool areThere = false;  ///< a frame has been measured
  Histogram histogram;
  Focus focus;
  std::deque<double> diameters;         ///< half-flux diameters, the latest last
  std::optional<double> leastDiameter;  ///< of this star, since the camera was opened
  std::deque<double> sharpnesses;       ///< see measureSharpness(); the latest last
  std::optional<double> mostSharpness;  ///< of this region, since the camera was opened
};

class LivePicture {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t trendLength = 120;  ///< the most figures that are kept

  void setFrame(LiveFrame frame);

  /// Forgets the frame: nothing is shown.
  void clear() { frame_ = {}; }

  bool hasFrame() const { return !frame_.bytes.empty(); }

  /// Measures the frame if a measurement is due. Returns whether it did. Measuring takes an eighth
  /// of the time at most.
  bool measure(Clock::time_point now);

  /// From now on, measures the star near this place of the frame.
  void followStarAt(double frameX, double frameY);

  /// From now on, measures the sharpness in this region, or of the brightest object.
  void setRegion(const std::optional<Region>& region);

  const Measurements& measurements() const { return measurements_; }

  /// Draws the picture, and `background` where there is none.
  PictureView draw(const ScreenTarget& area, std::uint32_t background);

  bool isStretched() const { return isStretched_; }
  void setStretched(bool isStretched);
  const PictureLevels& levels() const { return levels_; }
  void setLevels(const PictureLevels& levels);

  /// The part of the full scale, 0 to 1, that the picture shows with this brightness: 0 (black) to
  /// 1 (white). In colour, that of green.
  double partShownAs(double brightness) const;

  bool isPixelByPixel() const { return isPixelByPixel_; }
  void setPixelByPixel(bool isPixelByPixel) { isPixelByPixel_ = isPixelByPixel; }
  void setTint(ScreenTint tint) { tint_ = tint; }

  /// Moves what is shown pixel by pixel.
  void move(int right, int down);

 private:
  void measureStretch();
  void updateCurves();
  std::vector<Stretch> shownStretches() const;
  bool isBrightened() const;
  void measureTrend();
  PictureView reduceWhole(const ScreenTarget& area);
  PictureView cutPart(const ScreenTarget& area);

  LiveFrame frame_;
  Image image_;  // reduced for measuring, or made for drawing
  ScreenPixels pixels_;
  ScreenCurves curves_;
  std::vector<Stretch> stretches_;
  Measurements measurements_;
  std::optional<Star> followed_;
  std::optional<Region> region_;
  std::optional<SampleRange> range_;
  Clock::time_point nextMeasurement_;
  bool isStretched_ = true;
  PictureLevels levels_;
  bool isPixelByPixel_ = false;
  ScreenTint tint_ = ScreenTint::Natural;
  int centreX_ = -1;  // of the part that is shown pixel by pixel; negative: the frame's centre
  int centreY_ = -1;
};

}  // namespace orvane::host
