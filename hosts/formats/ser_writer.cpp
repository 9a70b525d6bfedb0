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

std::filesystem::path timeJournalOf(const std::filesystem::path& recording) {
  std::filesystem::path journal = recording;
  journal += ".orvane-times";
  return journal;
}

SerWriter::SerWriter(const std::filesystem::path& path, const SerDescription& description,
                     Existing existing)
    : journalPath_(timeJournalOf(path)),
      file_(path, existing),
      frameBytes_(frameBytes(description.layout)) {
  file_.writeAt(0, headerOf(description));
  constexpr std::size_t usual = 1000;
  timeStamps_.reserve(usual);
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
  noteTime(utcTicks);
  file_.writeAt(framesEnd(), frame);
  if (timeStamps_.empty()) {
    publish();
  }
  timeStamps_.push_back(utcTicks);
}

// A recording without a journal is better than none.
void SerWriter::noteTime(std::int64_t utcTicks) {
  if (!hasJournal_) {
    return;
  }
  try {
    if (!journal_) {
      journal_.emplace(journalPath_, Existing::Replace);
    }
    std::array<std::uint8_t, ser::timeStampSize> time{};
    ser::putInteger(time, 0, utcTicks);
    journal_->writeAt(static_cast<std::int64_t>(timeStamps_.size() * time.size()), time);
  } catch (const std::exception&) {
    hasJournal_ = false;
  }
}

// The journal of the recording that is replaced stays until that recording is replaced.
void SerWriter::publish() {
  writeFrameCount(1);
  file_.publish();
  try {
    if (journal_) {
      journal_->publish();
    }
  } catch (const std::exception&) {
    hasJournal_ = false;
  }
}

void SerWriter::checkpoint() {
  writeFrameCount(frameCount());
}

void SerWriter::writeFrameCount(std::int32_t count) {
  std::array<std::uint8_t, 4> bytes{};
  ser::putInteger(bytes, 0, count);
  file_.writeAt(static_cast<std::int64_t>(ser::offset::frameCount), bytes);
}

void SerWriter::close() {
  if (isOpen_) {
    isOpen_ = false;
    finish();
  }
}

void SerWriter::finish() {
  if (timeStamps_.empty()) {
    file_.discard();
    return;
  }
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
  if (journal_) {
    journal_->discard();
  }
}

std::int64_t SerWriter::framesEnd() const {
  return static_cast<std::int64_t>(ser::headerSize + timeStamps_.size() * frameBytes_);
}

}  // namespace orvane::host
