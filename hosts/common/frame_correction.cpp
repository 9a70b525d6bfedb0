// Puts right what an SDK delivers otherwise than it says.
#include "common/frame_correction.hpp"

#include <algorithm>
#include <utility>

#include "common/failures.hpp"

namespace orvane::host {

namespace {

Mosaic withRowsExchanged(Mosaic mosaic) {
  switch (mosaic) {
    case Mosaic::Rggb:
      return Mosaic::Gbrg;
    case Mosaic::Gbrg:
      return Mosaic::Rggb;
    case Mosaic::Grbg:
      return Mosaic::Bggr;
    case Mosaic::Bggr:
      return Mosaic::Grbg;
    case Mosaic::None:
      break;
  }
  return Mosaic::None;
}

void flip(std::span<std::uint8_t> frame, std::size_t rows) {
  const auto rowBytes = static_cast<std::ptrdiff_t>(frame.size() / rows);
  auto top = frame.begin();
  auto bottom = frame.end() - rowBytes;
  for (; top < bottom; top += rowBytes, bottom -= rowBytes) {
    std::swap_ranges(top, top + rowBytes, bottom);
  }
}

}  // namespace

FrameLayout correctedLayout(const FrameLayout& layout, const FrameCorrection& correction) {
  if (correction.swapsRedAndBlue && layout.format != PixelFormat::Rgb24) {
    throw UsageError("--swap-rb needs frames in rgb24.");
  }
  FrameLayout corrected = layout;
  if (correction.mosaic) {
    if (layout.format != PixelFormat::Raw8 && layout.format != PixelFormat::Raw16) {
      throw UsageError("--bayer needs frames in raw8 or raw16.");
    }
    corrected.mosaic = *correction.mosaic;
  }
  if (correction.flips && layout.height % 2 == 0) {
    corrected.mosaic = withRowsExchanged(corrected.mosaic);
  }
  return corrected;
}

void correctFrame(std::span<std::uint8_t> frame, const FrameLayout& layout,
                  const FrameCorrection& correction) {
  if (correction.flips) {
    flip(frame, static_cast<std::size_t>(layout.height));
  }
  for (std::size_t pixel = 0; correction.swapsRedAndBlue && pixel + 2 < frame.size(); pixel += 3) {
    std::swap(frame[pixel], frame[pixel + 2]);
  }
}

}  // namespace orvane::host
