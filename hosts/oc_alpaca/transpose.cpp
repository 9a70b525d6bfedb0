// Cuts a region out of a frame and transposes it.
#include "oc_alpaca/transpose.hpp"

#include <emmintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

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
  for (std::size_t x = 0; x < width; ++x) {
    for (std::size_t y = 0; y < height; ++y) {
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

// Some columns of a tile.
template <std::size_t pixelBytes>
void transposeStrip(const Place& place, std::size_t width, std::size_t height) {
  constexpr std::size_t side = Square<pixelBytes>::side;
  for (std::size_t y = 0; y < height; y += side) {
    for (std::size_t row = y; row < y + side; ++row) {
      // The processor does not foresee reading from row to row. Behind the frame this does nothing.
      constexpr std::size_t rowsAhead = 16;
      _mm_prefetch(reinterpret_cast<const char*>(place.from) + (row + rowsAhead) * place.fromBytes,
                   _MM_HINT_T0);
    }
    for (std::size_t x = 0; x < width; x += side) {
      Square<pixelBytes>::transpose(moved<pixelBytes>(place, x, y));
    }
  }
}

template <std::size_t pixelBytes>
void transposeTile(const Place& place, std::size_t width, std::size_t height) {
  constexpr std::size_t side = Square<pixelBytes>::side;
  const std::size_t evenWidth = width / side * side;
  const std::size_t evenHeight = height / side * side;
  constexpr std::size_t cacheLine = 64;
  constexpr std::size_t stripWidth = cacheLine / pixelBytes / side * side;
  for (std::size_t x = 0; x < evenWidth; x += stripWidth) {
    transposeStrip<pixelBytes>(moved<pixelBytes>(place, x, 0), std::min(stripWidth, evenWidth - x),
                               evenHeight);
  }
  transposeSingly<pixelBytes>(moved<pixelBytes>(place, evenWidth, 0), width - evenWidth, height);
  transposeSingly<pixelBytes>(moved<pixelBytes>(place, 0, evenHeight), evenWidth,
                              height - evenHeight);
}

template <std::size_t pixelBytes>
void transposePixels(const Place& place, std::size_t width, std::size_t height) {
  // Every row that is read and every column that is written is in another page of memory, and
  // finding a page takes longer than reading a line of the cache. So a tile takes some lines of
  // each.
  constexpr std::size_t tileBytes = 512;
  constexpr std::size_t side = tileBytes / pixelBytes / 16 * 16;
  for (std::size_t x = 0; x < width; x += side) {
    for (std::size_t y = 0; y < height; y += side) {
      transposeTile<pixelBytes>(moved<pixelBytes>(place, x, y), std::min(side, width - x),
                                std::min(side, height - y));
    }
  }
}

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
    transposePixels<1>(place, width, height);
  } else if (pixelBytes == 2) {
    transposePixels<2>(place, width, height);
  } else {
    transposePixels<3>(place, width, height);
  }
}

}  // namespace orvane::host
