// Cuts a region out of a frame and transposes it.
#include "oc_alpaca/transpose.hpp"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace orvane::host {

namespace {

// Rows of pixels that are transposed. Consecutive rows are these bytes apart, in what is read and
// in what is written.
struct Place {
  const std::uint8_t* from;
  std::size_t fromBytes;
  std::uint8_t* to;
  std::size_t toBytes;
};

template <std::size_t pixelBytes>
Place moved(const Place& place, std::size_t x, std::size_t y) {
  return {place.from + y * place.fromBytes + x * pixelBytes, place.fromBytes,
          place.to + x * place.toBytes + y * pixelBytes, place.toBytes};
}

template <std::size_t pixelBytes>
void transposeSingly(const Place& place, std::size_t width, std::size_t height) {
  for (std::size_t y = 0; y < height; ++y) {
    for (std::size_t x = 0; x < width; ++x) {
      const Place pixel = moved<pixelBytes>(place, x, y);
      std::memcpy(pixel.to, pixel.from, pixelBytes);
    }
  }
}

__m128i load(const std::uint8_t* bytes) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

void store(std::uint8_t* bytes, __m128i value) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), value);
}

// Squares of pixels whose rows fill a register, for the sizes of a pixel. Compilers do not
// vectorise the plain loops, which take about three times as long.
template <std::size_t pixelBytes>
struct Square {
  static constexpr std::size_t side = 1;
  static void transpose(const Place& place) { transposeSingly<pixelBytes>(place, 1, 1); }
};

// Interleaving row n with row n + count / 2, log2(count) times, transposes a square.
template <std::size_t count, class Low, class High>
void transposeRows(const Place& place, Low low, High high) {
  __m128i rows[count];
  __m128i next[count];
  for (std::size_t row = 0; row < count; ++row) {
    rows[row] = load(place.from + row * place.fromBytes);
  }
  for (std::size_t step = 1; step < count; step *= 2) {
    for (std::size_t row = 0; row < count / 2; ++row) {
      next[2 * row] = low(rows[row], rows[row + count / 2]);
      next[2 * row + 1] = high(rows[row], rows[row + count / 2]);
    }
    std::copy(next, next + count, rows);
  }
  for (std::size_t row = 0; row < count; ++row) {
    store(place.to + row * place.toBytes, rows[row]);
  }
}

template <>
struct Square<1> {
  static constexpr std::size_t side = 16;
  static void transpose(const Place& place) {
    transposeRows<side>(
        place, [](__m128i a, __m128i b) { return _mm_unpacklo_epi8(a, b); },
        [](__m128i a, __m128i b) { return _mm_unpackhi_epi8(a, b); });
  }
};

template <>
struct Square<2> {
  static constexpr std::size_t side = 8;
  static void transpose(const Place& place) {
    transposeRows<side>(
        place, [](__m128i a, __m128i b) { return _mm_unpacklo_epi16(a, b); },
        [](__m128i a, __m128i b) { return _mm_unpackhi_epi16(a, b); });
  }
};

// Rows and columns that make no whole square are transposed pixel by pixel.
template <std::size_t pixelBytes>
void transposeTile(const Place& place, std::size_t width, std::size_t height) {
  constexpr std::size_t side = Square<pixelBytes>::side;
  const std::size_t evenWidth = width / side * side;
  const std::size_t evenHeight = height / side * side;
  for (std::size_t y = 0; y < evenHeight; y += side) {
    for (std::size_t x = 0; x < evenWidth; x += side) {
      Square<pixelBytes>::transpose(moved<pixelBytes>(place, x, y));
    }
  }
  transposeSingly<pixelBytes>(moved<pixelBytes>(place, evenWidth, 0), width - evenWidth, height);
  transposeSingly<pixelBytes>(moved<pixelBytes>(place, 0, evenHeight), evenWidth,
                              height - evenHeight);
}

constexpr std::size_t cacheLine = 64;

// Copies past the cache. A line that is written as a whole need not be read before.
void streamBytes(const std::uint8_t* from, std::uint8_t* to, std::size_t count) {
  const std::size_t beforeLine =
      (cacheLine - reinterpret_cast<std::uintptr_t>(to) % cacheLine) % cacheLine;
  const std::size_t head = std::min(beforeLine, count);
  const std::size_t lines = (count - head) / cacheLine * cacheLine;
  std::memcpy(to, from, head);
  for (std::size_t at = head; at < head + lines; at += cacheLine) {
    auto* const line = reinterpret_cast<__m128i*>(to + at);
    const __m128i first = load(from + at);
    const __m128i second = load(from + at + sizeof(__m128i));
    const __m128i third = load(from + at + 2 * sizeof(__m128i));
    const __m128i fourth = load(from + at + 3 * sizeof(__m128i));
    _mm_stream_si128(line, first);
    _mm_stream_si128(line + 1, second);
    _mm_stream_si128(line + 2, third);
    _mm_stream_si128(line + 3, fourth);
  }
  std::memcpy(to + head + lines, from + head + lines, count - head - lines);
}

// A frame is transposed in tiles, one below the other: into a buffer, and from there column by
// column to its place. The tile is narrow, so that reading it takes a line of the cache from each
// row, and high, so that writing it fills many lines in a row. No processor foresees reading a line
// here and a line there. So the next tile is prefetched while one is written. That is what makes
// it fast: the memory then reads and writes at the same time.
template <std::size_t pixelBytes>
class Tiles {
 public:
  Tiles(const Place& place, std::size_t width, std::size_t height)
      : place_(place), width_(width), height_(height) {
    // All tiles are of about the same height.
    const std::size_t tilesBelow = (height + mostRows - 1) / mostRows;
    rows_ = ((height + tilesBelow - 1) / tilesBelow + rowStep - 1) / rowStep * rowStep;
  }

  void transpose() {
    for (Tile tile = tileAt(0, 0); tile.width > 0;) {
      const Tile next = tileAfter(tile);
      transposeTile<pixelBytes>(
          {tile.place.from, tile.place.fromBytes, buffer_.data(), columnBytes}, tile.width,
          tile.height);
      write(tile, next);
      tile = next;
    }
    _mm_sfence();  // for other threads and processes
  }

 private:
  static constexpr std::size_t side = Square<pixelBytes>::side;
  static constexpr std::size_t columns = cacheLine / pixelBytes / side * side;
  // The buffer, and what is prefetched, must fit into the second cache.
  static constexpr std::size_t rowStep = 32;
  static constexpr std::size_t mostRows = 45 * rowStep;
  // Not whole lines: the columns are then spread over the sets of the cache.
  static constexpr std::size_t columnBytes = mostRows * pixelBytes + cacheLine / 2;

  // The part of the frame at a position; of no width behind its end.
  struct Tile {
    std::size_t x;
    std::size_t y;
    std::size_t width;
    std::size_t height;
    Place place;
  };

  Tile tileAt(std::size_t x, std::size_t y) const {
    const std::size_t left = std::min(x, width_);
    return {x, y, std::min(columns, width_ - left), std::min(rows_, height_ - y),
            moved<pixelBytes>(place_, left, y)};
  }

  Tile tileAfter(const Tile& tile) const {
    const std::size_t below = tile.y + rows_;
    return below < height_ ? tileAt(tile.x, below) : tileAt(tile.x + columns, 0);
  }

  void write(const Tile& tile, const Tile& next) const {
    std::size_t row = 0;
    for (std::size_t x = 0; x < tile.width; ++x) {
      const std::size_t until = next.width > 0 ? next.height * (x + 1) / tile.width : 0;
      for (; row < until; ++row) {
        // Into the second cache: the first has no room for it.
        const auto* const bytes =
            reinterpret_cast<const char*>(next.place.from + row * next.place.fromBytes);
        _mm_prefetch(bytes, _MM_HINT_T1);
        _mm_prefetch(bytes + next.width * pixelBytes - 1, _MM_HINT_T1);
      }
      streamBytes(buffer_.data() + x * columnBytes, tile.place.to + x * tile.place.toBytes,
                  tile.height * pixelBytes);
    }
  }

  const Place place_;
  const std::size_t width_;
  const std::size_t height_;
  std::size_t rows_;
  std::vector<std::uint8_t> buffer_ = std::vector<std::uint8_t>(columns * columnBytes);
};

}  // namespace

void transposeRegion(std::span<const std::uint8_t> frame, const FrameLayout& layout,
                     const Region& region, std::span<std::uint8_t> transposed) {
  const std::size_t pixelBytes = frameBytes({1, 1, layout.format});
  const auto width = static_cast<std::size_t>(region.width);
  const auto height = static_cast<std::size_t>(region.height);
  const Place place{frame.data() + pixelIndex(layout.width, region.left, region.top) * pixelBytes,
                    static_cast<std::size_t>(layout.width) * pixelBytes, transposed.data(),
                    height * pixelBytes};
  if (pixelBytes == 1) {
    Tiles<1>(place, width, height).transpose();
  } else if (pixelBytes == 2) {
    Tiles<2>(place, width, height).transpose();
  } else {
    Tiles<3>(place, width, height).transpose();
  }
}

}  // namespace orvane::host
