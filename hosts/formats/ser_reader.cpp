// Reads SER files. The header is checked against the file's size.
#include "formats/ser_reader.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "formats/ser_layout.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr std::int64_t largestFrame = std::int64_t{1} << 30;

using Header = std::array<std::uint8_t, ser::headerSize>;

std::string textAt(const Header& header, std::size_t at) {
  const auto begin = header.begin() + static_cast<std::ptrdiff_t>(at);
  return validUtf8({begin, std::find(begin, begin + ser::textSize, 0)});
}

SerChannels channelsOf(std::int32_t colorId) {
  return colorId == ser::color::rgb   ? SerChannels::Rgb
         : colorId == ser::color::bgr ? SerChannels::Bgr
                                      : SerChannels::One;
}

std::int64_t bytesOfFrame(const SerFacts& facts) {
  const std::int64_t pixelBytes = (facts.channels == SerChannels::One ? 1 : 3) *
                                  static_cast<std::int64_t>(ser::sampleBytes(facts.depth));
  // Multiplies the two sides only if that cannot overflow.
  return facts.width > largestFrame / facts.height ? largestFrame + 1
                                                   : pixelBytes * facts.width * facts.height;
}

}  // namespace

SerReader::SerReader(const std::filesystem::path& path) : file_(path) {
  readHeader();
  readTimeStamps();
}

void SerReader::readHeader() {
  namespace offset = ser::offset;
  Header header{};
  if (file_.size() >= static_cast<std::int64_t>(ser::headerSize)) {
    file_.readAt(0, header);
  }
  if (!std::equal(ser::fileId.begin(), ser::fileId.end(), header.begin())) {
    throw std::runtime_error(file_.name() + " is no SER file.");
  }
  const auto number = [&](std::size_t at) { return ser::integerAt<std::int32_t>(header, at); };
  facts_.colorId = number(offset::colorId);
  facts_.channels = channelsOf(facts_.colorId);
  facts_.bayer = bayerFromCode(facts_.colorId);
  facts_.isBigEndian = number(offset::littleEndian) != ser::byteOrder::little;
  facts_.width = number(offset::width);
  facts_.height = number(offset::height);
  facts_.depth = number(offset::depth);
  facts_.frames = number(offset::frameCount);
  facts_.observer = textAt(header, offset::observer);
  facts_.instrument = textAt(header, offset::instrument);
  facts_.telescope = textAt(header, offset::telescope);
  facts_.startLocal = ser::integerAt<std::int64_t>(header, offset::startLocal);
  facts_.startUtc = ser::integerAt<std::int64_t>(header, offset::startUtc);

  const auto require = [&](bool isPossible, const std::string& text) {
    if (!isPossible) {
      throw std::runtime_error(file_.name() + " has a header that cannot be right: " + text);
    }
  };
  require(facts_.width > 0 && facts_.height > 0 && bytesOfFrame(facts_) <= largestFrame,
          "frames of " + dimensionsText(facts_.width, facts_.height) + " pixels.");
  require(facts_.depth > 0 && facts_.depth <= 16,
          "samples of " + std::to_string(facts_.depth) + " bits.");
  require(facts_.frames >= 0, std::to_string(facts_.frames) + " frames.");
  frameBytes_ = static_cast<std::size_t>(bytesOfFrame(facts_));
}

void SerReader::readTimeStamps() {
  const auto frameSize = static_cast<std::int64_t>(frameBytes_);
  const std::int64_t room = file_.size() - static_cast<std::int64_t>(ser::headerSize);
  if (room / frameSize < facts_.frames) {
    throw std::runtime_error(file_.name() + " is cut short: its header promises " +
                             std::to_string(facts_.frames) + " frames, and it holds " +
                             std::to_string(room / frameSize) + ".");
  }
  const std::int64_t left = room - frameSize * facts_.frames;
  const auto trailerSize = static_cast<std::int64_t>(ser::timeStampSize) * facts_.frames;
  if (left < trailerSize) {
    facts_.unusedBytes = left;
    return;
  }
  facts_.unusedBytes = left - trailerSize;
  std::vector<std::uint8_t> trailer(static_cast<std::size_t>(trailerSize));
  file_.readAt(file_.size() - left, trailer);
  for (std::size_t at = 0; at < trailer.size(); at += ser::timeStampSize) {
    facts_.timeStamps.push_back(ser::integerAt<std::int64_t>(trailer, at));
  }
}

void SerReader::readFrame(std::int32_t index, std::span<std::uint8_t> frame) const {
  if (index < 0 || index >= facts_.frames || frame.size() != frameBytes_) {
    throw std::runtime_error(file_.name() + " has no frame " + std::to_string(index) +
                             " of this size.");
  }
  const auto frameSize = static_cast<std::int64_t>(frameBytes_);
  file_.readAt(static_cast<std::int64_t>(ser::headerSize) + frameSize * index, frame);
}

Image SerReader::readImage(std::int32_t index) const {
  std::vector<std::uint8_t> frame(frameBytes_);
  readFrame(index, frame);
  Image image{facts_.width, facts_.height, facts_.channels == SerChannels::One ? 1 : 3, {}};
  const std::uint32_t largest = ser::largestSample(facts_.depth);
  image.samples.resize(frame.size() / ser::sampleBytes(facts_.depth));
  for (std::size_t at = 0; at < image.samples.size(); ++at) {
    const std::uint64_t sample = ser::sampleAt(frame, at, facts_.depth, facts_.isBigEndian);
    image.samples[at] = static_cast<std::uint16_t>(sample * 65535 / largest);
  }
  for (std::size_t at = 0; facts_.channels == SerChannels::Bgr && at + 2 < image.samples.size();
       at += 3) {
    std::swap(image.samples[at], image.samples[at + 2]);
  }
  return image;
}

}  // namespace orvane::host
