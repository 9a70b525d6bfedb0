// Reads SER files. The file's size tells which frames are there.
#include "formats/ser_reader.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "formats/ser_layout.hpp"
#include "formats/ser_time.hpp"
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

bool isFrameTime(std::int64_t ticks, std::int64_t startUtc) {
  constexpr std::int64_t day = std::int64_t{24} * 60 * 60 * 10'000'000;
  // Some programs write local times.
  const bool fitsStart =
      !timeOfSerTicks(startUtc) || (ticks >= startUtc - day && ticks <= startUtc + 31 * day);
  return timeOfSerTicks(ticks).has_value() && fitsStart;
}

SerReader::SerReader(const std::filesystem::path& path) : file_(path) {
  readHeader();
  examineContent();
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
  facts_.promisedFrames = number(offset::frameCount);
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
  require(facts_.promisedFrames >= 0, std::to_string(facts_.promisedFrames) + " frames.");
  frameBytes_ = static_cast<std::size_t>(bytesOfFrame(facts_));
}

std::vector<std::int64_t> SerReader::timesAt(std::int64_t position, std::int64_t count) const {
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(count) * ser::timeStampSize);
  file_.readAt(position, bytes);
  std::vector<std::int64_t> times;
  times.reserve(static_cast<std::size_t>(count));
  for (std::size_t at = 0; at < bytes.size(); at += ser::timeStampSize) {
    times.push_back(ser::integerAt<std::int64_t>(bytes, at));
  }
  return times;
}

// None if these bytes are no times.
std::vector<std::int64_t> SerReader::plausibleTimesAt(std::int64_t position,
                                                      std::int64_t count) const {
  std::vector<std::int64_t> times = timesAt(position, count);
  const bool areTimes = std::is_sorted(times.begin(), times.end()) &&
                        std::all_of(times.begin(), times.end(), [&](std::int64_t time) {
                          return isFrameTime(time, facts_.startUtc);
                        });
  return areTimes ? times : std::vector<std::int64_t>();
}

// Behind the counted frames there may be others, or time stamps, or both. A dark frame's samples
// can look like numbers of any kind, so bytes only count as time stamps if their number is exactly
// right or they are plausible times.
void SerReader::examineContent() {
  const auto start = static_cast<std::int64_t>(ser::headerSize);
  const auto frameSize = static_cast<std::int64_t>(frameBytes_);
  constexpr auto timeSize = static_cast<std::int64_t>(ser::timeStampSize);
  const std::int64_t room = file_.size() - start;
  const std::int64_t promised = facts_.promisedFrames;
  const std::int64_t counted = std::min(promised, room / frameSize);
  const std::int64_t behind = start + frameSize * counted;
  const std::int64_t left = room - frameSize * counted;
  const std::int64_t withTimes =
      room % (frameSize + timeSize) == 0 ? room / (frameSize + timeSize) : 0;
  facts_.frames = static_cast<std::int32_t>(counted);
  facts_.unusedBytes = 0;
  if (counted == promised && left == timeSize * promised) {
    trailer_ = timesAt(behind, promised);
  } else if (withTimes > 0 &&
             !(trailer_ = plausibleTimesAt(start + frameSize * withTimes, withTimes)).empty()) {
    facts_.frames = static_cast<std::int32_t>(std::min(promised, withTimes));
    facts_.framesBehind = withTimes - facts_.frames;
  } else if (const std::int64_t times = std::min(promised, left / timeSize);
             counted == promised && times > 0 &&
             !(trailer_ = plausibleTimesAt(behind, times)).empty()) {
    facts_.unusedBytes = times == promised ? left - timeSize * times : left;
  } else {
    facts_.framesBehind = left / frameSize;
    facts_.unusedBytes = left % frameSize;
  }
  if (trailer_.size() >= static_cast<std::size_t>(facts_.frames)) {
    facts_.timeStamps.assign(trailer_.begin(), trailer_.begin() + facts_.frames);
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
