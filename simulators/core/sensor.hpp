// The sensor: what a frame looks like for given settings, down to the byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/scene.hpp"

namespace orvane::sim {

// Colour filters of the pixels (0, 0), (1, 0), (0, 1), (1, 1).
enum class Mosaic { None, Rggb, Bggr, Grbg, Gbrg };

// The Bayer number of ZWO and Player One. A number of neither is taken for RGGB.
Mosaic mosaicOfBayerNumber(std::int32_t number);

enum class Layout {
  Raw8,   // one byte a pixel, the mosaic as it is
  Raw16,  // two bytes a pixel, low byte first, the mosaic as it is
  Luma8,  // one byte a pixel, the brightness of all colours
  Bgr24,  // three bytes a pixel: blue, green, red
  Rgb24,  // three bytes a pixel: red, green, blue
};

// Where a sample of fewer than 16 bits stands in its two bytes.
enum class Alignment { Left, Right };

// In pixels after binning, from the sensor's top left corner.
struct Region {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;

  bool operator==(const Region&) const = default;
};

// Everything that a frame's content depends on besides its seed and its number.
struct FrameSettings {
  std::size_t camera = 0;         // each camera has a noise of its own
  std::int32_t sensorHeight = 0;  // unbinned pixels; gives the scene its scale
  std::int32_t sensorWidth = 0;
  Mosaic mosaic = Mosaic::None;
  std::int32_t bin = 1;
  Region region;
  Layout layout = Layout::Raw8;
  std::int32_t bitDepth = 8;  // of the samples, 8 to 16; two bytes hold it as `alignment` says
  Alignment alignment = Alignment::Left;
  bool isUpsideDown = false;  // the last row comes first; the mosaic is the one delivered
  bool isTurned = false;      // the rows come in the other order than the SDK's usual one
  bool isUsb3 = true;         // sets the speed of reading the sensor
  double exposureUs = 0;
  double gain = 1;      // brightness against the middle of the camera's gain range
  double pedestal = 0;  // the black level, as a part of the full scale
};

// Bytes of one pixel: 1, 2 or 3.
std::int32_t bytesPerPixel(Layout layout);

// Bytes of a frame whose rows follow each other without a gap.
std::int64_t frameBytes(const FrameSettings& settings);

// Microseconds from one frame to the next: the exposure or, when that is longer, the time that the
// connection takes to carry a frame; never less than a millisecond.
std::int64_t framePeriodUs(const FrameSettings& settings);

// Renders frames. What does not change from frame to frame, the light that falls on each pixel, is
// worked out once and kept until a frame of another geometry is asked for.
class Renderer {
 public:
  // Writes a frame. Its rows begin `rowPitch` bytes apart, at least a row's length.
  void render(std::uint64_t seed, const FrameSettings& settings, std::int64_t frameNumber,
              std::uint8_t* buffer, std::int64_t rowPitch);

  // Releases what is kept.
  void forget();

 private:
  struct Geometry;

  // What the kept light was worked out for.
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
  std::vector<float> planes_;  // of one row: red, green, blue, what the optics let through
  std::vector<float> light_;   // all samples of the frame, or of one row when there is no room
  bool isWholeFrame_ = false;
};

}  // namespace orvane::sim
