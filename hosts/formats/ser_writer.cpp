// Writes SER files, version 3: a header, frames of one size, and a time stamp for each frame.
#include "formats/ser_writer.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

#include "formats/ser_layout.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using Header = std::array<std::uint8_t, ser::headerSize>;

void putText(Header& header, std::size_t at, std::string_view text) {
  const std::string_view beginning = utf8Beginning(text, ser::textSize);
  std::copy(beginning.begin(), beginning.end(), header.begin() + static_cast<std::ptrdiff_t>(at));
}

std::int32_t colorId(const FrameLayout& layout) {
  static_assert(static_cast<int>(BayerPattern::Rggb) == ser::color::rggb &&
                static_cast<int>(BayerPattern::Grbg) == ser::color::grbg &&
                static_cast<int>(BayerPattern::Gbrg) == ser::color::gbrg &&
                static_cast<int>(BayerPattern::Bggr) == ser::color::bggr);
  return layout.format == PixelFormat::Rgb24 ? ser::color::rgb
                                             : static_cast<std::int32_t>(layout.bayer);
}

// LuID and the number of frames stay 0.
Header headerOf(const SerDescription& description) {
  namespace offset = ser::offset;
  Header header{};
  const FrameLayout& layout = description.layout;
  std::copy(ser::fileId.begin(), ser::fileId.end(), header.begin());
  ser::putInteger(header, offset::colorId, colorId(layout));
  ser::putInteger(header, offset::littleEndian, ser::byteOrder::little);
  ser::putInteger(header, offset::width, layout.width);
  ser::putInteger(header, offset::height, layout.height);
  ser::putInteger(header, offset::depth, layout.format == PixelFormat::Raw16 ? 16 : 8);
  putText(header, offset::observer, description.observer);
  putText(header, offset::instrument, description.instrument);
  putText(header, offset::telescope, description.telescope);
  ser::putInteger(header, offset::startLocal, description.startLocal);
  ser::putInteger(header, offset::startUtc, description.startUtc);
  return header;
}

}  // namespace

SerWriter::SerWriter(const std::filesystem::path& path, const SerDescription& description)
    : file_(path), frameBytes_(frameBytes(description.layout)) {
  file_.writeAt(0, headerOf(description));
}

SerWriter::~SerWriter() {
  try {
    close();
  } catch (const std::exception&) {
    // The caller has been told of the first failure.
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
  ser::putInteger(count, 0, frameCount());
  file_.writeAt(static_cast<std::int64_t>(ser::offset::frameCount), count);
}

void SerWriter::close() {
  if (isOpen_) {
    isOpen_ = false;
    finish();
  }
}

void SerWriter::finish() {
  checkpoint();
  file_.truncate(framesEnd());  // removes the part of a frame that a full disk left
  std::vector<std::uint8_t> trailer(timeStamps_.size() * ser::timeStampSize);
  for (std::size_t frame = 0; frame < timeStamps_.size(); ++frame) {
    ser::putInteger(trailer, frame * ser::timeStampSize, timeStamps_[frame]);
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
  return static_cast<std::int64_t>(ser::headerSize + timeStamps_.size() * frameBytes_);
}

}  // namespace orvane::host
