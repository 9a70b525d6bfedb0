// The sensor: renders a frame for given settings. The same settings give the same bytes. The
// colours of the samples and the conversion of counts to bytes serve frames of recordings, too.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/scene.hpp"

namespace orvane::sim {

// The exposure that gives a well exposed picture in the middle of the gain range, and the longest
// exposure. A longer one counts as this.
inline constexpr double normalExposureUs = 20'000;
inline constexpr double longestExposureUs = 1e15;

// Samples are processed in blocks. One hash gives five random numbers, so the length is a multiple
// of five.
inline constexpr std::int32_t blockLength = 1020;

// The weights of the colours on a sensor without filters.
inline constexpr float redPart = 0.299F;
inline constexpr float greenPart = 0.587F;
inline constexpr float bluePart = 0.114F;

// Colour filters of the pixels (0, 0), (1, 0), (0, 1), (1, 1).
enum class BayerPattern { None, Rggb, Bggr, Grbg, Gbrg };

enum class Layout {
  Raw8,   // one byte per pixel, with the Bayer pattern
  Raw16,  // two bytes per pixel, low byte first, with the Bayer pattern
  Luma8,  // one byte per pixel, the brightness of all colours
  Bgr24,  // three bytes per pixel: blue, green, red
  Rgb24,  // three bytes per pixel: red, green, blue
};

// The position of a sample of fewer than 16 bits in its two bytes.
enum class Alignment { Left, Right };

// In pixels after binning, from the sensor's top left corner.
struct Region {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;

  bool operator==(const Region&) const = default;
};

// What the light on each sample of a frame depends on, besides the seed.
struct FrameGeometry {
  std::size_t camera = 0;         // each camera has its own hot pixels and noise
  std::int32_t sensorHeight = 0;  // unbinned pixels; gives the scene its scale
  std::int32_t sensorWidth = 0;
  BayerPattern bayerPattern = BayerPattern::None;  // of the frame as it is delivered
  std::int32_t bin = 1;
  Region region;
  Layout layout = Layout::Raw8;
  bool isUpsideDown = false;  // the last row comes first
  bool isMirrored = false;    // the last column comes first

  bool operator==(const FrameGeometry&) const = default;
};

// Everything that a frame's content depends on, except its seed and its number.
struct FrameSettings : FrameGeometry {
  std::int32_t bitDepth = 8;  // of the samples, 8 to 16; `alignment` is their place in two bytes
  Alignment alignment = Alignment::Left;
  bool isTurned = false;  // the rows are in the reverse of the SDK's default order
  bool isUsb3 = true;     // determines the speed of reading the sensor
  double exposureUs = 0;
  double gain = 1;      // brightness relative to the middle of the camera's gain range
  double pedestal = 0;  // the black level, as a part of full scale
};

// Bytes of one pixel: 1, 2 or 3.
std::int32_t bytesPerPixel(Layout layout);

// Bytes of a frame whose rows follow each other without a gap.
std::int64_t frameBytes(const FrameSettings& settings);

// Microseconds from one frame to the next: the longer of the exposure and the time that the
// connection takes to transfer a frame, and at least a millisecond.
std::int64_t framePeriodUs(const FrameSettings& settings);

inline std::int32_t samplesPerPixel(Layout layout) {
  return bytesPerPixel(layout) == 3 ? 3 : 1;
}

inline std::int32_t bytesPerSample(Layout layout) {
  return bytesPerPixel(layout) == 2 ? 2 : 1;
}

// Whether each sample has one colour of the Bayer pattern.
inline bool isFiltered(const FrameGeometry& frame) {
  return frame.bayerPattern != BayerPattern::None &&
         (frame.layout == Layout::Raw8 || frame.layout == Layout::Raw16);
}

// The plane (0 red, 1 green, 2 blue) that a pixel's filter passes.
inline std::size_t filterPlane(BayerPattern pattern, std::int32_t x, std::int32_t y) {
  constexpr std::size_t planes[][2][2] = {
      {{1, 1}, {1, 1}}, {{0, 1}, {1, 2}}, {{2, 1}, {1, 0}}, {{1, 0}, {2, 1}}, {{1, 2}, {0, 1}}};
  return planes[static_cast<std::size_t>(pattern)][y & 1][x & 1];
}

// Writes up to a block of counts as samples.
void storeSamples(const FrameSettings& settings, const std::int32_t* counts, std::int32_t count,
                  std::uint8_t* bytes);

// Writes a row block by block. `expose(start, count, counts)` computes a block's counts.
template <class Expose>
void storeRow(const FrameSettings& settings, std::uint8_t* bytes, const Expose& expose) {
  std::array<std::int32_t, blockLength> counts;
  const std::int32_t samples = settings.region.width * samplesPerPixel(settings.layout);
  for (std::int32_t start = 0; start < samples; start += blockLength) {
    const std::int32_t count = std::min(samples - start, blockLength);
    expose(start, count, counts.data());
    storeSamples(settings, counts.data(), count,
                 bytes + std::ptrdiff_t{start} * bytesPerSample(settings.layout));
  }
}

// Writes a frame of a sensor in the dark, without noise: every sample is the offset. This costs
// much less time than a picture.
void renderDark(const FrameSettings& settings, std::uint8_t* buffer, std::int64_t rowPitch);

// Renders frames. The light on each pixel does not change from frame to frame. It is computed once
// and kept until a frame of another geometry is rendered.
class Renderer {
 public:
  // Writes a frame. Its rows begin `rowPitch` bytes apart, at least a row's length.
  void render(std::uint64_t seed, const FrameSettings& settings, std::int64_t frameNumber,
              std::uint8_t* buffer, std::int64_t rowPitch);

  // Frees the kept light.
  void forget();

 private:
  void lightRow(std::int32_t row, float* light);
  void prepare(std::uint64_t seed, const FrameSettings& settings);

  std::uint64_t seed_ = 0;
  FrameGeometry geometry_;  // of the frame whose light is kept
  Scene scene_;
  std::vector<Light> lights_;  // of one row of the scene
  std::vector<float> light_;   // all samples of the frame, or one row if the frame is too large
  bool isWholeFrame_ = false;
};

}  // namespace orvane::sim
