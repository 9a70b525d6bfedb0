// Turns images into screen pixels: stretched, in colour or red, scaled.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/image.hpp"
#include "imaging/stretch.hpp"
#include "live_view/picture_levels.hpp"

namespace orvane::host {

/// Pixels row by row from the top, each 0x00RRGGBB.
struct ScreenPixels {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;
};

/// The image's own colours, or its brightness in red, which keeps eyes adapted to the dark.
enum class ScreenTint { Natural, Red };

/// For each channel, the screen's value of every sample value. Values between two of the screen's
/// are dithered: the pixels get the lower or the upper one in a fixed pattern, so that even slopes
/// have no bands.
class ScreenCurves {
 public:
  /// One stretch for each channel of the image, or one for all. Without any: the samples' upper 8
  /// bits.
  explicit ScreenCurves(const std::vector<Stretch>& stretches = {Stretch{}},
                        const PictureLevels& levels = {});

  /// Stretches the image into pixels, whose memory is used again.
  void apply(const Image& image, ScreenTint tint, ScreenPixels& screen) const;

 private:
  // One, or three; 65536 values each, in 256ths of the screen's.
  std::vector<std::vector<std::uint16_t>> curves_;
};

/// The target of scaled pixels: a part of a larger picture.
struct ScreenTarget {
  std::uint32_t* pixels = nullptr;  ///< of the part's top left corner
  std::ptrdiff_t pitch = 0;         ///< pixels from one row to the next
  int width = 0;
  int height = 0;

  std::span<std::uint32_t> row(int y) const {
    return {pixels + y * pitch, static_cast<std::size_t>(width)};
  }
};

/// Fills the target with the pixels, scaled with bilinear interpolation.
void drawScaled(const ScreenPixels& screen, const ScreenTarget& target);

}  // namespace orvane::host
