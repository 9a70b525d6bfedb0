// Reads SER files: what the header says, held against the file's size, and the frames.
#include "formats/ser_reader.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr std::size_t headerSize = 178;
constexpr std::int64_t largestFrame = std::int64_t{1} << 30;

using Header = std::array<std::uint8_t, headerSize>;

// The header's whole numbers and the time stamps are little-endian.
template <class Integer>
Integer integerAt(std::span<const std::uint8_t> bytes, std::size_t at) {
  std::uint64_t value = 0;
  for (std::size_t byte = sizeof(Integer); byte-- > 0;) {
    value = value << 8 | bytes[at + byte];
  }
  return static_cast<Integer>(value);
}

std::string textAt(const Header& header, std::size_t at) {
  constexpr std::size_t longest = 40;
  const auto begin = header.begin() + static_cast<std::ptrdiff_t>(at);
  return validUtf8({begin, std::find(begin, begin + longest, 0)});
}

SerChannels channelsOf(std::int32_t colorId) {
  constexpr std::int32_t rgb = 100;
  constexpr std::int32_t bgr = 101;
  return colorId == rgb ? SerChannels::Rgb : colorId == bgr ? SerChannels::Bgr : SerChannels::One;
}

std::int64_t bytesOfFrame(const SerFacts& facts) {
  const std::int64_t pixelBytes =
      (facts.channels == SerChannels::One ? 1 : 3) * (facts.depth > 8 ? 2 : 1);
  // The two sides are multiplied only where that cannot overflow.
  return facts.width > largestFrame / facts.height ? largestFrame + 1
                                                   : pixelBytes * facts.width * facts.height;
}

}  // namespace

SerReader::SerReader(const std::filesystem::path& path) : file_(path) {
  readHeader();
  readTimeStamps();
}

void SerReader::readHeader() {
  Header header{};
  constexpr std::string_view mark = "LUCAM-RECORDER";
  if (file_.size() >= static_cast<std::int64_t>(headerSize)) {
    file_.readAt(0, header);
  }
  if (!std::equal(mark.begin(), mark.end(), header.begin())) {
    throw std::runtime_error(file_.name() + " is no SER file.");
  }
  facts_.colorId = integerAt<std::int32_t>(header, 18);
  facts_.channels = channelsOf(facts_.colorId);
  facts_.mosaic = mosaicFromCode(facts_.colorId);
  facts_.isBigEndian = integerAt<std::int32_t>(header, 22) != 0;
  facts_.width = integerAt<std::int32_t>(header, 26);
  facts_.height = integerAt<std::int32_t>(header, 30);
  facts_.depth = integerAt<std::int32_t>(header, 34);
  facts_.frames = integerAt<std::int32_t>(header, 38);
  facts_.observer = textAt(header, 42);
  facts_.instrument = textAt(header, 82);
  facts_.telescope = textAt(header, 122);
  facts_.startLocal = integerAt<std::int64_t>(header, 162);
  facts_.startUtc = integerAt<std::int64_t>(header, 170);

  const std::string size = std::to_string(facts_.width) + " x " + std::to_string(facts_.height);
  if (facts_.width < 1 || facts_.height < 1 || bytesOfFrame(facts_) > largestFrame) {
    throw std::runtime_error(file_.name() + " has a header that cannot be right: frames of " +
                             size + " pixels.");
  }
  if (facts_.depth < 1 || facts_.depth > 16) {
    throw std::runtime_error(file_.name() + " has a header that cannot be right: samples of " +
                             std::to_string(facts_.depth) + " bits.");
  }
  if (facts_.frames < 0) {
    throw std::runtime_error(file_.name() + " has a header that cannot be right: " +
                             std::to_string(facts_.frames) + " frames.");
  }
  frameBytes_ = static_cast<std::size_t>(bytesOfFrame(facts_));
}

void SerReader::readTimeStamps() {
  const auto frameSize = static_cast<std::int64_t>(frameBytes_);
  const std::int64_t room = file_.size() - static_cast<std::int64_t>(headerSize);
  if (room / frameSize < facts_.frames) {
    throw std::runtime_error(file_.name() + " is cut short: its header promises " +
                             std::to_string(facts_.frames) + " frames, and it holds " +
                             std::to_string(room / frameSize) + ".");
  }
  const std::int64_t left = room - frameSize * facts_.frames;
  const std::int64_t trailerSize = std::int64_t{8} * facts_.frames;
  if (left < trailerSize) {
    facts_.unusedBytes = left;
    return;
  }
  facts_.unusedBytes = left - trailerSize;
  std::vector<std::uint8_t> trailer(static_cast<std::size_t>(trailerSize));
  file_.readAt(file_.size() - left, trailer);
  for (std::size_t at = 0; at < trailer.size(); at += 8) {
    facts_.timeStamps.push_back(integerAt<std::int64_t>(trailer, at));
  }
}

void SerReader::readFrame(std::int32_t index, std::span<std::uint8_t> frame) const {
  if (index < 0 || index >= facts_.frames || frame.size() != frameBytes_) {
    throw std::runtime_error(file_.name() + " has no frame " + std::to_string(index) +
                             " of this size.");
  }
  const auto frameSize = static_cast<std::int64_t>(frameBytes_);
  file_.readAt(static_cast<std::int64_t>(headerSize) + frameSize * index, frame);
}

Image SerReader::readImage(std::int32_t index) const {
  std::vector<std::uint8_t> frame(frameBytes_);
  readFrame(index, frame);
  Image image{facts_.width, facts_.height, facts_.channels == SerChannels::One ? 1 : 3, {}};
  const std::size_t sampleBytes = facts_.depth > 8 ? 2 : 1;
  const std::size_t high = facts_.isBigEndian ? 0 : 1;
  const std::uint32_t largest = (1U << facts_.depth) - 1;
  image.samples.resize(frame.size() / sampleBytes);
  for (std::size_t sample = 0; sample < image.samples.size(); ++sample) {
    const std::uint32_t value = sampleBytes == 1 ? std::uint32_t{frame[sample]}
                                                 : std::uint32_t{frame[2 * sample + high]} << 8U |
                                                       frame[2 * sample + 1 - high];
    image.samples[sample] =
        static_cast<std::uint16_t>(std::min(value, largest) * std::uint64_t{65535} / largest);
  }
  for (std::size_t at = 0; facts_.channels == SerChannels::Bgr && at + 2 < image.samples.size();
       at += 3) {
    std::swap(image.samples[at], image.samples[at + 2]);
  }
  return image;
}

}  // namespace orvane::host
