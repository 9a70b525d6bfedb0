// Makes faint images visible: finds a black point and a brightness curve and applies them.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "imaging/image.hpp"

namespace orvane::host {

/// The midtones transfer function: 0 to 0, `midtones` to 0.5, 1 to 1, and a smooth curve between.
/// All values lie from 0 to 1.
double midtonesTransfer(double midtones, double value);

/// The curve that brightens one channel: samples up to `black` become 0, those from `white` on
/// become 1, those between follow the midtones transfer function.
struct Stretch {
  double black = 0;
  double white = 65535;
  double midtones = 0.5;
};

/// The stretches that show what an image holds, one for each channel: a little below the channel's
/// median becomes black, the median a quarter of white, and the brightest samples of all channels
/// (some hot pixels aside) white. So the background becomes grey, whatever cast the sensor gives
/// it, and what stands out of it keeps its colour. No channel is darkened beyond its black point.
std::vector<Stretch> autoStretch(const Image& image);

/// The screen's value of each of the 65536 sample values.
std::vector<std::uint8_t> screenCurve(const Stretch& stretch);

/// The image for a screen.
ScreenImage stretched(const Image& image);

/// A picture of a frame for a person to look at: debayered if it has a Bayer pattern, shrunk to
/// `longestSide`, stretched. `frame` holds frameBytes(layout) bytes.
ScreenImage previewOf(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                      int longestSide = 2400);

/// The same of an image with this Bayer pattern, or none.
ScreenImage previewOf(Image image, BayerPattern bayer, int longestSide);

}  // namespace orvane::host
