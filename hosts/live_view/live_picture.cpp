// The picture in the window, and the measurements of its frames.
#include "live_view/live_picture.hpp"

#include <algorithm>
#include <utility>

#include "imaging/stretch.hpp"
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
  measurements_.focus = measureFocus(frame_.bytes, frame_.layout, image_, factor, followed_);
  measureTrend();
  measureStretch();
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

void LivePicture::measureTrend() {
  if (!measurements_.focus.star) {
    return;
  }
  followed_ = measurements_.focus.star;
  const double diameter = measurements_.focus.star->halfFluxDiameter;
  measurements_.diameters.push_back(diameter);
  if (measurements_.diameters.size() > trendLength) {
    measurements_.diameters.pop_front();
  }
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
  if (isStretched_) {
    curves_ = ScreenCurves(stretches_);
  }
}

void LivePicture::setStretched(bool isStretched) {
  isStretched_ = isStretched;
  curves_ = isStretched && !stretches_.empty() ? ScreenCurves(stretches_) : ScreenCurves();
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
