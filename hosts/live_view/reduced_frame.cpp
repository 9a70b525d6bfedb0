// Small images of large frames, made in one step.
#include "live_view/reduced_frame.hpp"

#include <algorithm>
#include <utility>

#include "imaging/image.hpp"

namespace orvane::host {

namespace {

// Sums of this many samples in each direction still fit their type.
constexpr int largestFactor = 256;

// Samples of 8 bits, scaled to 16.
struct ByteSamples {
  const std::uint8_t* bytes;

  static constexpr float scale = 257;
  std::uint32_t operator()(std::size_t index) const { return bytes[index]; }
};

struct WordSamples {
  const std::uint8_t* bytes;

  static constexpr float scale = 1;
  std::uint32_t operator()(std::size_t index) const {
    return bytes[2 * index] | std::uint32_t{bytes[2 * index + 1]} << 8;
  }
};

// One square of a frame: where its first pixel is, and how long the frame's rows are.
struct Square {
  std::size_t first;
  std::size_t rowLength;  // samples
  int side;
};

// Much faster than the standard library's functions, which depend on the rounding mode.
std::uint16_t rounded(float value) {
  return static_cast<std::uint16_t>((static_cast<std::uint32_t>(2 * value) + 1) / 2);
}

template <class Samples>
struct BayerSquares {
  Samples samples;
  std::size_t redColumn;
  std::size_t redRow;

  void operator()(const Square& square, std::uint16_t* pixel) const {
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;
    const auto side = static_cast<std::size_t>(square.side);
    for (std::size_t y = 0; y < side; y += 2) {
      const std::size_t row = square.first + y * square.rowLength;
      const std::size_t withRed = row + redRow * square.rowLength;
      const std::size_t withBlue = row + (1 - redRow) * square.rowLength;
      for (std::size_t x = 0; x < side; x += 2) {
        red += samples(withRed + x + redColumn);
        green += samples(withRed + x + 1 - redColumn) + samples(withBlue + x + redColumn);
        blue += samples(withBlue + x + 1 - redColumn);
      }
    }
    const float part = Samples::scale * 4 / static_cast<float>(square.side * square.side);
    pixel[0] = rounded(static_cast<float>(red) * part);
    pixel[1] = rounded(static_cast<float>(green) * part / 2);
    pixel[2] = rounded(static_cast<float>(blue) * part);
  }
};

template <class Samples, std::size_t channels>
struct PlainSquares {
  Samples samples;

  void operator()(const Square& square, std::uint16_t* pixel) const {
    const auto side = static_cast<std::size_t>(square.side);
    const float part = Samples::scale / static_cast<float>(square.side * square.side);
    for (std::size_t channel = 0; channel < channels; ++channel) {
      std::uint32_t sum = 0;
      for (std::size_t y = 0; y < side; ++y) {
        const std::size_t row = square.first + y * square.rowLength + channel;
        for (std::size_t x = 0; x < side; ++x) {
          sum += samples(row + x * channels);
        }
      }
      pixel[channel] = rounded(static_cast<float>(sum) * part);
    }
  }
};

template <class Squares>
void reduceSquares(const Squares& squares, const FrameLayout& layout, int factor,
                   std::size_t samplesPerPixel, Image& reduced) {
  const auto rowLength = static_cast<std::size_t>(layout.width) * samplesPerPixel;
  const auto step = static_cast<std::size_t>(factor) * samplesPerPixel;
  std::uint16_t* pixel = reduced.samples.data();
  for (int y = 0; y < reduced.height; ++y) {
    std::size_t first = static_cast<std::size_t>(y * factor) * rowLength;
    for (int x = 0; x < reduced.width; ++x, first += step, pixel += reduced.channels) {
      squares(Square{first, rowLength, factor}, pixel);
    }
  }
}

template <class Samples>
void reduceRaw(Samples samples, const FrameLayout& layout, int factor, Image& reduced) {
  if (layout.bayer == BayerPattern::None) {
    reduceSquares(PlainSquares<Samples, 1>{samples}, layout, factor, 1, reduced);
    return;
  }
  const RedPixel red = redPixelOf(layout.bayer);
  reduceSquares(BayerSquares<Samples>{samples, static_cast<std::size_t>(red.column),
                                      static_cast<std::size_t>(red.row)},
                layout, factor, 1, reduced);
}

// Start and length, clamped to the frame's size.
std::pair<int, int> clamped(int start, int length, int size, bool isBayer) {
  const int shorter = std::min(length, size);
  const int inside = std::clamp(start, 0, size - shorter);
  return {isBayer ? inside / 2 * 2 : inside, shorter};
}

}  // namespace

int reductionFactor(const FrameLayout& layout, int width, int height) {
  const int across = layout.width / std::max(width, 1);
  const int down = layout.height / std::max(height, 1);
  // The image keeps its shape, so the direction that is reduced more decides how much is shown.
  const int factor = std::clamp(std::max(across, down), 1, largestFactor);
  return layout.bayer == BayerPattern::None ? factor : std::max(2, factor / 2 * 2);
}

void reduceFrame(std::span<const std::uint8_t> frame, const FrameLayout& layout, int factor,
                 Image& reduced) {
  const bool isColour = layout.format == PixelFormat::Rgb24 || layout.bayer != BayerPattern::None;
  reduced.width = layout.width / factor;
  reduced.height = layout.height / factor;
  reduced.channels = isColour ? 3 : 1;
  reduced.samples.resize(pixelCount(reduced.width, reduced.height) *
                         static_cast<std::size_t>(reduced.channels));
  if (layout.format == PixelFormat::Rgb24) {
    reduceSquares(PlainSquares<ByteSamples, 3>{{frame.data()}}, layout, factor, 3, reduced);
  } else if (layout.format == PixelFormat::Raw16) {
    reduceRaw(WordSamples{frame.data()}, layout, factor, reduced);
  } else {
    reduceRaw(ByteSamples{frame.data()}, layout, factor, reduced);
  }
}

PixelRect cutFrame(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                   const PixelRect& wanted, Image& part) {
  const bool isBayer = layout.bayer != BayerPattern::None;
  const auto [left, width] = clamped(wanted.left, wanted.width, layout.width, isBayer);
  const auto [top, height] = clamped(wanted.top, wanted.height, layout.height, isBayer);
  FrameLayout cut = layout;
  cut.width = width;
  cut.height = height;
  const std::size_t pixelBytes = frameBytes({1, 1, layout.format, BayerPattern::None});
  const std::size_t rowBytes = static_cast<std::size_t>(width) * pixelBytes;
  std::vector<std::uint8_t> bytes;
  bytes.reserve(frameBytes(cut));
  for (int y = top; y < top + height; ++y) {
    const auto row = frame.subspan(pixelIndex(layout.width, left, y) * pixelBytes, rowBytes);
    bytes.insert(bytes.end(), row.begin(), row.end());
  }
  part = imageFromFrame(bytes, cut);
  if (isBayer) {
    part = debayer(part, layout.bayer);
  }
  return {left, top, width, height};
}

}  // namespace orvane::host
