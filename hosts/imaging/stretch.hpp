// Makes faint images visible: finds a black point and a brightness curve and applies them.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "imaging/image.hpp"

namespace orvane::host {

/// The midtones transfer function: a smooth curve through (0, 0), (`midtones`, 0.5) and (1, 1).
/// Values below 0 become 0, those above 1 become 1.
double midtonesTransfer(double midtones, double value);

/// The curve that brightens one channel: samples up to `black` become 0, those from `white` on
/// become 1, those between follow the midtones transfer function.
struct Stretch {
  double black = 0;
  double white = 65535;
  double midtones = 0.5;
};

/// Finds a stretch for each channel. Values a little below the channel's median become black, the
/// median becomes a quarter of white, and the brightest samples of all channels (apart from some
/// hot pixels) become white. This makes the background grey, whatever its colour cast, and keeps
/// the colours of brighter objects. No channel is darkened beyond its black point.
std::vector<Stretch> autoStretch(const Image& image);

/// The brightness of a sample, 0 to 1.
double stretchedBrightness(const Stretch& stretch, double sample);

/// The sample that has this brightness, 0 to 1.
double sampleOfBrightness(const Stretch& stretch, double brightness);

/// The screen's value of each of the 65536 sample values.
std::vector<std::uint8_t> screenCurve(const Stretch& stretch);

/// The image for a screen.
ScreenImage stretched(const Image& image);

/// A picture of a frame for viewing: debayered if it has a Bayer pattern, shrunk to `longestSide`,
/// and stretched. `frame` holds frameBytes(layout) bytes.
ScreenImage previewOf(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                      int longestSide = 2400);

/// The same for an image with this Bayer pattern, or None.
ScreenImage previewOf(Image image, BayerPattern bayer, int longestSide);

}  // namespace orvane::host
