#include "core/samples.hpp"

#include <array>
#include <bit>
#include <cstring>

namespace orvane::sim {
namespace {

static_assert(std::endian::native == std::endian::little, "samples are stored low byte first");

void store8(const std::int32_t* counts, std::int32_t count, std::int32_t shiftRight,
            std::uint8_t* bytes) {
  for (std::int32_t i = 0; i < count; ++i) {
    bytes[i] = static_cast<std::uint8_t>(counts[i] >> shiftRight);
  }
}

void store16(const std::int32_t* counts, std::int32_t count, std::int32_t shiftLeft,
             std::uint8_t* bytes) {
  std::array<std::uint16_t, blockLength> samples;
  for (std::int32_t i = 0; i < count; ++i) {
    samples[static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(counts[i] << shiftLeft);
  }
  std::memcpy(bytes, samples.data(), static_cast<std::size_t>(count) * sizeof(std::uint16_t));
}

}  // namespace

std::int32_t sampleShift(const FrameSettings& settings) {
  const std::int32_t width = 8 * bytesPerSample(settings.layout);
  const bool isRight = width == 16 && settings.alignment == Alignment::Right;
  return isRight ? 0 : width - settings.bitDepth;
}

void storeSamples(const std::int32_t* counts, std::int32_t count, Layout layout, std::int32_t shift,
                  std::uint8_t* bytes) {
  if (bytesPerSample(layout) == 2) {
    store16(counts, count, shift, bytes);
  } else {
    store8(counts, count, -shift, bytes);
  }
}

}  // namespace orvane::sim
