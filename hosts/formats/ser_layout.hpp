// The layout of SER files, version 3: a header, frames of one size, a time stamp for each frame.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace orvane::ser {

constexpr std::string_view fileId = "LUCAM-RECORDER";
constexpr std::size_t headerSize = 178;
constexpr std::size_t textSize = 40;
constexpr std::size_t timeStampSize = 8;  // ticks of 100 ns since the start of the year 1

/// Offsets of the header's fields: texts of 40 bytes, start times of 8, other numbers of 4.
namespace offset {
constexpr std::size_t luId = 14;
constexpr std::size_t colorId = 18;
constexpr std::size_t littleEndian = 22;
constexpr std::size_t width = 26;
constexpr std::size_t height = 30;
constexpr std::size_t depth = 34;
constexpr std::size_t frameCount = 38;
constexpr std::size_t observer = 42;
constexpr std::size_t instrument = 82;
constexpr std::size_t telescope = 122;
constexpr std::size_t startLocal = 162;
constexpr std::size_t startUtc = 170;
}  // namespace offset

/// Values of the field ColorID. Those of Bayer patterns are the same as in our library.
namespace color {
constexpr std::int32_t mono = 0;
constexpr std::int32_t rggb = 8;
constexpr std::int32_t grbg = 9;
constexpr std::int32_t gbrg = 10;
constexpr std::int32_t bggr = 11;
constexpr std::int32_t rgb = 100;
constexpr std::int32_t bgr = 101;
}  // namespace color

/// Values of the field LittleEndian. Existing programs use them contrary to the field's name.
namespace byteOrder {
constexpr std::int32_t little = 0;
}  // namespace byteOrder

/// Numbers in the header and time stamps are little-endian.
template <class Integer>
Integer integerAt(std::span<const std::uint8_t> bytes, std::size_t at) {
  std::uint64_t value = 0;
  for (std::size_t byte = sizeof(Integer); byte-- > 0;) {
    value = value << 8 | bytes[at + byte];
  }
  return static_cast<Integer>(value);
}

template <class Integer>
void putInteger(std::span<std::uint8_t> bytes, std::size_t at, Integer value) {
  for (std::size_t byte = 0; byte < sizeof value; ++byte) {
    bytes[at + byte] = static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * byte));
  }
}

constexpr std::size_t sampleBytes(std::int32_t depth) {
  return depth > 8 ? 2 : 1;
}

constexpr std::uint32_t largestSample(std::int32_t depth) {
  return (1U << static_cast<std::uint32_t>(depth)) - 1;
}

/// A sample of a frame, clamped to the depth.
inline std::uint32_t sampleAt(std::span<const std::uint8_t> frame, std::size_t index,
                              std::int32_t depth, bool isBigEndian) {
  const std::size_t low = isBigEndian ? 1 : 0;
  const std::uint32_t value =
      depth > 8 ? frame[2 * index + low] | std::uint32_t{frame[2 * index + 1 - low]} << 8
                : frame[index];
  return std::min(value, largestSample(depth));
}

}  // namespace orvane::ser
