// Corrects frames whose layout differs from what the SDK reported, and cuts a region out of them.
#include "imaging/frame_correction.hpp"

#include <algorithm>
#include <utility>

#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

template <class Sample>
void correct(std::span<Sample> samples, int rows, const FrameCorrection& correction) {
  if (correction.flips) {
    const auto width = static_cast<std::ptrdiff_t>(samples.size() / static_cast<std::size_t>(rows));
    auto top = samples.begin();
    auto bottom = samples.end() - width;
    for (; top < bottom; top += width, bottom -= width) {
      std::swap_ranges(top, top + width, bottom);
    }
  }
  for (std::size_t at = 0; correction.swapsRedAndBlue && at + 2 < samples.size(); at += 3) {
    std::swap(samples[at], samples[at + 2]);
  }
}

// The pattern of an image of this height after it is flipped.
BayerPattern flippedBayer(BayerPattern bayer, int height) {
  return shiftedBayer(bayer, 0, height - 1);
}

}  // namespace

FrameLayout correctedLayout(const FrameLayout& layout, const FrameCorrection& correction) {
  if (correction.swapsRedAndBlue && layout.format != PixelFormat::Rgb24) {
    throw UsageError("--swap-rb needs frames in rgb24.");
  }
  const bool isRaw = layout.format == PixelFormat::Raw8 || layout.format == PixelFormat::Raw16;
  if (correction.bayer && !isRaw) {
    throw UsageError("--bayer needs frames in raw8 or raw16.");
  }
  FrameLayout corrected = layout;
  corrected.bayer = correction.bayer.value_or(layout.bayer);
  if (correction.region) {
    if (!correction.region->isInside(layout.width, layout.height)) {
      throw UsageError("The region " + regionText(*correction.region) +
                       " is not inside the frame of " +
                       dimensionsText(layout.width, layout.height) + ".");
    }
    corrected = layoutOf(*correction.region, corrected);
  }
  if (correction.flips) {
    corrected.bayer = flippedBayer(corrected.bayer, corrected.height);
  }
  return corrected;
}

std::span<std::uint8_t> correctFrame(std::span<std::uint8_t> frame, const FrameLayout& layout,
                                     const FrameCorrection& correction) {
  int rows = layout.height;
  if (correction.region) {
    frame = cutOut(*correction.region, frame, layout);
    rows = correction.region->height;
  }
  correct(frame, rows, correction);
  return frame;
}

BayerPattern correctImage(Image& image, BayerPattern bayer, const FrameCorrection& correction) {
  if (correction.swapsRedAndBlue && image.channels != 3) {
    throw UsageError("--swap-rb needs frames in RGB.");
  }
  if (correction.bayer && image.channels != 1) {
    throw UsageError("--bayer needs frames of raw samples.");
  }
  correct(std::span(image.samples), image.height, correction);
  const BayerPattern delivered = correction.bayer.value_or(bayer);
  return correction.flips ? flippedBayer(delivered, image.height) : delivered;
}

}  // namespace orvane::host
