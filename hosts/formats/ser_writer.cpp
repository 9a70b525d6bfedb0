// Writes SER files, version 3: a header, frames of one size, and a time stamp for each frame.
#include "formats/ser_writer.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr std::size_t headerSize = 178;
constexpr std::size_t frameCountPosition = 38;
constexpr std::size_t textSize = 40;

// The header's whole numbers and the time stamps are little-endian.
template <class Integer>
void putInteger(std::uint8_t* at, Integer value) {
  for (std::size_t byte = 0; byte < sizeof value; ++byte) {
    at[byte] = static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * byte));
  }
}

void putText(std::uint8_t* at, std::string_view text, std::size_t size) {
  const std::string_view beginning = utf8Beginning(text, size);
  std::copy(beginning.begin(), beginning.end(), at);
}

std::int32_t colorId(const FrameLayout& layout) {
  constexpr std::int32_t rgb = 100;
  // The library counts mosaics as SER does.
  return layout.format == PixelFormat::Rgb24 ? rgb : static_cast<std::int32_t>(layout.mosaic);
}

std::array<std::uint8_t, headerSize> header(const SerDescription& description) {
  std::array<std::uint8_t, headerSize> bytes{};
  const FrameLayout& layout = description.layout;
  putText(&bytes[0], "LUCAM-RECORDER", 14);
  putInteger<std::int32_t>(&bytes[14], 0);  // LuID
  putInteger<std::int32_t>(&bytes[18], colorId(layout));
  putInteger<std::int32_t>(&bytes[22], 0);  // LittleEndian: see the class
  putInteger<std::int32_t>(&bytes[26], layout.width);
  putInteger<std::int32_t>(&bytes[30], layout.height);
  putInteger<std::int32_t>(&bytes[34], layout.format == PixelFormat::Raw16 ? 16 : 8);
  putInteger<std::int32_t>(&bytes[frameCountPosition], 0);
  putText(&bytes[42], description.observer, textSize);
  putText(&bytes[82], description.instrument, textSize);
  putText(&bytes[122], description.telescope, textSize);
  putInteger<std::int64_t>(&bytes[162], description.startLocal);
  putInteger<std::int64_t>(&bytes[170], description.startUtc);
  return bytes;
}

}  // namespace

SerWriter::SerWriter(const std::filesystem::path& path, const SerDescription& description)
    : file_(path), frameBytes_(frameBytes(description.layout)) {
  file_.writeAt(0, header(description));
}

SerWriter::~SerWriter() {
  try {
    close();
  } catch (const std::exception&) {
    // The failure that brought us here has been reported; this one is its consequence.
  }
}

void SerWriter::addFrame(std::span<const std::uint8_t> frame, std::int64_t utcTicks) {
  if (frame.size() != frameBytes_) {
    throw std::runtime_error("A frame of " + std::to_string(frame.size()) + " bytes came where " +
                             std::to_string(frameBytes_) + " were expected.");
  }
  if (frameCount() == maxFrameCount) {
    throw std::runtime_error("A SER file holds no more than 2147483647 frames.");
  }
  file_.writeAt(framesEnd(), frame);
  timeStamps_.push_back(utcTicks);
}

void SerWriter::checkpoint() {
  std::array<std::uint8_t, 4> count{};
  putInteger(count.data(), frameCount());
  file_.writeAt(frameCountPosition, count);
}

void SerWriter::close() {
  if (isOpen_) {
    isOpen_ = false;
    finish();
  }
}

void SerWriter::finish() {
  checkpoint();
  file_.truncate(framesEnd());  // a full disk leaves part of a frame behind
  std::vector<std::uint8_t> trailer(timeStamps_.size() * sizeof(std::int64_t));
  for (std::size_t frame = 0; frame < timeStamps_.size(); ++frame) {
    putInteger(&trailer[frame * sizeof(std::int64_t)], timeStamps_[frame]);
  }
  try {
    file_.writeAt(framesEnd(), trailer);
  } catch (const std::exception&) {
    file_.truncate(framesEnd());
    throw;
  }
  file_.close();
}

std::int64_t SerWriter::framesEnd() const {
  return static_cast<std::int64_t>(headerSize + timeStamps_.size() * frameBytes_);
}

}  // namespace orvane::host
