// Pixels as a screen takes them, from an image: brightened, in colour or red, and to size.
#pragma once

#include <cstdint>
#include <vector>

#include "imaging/image.hpp"
#include "imaging/stretch.hpp"

namespace orvane::host {

/// Pixels row by row from the top, each 0x00RRGGBB.
struct ScreenPixels {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;
};

/// Colours on the screen as the image has them, or all brightness as red, for eyes used to the
/// dark.
enum class ScreenTint { Natural, Red };

/// What every sample value becomes on the screen, for each channel.
class ScreenCurves {
 public:
  /// The samples' upper 8 bits, shown as they are.
  ScreenCurves();

  /// One stretch for each channel of the image.
  explicit ScreenCurves(const std::vector<Stretch>& stretches);

  /// Brightens the image into pixels, whose memory is used again.
  void apply(const Image& image, ScreenTint tint, ScreenPixels& screen) const;

 private:
  std::vector<std::vector<std::uint8_t>> curves_;  // one, or three; 65536 values each
};

/// Where scaled pixels go: a part of a larger picture.
struct ScreenTarget {
  std::uint32_t* pixels = nullptr;  ///< of the part's top left corner
  std::ptrdiff_t pitch = 0;         ///< pixels from one row to the next
  int width = 0;
  int height = 0;
};

/// Draws the pixels over the whole target, smoothly enlarged or reduced where its size differs.
void drawScaled(const ScreenPixels& screen, const ScreenTarget& target);

}  // namespace orvane::host
