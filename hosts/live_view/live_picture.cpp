// The picture in the window, and the measurements of its frames.
#include "live_view/live_picture.hpp"

#include <algorithm>
#include <utility>

#include "imaging/stretch.hpp"
#include "live_view/smooth_levels.hpp"
#include "live_view/window_layout.hpp"

namespace orvane::host {

namespace {

// Often enough for turning a focuser while watching the figure.
constexpr std::chrono::milliseconds betweenMeasurements{200};

// The reduced image for measuring is as large as a usual window.
constexpr int measuredWidth = 960;
constexpr int measuredHeight = 640;

// The weight of a new stretch against the one before, so that noise does not make the picture
// flicker.
constexpr double newPart = 0.4;

double between(double before, double after) {
  return before + newPart * (after - before);
}

ScreenTarget partOf(const ScreenTarget& area, const PixelRect& rect) {
  return {area.pixels + rect.top * area.pitch + rect.left, area.pitch, rect.width, rect.height};
}

}  // namespace

void LivePicture::setFrame(LiveFrame frame) {
  const bool isOtherStream = frame.opening != frame_.opening;
  frame_ = std::move(frame);
  if (isOtherStream) {
    measurements_ = {};
    followed_.reset();
    stretches_.clear();
    nextMeasurement_ = {};
    range_.emplace(frame_.layout.format, frame_.bitDepth);
    centreX_ = -1;
    centreY_ = -1;
  }
}

bool LivePicture::measure(Clock::time_point now) {
  if (!hasFrame() || now < nextMeasurement_) {
    return false;
  }
  const Clock::time_point begin = Clock::now();
  const int factor = reductionFactor(frame_.layout, measuredWidth, measuredHeight);
  reduceFrame(frame_.bytes, frame_.layout, factor, image_);
  range_->add(frame_.bytes);
  measurements_.areThere = true;
  measurements_.histogram = histogramOf(frame_.bytes, frame_.layout, range_->fullScale());
  measurements_.focus =
      measureFocus(frame_.bytes, frame_.layout, image_, factor, followed_, region_);
  measureTrend();
  measureStretch();
  updateCurves();
  nextMeasurement_ =
      now + std::max<Clock::duration>(betweenMeasurements, 8 * (Clock::now() - begin));
  return true;
}

void LivePicture::followStarAt(double frameX, double frameY) {
  followed_ = Star{frameX, frameY, 0};
  measurements_.diameters.clear();
  measurements_.leastDiameter.reset();
  nextMeasurement_ = {};
}

void LivePicture::setRegion(const std::optional<Region>& region) {
  if (region != region_) {
    region_ = region;
    measurements_.sharpnesses.clear();
    measurements_.mostSharpness.reset();
    nextMeasurement_ = {};
  }
}

void LivePicture::measureTrend() {
  const auto add = [](std::deque<double>& trend, double figure) {
    trend.push_back(figure);
    if (trend.size() > trendLength) {
      trend.pop_front();
    }
  };
  if (const double sharpness = measurements_.focus.sharpness; sharpness > 0) {
    add(measurements_.sharpnesses, sharpness);
    measurements_.mostSharpness =
        std::max(sharpness, measurements_.mostSharpness.value_or(sharpness));
  }
  if (!measurements_.focus.star) {
    return;
  }
  followed_ = measurements_.focus.star;
  const double diameter = measurements_.focus.star->halfFluxDiameter;
  add(measurements_.diameters, diameter);
  measurements_.leastDiameter = std::min(diameter, measurements_.leastDiameter.value_or(diameter));
}

void LivePicture::measureStretch() {
  if (image_.samples.empty()) {
    return;
  }
  std::vector<Stretch> fresh = autoStretch(image_);
  if (fresh.size() == stretches_.size()) {
    for (std::size_t channel = 0; channel < fresh.size(); ++channel) {
      const Stretch& before = stretches_[channel];
      Stretch& after = fresh[channel];
      after = {between(before.black, after.black), between(before.white, after.white),
               between(before.midtones, after.midtones)};
    }
  }
  stretches_ = std::move(fresh);
}

void LivePicture::setStretched(bool isStretched) {
  isStretched_ = isStretched;
  updateCurves();
}

void LivePicture::setLevels(const PictureLevels& levels) {
  levels_ = levels;
  updateCurves();
}

// One for each channel, or one for all.
std::vector<Stretch> LivePicture::shownStretches() const {
  if (isStretched_ && !stretches_.empty()) {
    return stretches_;
  }
  Stretch plain;
  if (frame_.layout.format == PixelFormat::Raw16 && range_) {
    plain.white = range_->fullScale();
  }
  return {plain};
}

void LivePicture::updateCurves() {
  curves_ = ScreenCurves(shownStretches(), levels_);
}

double LivePicture::partShownAs(double brightness) const {
  const std::vector<Stretch> stretches = shownStretches();
  const Stretch& stretch = stretches[stretches.size() / 2];
  const bool is16 = frame_.layout.format == PixelFormat::Raw16 && range_;
  const double fullScale = is16 ? range_->fullScale() : 65535;
  return std::clamp(sampleOfBrightness(stretch, levels_.inverse(brightness)) / fullScale, 0.0, 1.0);
}

// As the samples are, one step of 8 bits is one step of the screen.
bool LivePicture::isBrightened() const {
  return isStretched_ || levels_ != PictureLevels();
}

void LivePicture::move(int right, int down) {
  if (isPixelByPixel_) {
    centreX_ = std::max(0, centreX_ - right);
    centreY_ = std::max(0, centreY_ - down);
  }
}

PictureView LivePicture::draw(const ScreenTarget& area, std::uint32_t background) {
  for (int y = 0; y < area.height; ++y) {
    std::ranges::fill(area.row(y), background);
  }
  if (!hasFrame() || area.width <= 0 || area.height <= 0) {
    return {};
  }
  const PictureView view = isPixelByPixel_ ? cutPart(area) : reduceWhole(area);
  if (frame_.layout.format != PixelFormat::Raw16 && isBrightened()) {
    smoothLevels(image_);
  }
  curves_.apply(image_, tint_, pixels_);
  drawScaled(pixels_, partOf(area, view.onScreen));
  return view;
}

PictureView LivePicture::reduceWhole(const ScreenTarget& area) {
  const PixelRect place =
      fittedPicture({0, 0, area.width, area.height}, frame_.layout.width, frame_.layout.height);
  const int factor = reductionFactor(frame_.layout, place.width, place.height);
  reduceFrame(frame_.bytes, frame_.layout, factor, image_);
  return {place, static_cast<double>(place.width) / frame_.layout.width, 0, 0};
}

PictureView LivePicture::cutPart(const ScreenTarget& area) {
  const FrameLayout& layout = frame_.layout;
  if (centreX_ < 0 || centreY_ < 0) {
    centreX_ = layout.width / 2;
    centreY_ = layout.height / 2;
  }
  const PixelRect wanted{centreX_ - area.width / 2, centreY_ - area.height / 2, area.width,
                         area.height};
  const PixelRect shown = cutFrame(frame_.bytes, layout, wanted, image_);
  centreX_ = shown.width < layout.width ? shown.left + area.width / 2 : layout.width / 2;
  centreY_ = shown.height < layout.height ? shown.top + area.height / 2 : layout.height / 2;
  const PixelRect place{(area.width - shown.width) / 2, (area.height - shown.height) / 2,
                        shown.width, shown.height};
  return {place, 1, static_cast<double>(shown.left), static_cast<double>(shown.top)};
}

}  // namespace orvane::host
