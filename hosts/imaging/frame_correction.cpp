// Corrects frames whose layout differs from what the SDK reported.
#include "imaging/frame_correction.hpp"

#include <algorithm>
#include <utility>

#include "system/failures.hpp"

namespace orvane::host {

namespace {

BayerPattern withSwappedRows(BayerPattern bayer) {
  // One bit of the code is the row of the red pixel. None becomes an unknown code, so it stays
  // None.
  return bayerFromCode(static_cast<int>(bayer) ^ 2);
}

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

BayerPattern correctedBayerPattern(BayerPattern bayer, int height,
                                   const FrameCorrection& correction) {
  const BayerPattern delivered = correction.bayer.value_or(bayer);
  return correction.flips && height % 2 == 0 ? withSwappedRows(delivered) : delivered;
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
  corrected.bayer = correctedBayerPattern(layout.bayer, layout.height, correction);
  return corrected;
}

void correctFrame(std::span<std::uint8_t> frame, const FrameLayout& layout,
                  const FrameCorrection& correction) {
  correct(frame, layout.height, correction);
}

BayerPattern correctImage(Image& image, BayerPattern bayer, const FrameCorrection& correction) {
  if (correction.swapsRedAndBlue && image.channels != 3) {
    throw UsageError("--swap-rb needs frames in RGB.");
  }
  if (correction.bayer && image.channels != 1) {
    throw UsageError("--bayer needs frames of raw samples.");
  }
  correct(std::span(image.samples), image.height, correction);
  return correctedBayerPattern(bayer, image.height, correction);
}

}  // namespace orvane::host
