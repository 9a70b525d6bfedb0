// The sensor: renders a frame for given settings. The same settings give the same bytes.
// Also what a frame of a recording needs: the colour of each sample, and the conversion of counts
// to bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/scene.hpp"

namespace orvane::sim {

// With the usual exposure and the middle of the gain range the picture is well exposed. Longer
// exposures than the longest count as the longest.
inline constexpr double normalExposureUs = 20'000;
inline constexpr double longestExposureUs = 1e15;

// Samples are processed in blocks. The length is a multiple of the count of numbers that one hash
// gives.
inline constexpr std::int32_t blockLength = 1020;

// The parts of the colours in the light on a sensor without filters.
inline constexpr float redPart = 0.299F;
inline constexpr float greenPart = 0.587F;
inline constexpr float bluePart = 0.114F;

// Colour filters of the pixels (0, 0), (1, 0), (0, 1), (1, 1).
enum class Mosaic { None, Rggb, Bggr, Grbg, Gbrg };

// The Bayer pattern for the number that ZWO and Player One use. An unknown number gives RGGB.
Mosaic mosaicOfBayerNumber(std::int32_t number);

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

// Everything that a frame's content depends on, except its seed and its number.
struct FrameSettings {
  std::size_t camera = 0;         // each camera has its own noise
  std::int32_t sensorHeight = 0;  // unbinned pixels; gives the scene its scale
  std::int32_t sensorWidth = 0;
  Mosaic mosaic = Mosaic::None;
  std::int32_t bin = 1;
  Region region;
  Layout layout = Layout::Raw8;
  std::int32_t bitDepth = 8;  // of the samples, 8 to 16; `alignment` is their place in two bytes
  Alignment alignment = Alignment::Left;
  bool isUpsideDown = false;  // the last row comes first; `mosaic` is that of the delivered frame
  bool isTurned = false;      // the rows come in the reverse of the SDK's usual order
  bool isUsb3 = true;         // determines the speed of reading the sensor
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

inline bool isColorLayout(Layout layout) {
  return layout == Layout::Bgr24 || layout == Layout::Rgb24;
}

inline std::int32_t samplesPerPixel(Layout layout) {
  return isColorLayout(layout) ? 3 : 1;
}

inline std::int32_t bytesPerSample(Layout layout) {
  return bytesPerPixel(layout) == 2 ? 2 : 1;
}

// Whether the frame has a Bayer pattern.
inline bool isMosaic(const FrameSettings& settings) {
  return settings.mosaic != Mosaic::None &&
         (settings.layout == Layout::Raw8 || settings.layout == Layout::Raw16);
}

// The plane (0 red, 1 green, 2 blue) that a pixel's filter passes.
inline std::size_t filterPlane(Mosaic mosaic, std::int32_t x, std::int32_t y) {
  constexpr std::size_t planes[][2][2] = {
      {{1, 1}, {1, 1}}, {{0, 1}, {1, 2}}, {{2, 1}, {1, 0}}, {{1, 0}, {2, 1}}, {{1, 2}, {0, 1}}};
  return planes[static_cast<std::size_t>(mosaic)][y & 1][x & 1];
}

// The shift to the left that makes samples from the converter's counts; negative: to the right.
std::int32_t sampleShift(const FrameSettings& settings);

// Writes up to a block of counts as samples.
void storeSamples(const std::int32_t* counts, std::int32_t count, Layout layout, std::int32_t shift,
                  std::uint8_t* bytes);

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
  struct Geometry;

  // The geometry that the kept light belongs to.
  struct Key {
    std::uint64_t seed = 0;
    std::size_t camera = 0;
    std::int32_t sensorWidth = 0;
    std::int32_t sensorHeight = 0;
    Mosaic mosaic = Mosaic::None;
    std::int32_t bin = 0;
    Region region;
    Layout layout = Layout::Raw8;
    bool isUpsideDown = false;

    bool operator==(const Key&) const = default;
  };

  void lightRow(std::int32_t row, float* light);
  void prepare(std::uint64_t seed, const FrameSettings& settings);

  Key key_;
  Scene scene_;
  std::vector<float> planes_;  // of one row: red, green, blue, what the optics pass
  std::vector<float> light_;   // all samples of the frame, or one row if the frame is too large
  bool isWholeFrame_ = false;
};

}  // namespace orvane::sim
