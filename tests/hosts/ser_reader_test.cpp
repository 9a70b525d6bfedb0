// Reading SER files with correct and with wrong headers.
#include "formats/ser_reader.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <limits>

#include "formats/ser_writer.hpp"
#include "scratch_directory.hpp"
#include "system/file.hpp"

namespace orvane::host {

namespace {

using orvane::testing::ScratchDirectory;
using orvane::testing::utf8;
using Bytes = std::vector<std::uint8_t>;

std::string nuls(std::size_t count) {
  return std::string(count, '\0');
}

std::string number(std::int32_t value) {
  std::string text;
  for (int byte = 0; byte < 4; ++byte) {
    text += static_cast<char>(static_cast<std::uint32_t>(value) >> (8 * byte) & 0xFFU);
  }
  return text;
}

// The numbers of a header, in their order in the file.
struct Header {
  std::int32_t colorId = 0;
  std::int32_t endian = 0;
  std::int32_t width = 2;
  std::int32_t height = 1;
  std::int32_t depth = 8;
  std::int32_t frames = 1;

  std::string text() const {
    return "LUCAM-RECORDER" + nuls(4) + number(colorId) + number(endian) + number(width) +
           number(height) + number(depth) + number(frames) + nuls(40 + 40 + 40 + 16);
  }
};

class SerReaderTest : public ::testing::Test {
 protected:
  using Samples = std::vector<std::uint16_t>;

  SerReader open(const std::string& content) const {
    std::ofstream(path, std::ios::binary) << content;
    return SerReader(path);
  }

  // The message about this content, after the file's name.
  std::string complaintAbout(const std::string& content) const {
    try {
      open(content);
    } catch (const std::runtime_error& error) {
      const std::string start = "\"" + utf8(path) + "\" ";
      const std::string text = error.what();
      return text.rfind(start, 0) == 0 ? text.substr(start.size()) : text;
    }
    return "nothing";
  }

  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.file("caf\u00e9.ser");
};

TEST_F(SerReaderTest, ReadsWhatTheWriterWrites) {
  SerDescription description;
  description.layout = {2, 2, PixelFormat::Raw16, BayerPattern::Gbrg};
  description.observer = "Anna";
  description.instrument = "Camera 1";
  description.telescope = std::string(40, 't');
  description.startLocal = 5;
  description.startUtc = 6;
  SerWriter writer(path, description);
  const Bytes first{1, 2, 3, 4, 5, 6, 7, 8};
  const Bytes second{11, 12, 13, 14, 15, 16, 17, 18};
  writer.addFrame(first, 100);
  writer.addFrame(second, 200);
  writer.close();

  const SerReader reader(path);
  const SerFacts& facts = reader.facts();
  EXPECT_EQ(facts.width, 2);
  EXPECT_EQ(facts.height, 2);
  EXPECT_EQ(facts.depth, 16);
  EXPECT_EQ(facts.bayer, BayerPattern::Gbrg);
  EXPECT_EQ(facts.frames, 2);
  EXPECT_EQ(facts.observer, "Anna");
  EXPECT_EQ(facts.instrument, "Camera 1");
  EXPECT_EQ(facts.telescope, std::string(40, 't'));
  EXPECT_EQ(facts.startLocal, 5);
  EXPECT_EQ(facts.startUtc, 6);
  EXPECT_EQ(facts.timeStamps, (std::vector<std::int64_t>{100, 200}));
  EXPECT_EQ(facts.unusedBytes, 0);
  Bytes frame(reader.frameBytes());
  reader.readFrame(1, frame);
  EXPECT_EQ(frame, second);
  reader.readFrame(0, frame);
  EXPECT_EQ(frame, first);
  EXPECT_EQ(reader.readImage(0).samples, (Samples{0x201, 0x403, 0x605, 0x807}));
  EXPECT_THROW(reader.readFrame(2, frame), std::runtime_error);
  EXPECT_THROW(reader.readFrame(-1, frame), std::runtime_error);
}

TEST_F(SerReaderTest, SpreadsSamplesOfAnyDepth) {
  const auto samples = [&](std::int32_t depth, std::int32_t endian, std::string_view bytes) {
    return open(Header{0, endian, 2, 1, depth, 1}.text().append(bytes)).readImage(0).samples;
  };
  using namespace std::string_view_literals;
  EXPECT_EQ(samples(8, 0, "\x80\xff"sv), (Samples{0x8080, 0xffff}));
  EXPECT_EQ(samples(12, 0, "\xff\x0f\x00\x00"sv), (Samples{0xffff, 0}));
  // The other order of bytes, and a sample that is larger than its depth allows.
  EXPECT_EQ(samples(12, 1, "\x0f\xff\x10\x00"sv), (Samples{0xffff, 0xffff}));
  EXPECT_EQ(samples(1, 0, "\x01\x00"sv), (Samples{0xffff, 0}));
}

TEST_F(SerReaderTest, PutsColoursInTheirOrder) {
  const Image rgb = open(Header{100, 0, 1, 1, 8, 1}.text() + "\x01\x02\x03").readImage(0);
  EXPECT_EQ(rgb.channels, 3);
  EXPECT_EQ(rgb.samples, (Samples{0x101, 0x202, 0x303}));
  const Image bgr =
      open(Header{101, 0, 1, 1, 16, 1}.text() + "\x01\x01\x02\x02\x03\x03").readImage(0);
  EXPECT_EQ(bgr.samples, (Samples{0x303, 0x202, 0x101}));
}

TEST_F(SerReaderTest, AFileWithoutTimeStamps) {
  const SerReader reader = open(Header{}.text() + "ab" + "1234567");
  EXPECT_TRUE(reader.facts().timeStamps.empty());
  EXPECT_EQ(reader.facts().unusedBytes, 1);
  EXPECT_EQ(reader.facts().framesBehind, 3);
  // A time of the year 2024 is one.
  EXPECT_EQ(
      open(Header{}.text() + "ab" + std::string("\x00\x40\x56\x1d\xc6\x39\xdc\x08", 8) + "more")
          .facts()
          .unusedBytes,
      4);
}

TEST_F(SerReaderTest, ReadsBeyondFourGibibytes) {
  constexpr std::int32_t frames = 5000;
  constexpr std::int32_t side = 1000;
  const std::string header = Header{0, 0, side, side, 8, frames}.text();
  {
    OutputFile file(path);
    file.writeAt(0, Bytes(header.begin(), header.end()));
    // The frames before are a hole, which takes no space.
    file.writeAt(178 + std::int64_t{frames - 1} * side * side, Bytes(side * side, 77));
    file.close();
  }
  const SerReader reader(path);
  Bytes frame(reader.frameBytes());
  reader.readFrame(frames - 1, frame);
  EXPECT_EQ(frame, Bytes(side * side, 77));
  reader.readFrame(0, frame);
  EXPECT_EQ(frame, Bytes(side * side, 0));
}

TEST_F(SerReaderTest, AFileWithoutFrames) {
  const SerReader reader = open(Header{0, 0, 2, 1, 8, 0}.text());
  EXPECT_EQ(reader.facts().frames, 0);
  EXPECT_EQ(reader.facts().unusedBytes, 0);
}

TEST_F(SerReaderTest, SaysWhatIsWrong) {
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  const std::string whole = Header{}.text() + "ab";
  EXPECT_EQ(complaintAbout(whole), "nothing");
  EXPECT_EQ(complaintAbout(""), "is no SER file.");
  EXPECT_EQ(complaintAbout(whole.substr(0, 177)), "is no SER file.");
  EXPECT_EQ(complaintAbout("GUCAM" + whole.substr(5)), "is no SER file.");
  EXPECT_EQ(complaintAbout(Header{0, 0, 2, 1, 8, -1}.text()),
            "has a header that cannot be right: -1 frames.");
  EXPECT_EQ(complaintAbout(Header{0, 0, 0, 1, 8, 1}.text()),
            "has a header that cannot be right: frames of 0 x 1 pixels.");
  EXPECT_EQ(complaintAbout(Header{0, 0, 1, -5, 8, 1}.text()),
            "has a header that cannot be right: frames of 1 x -5 pixels.");
  EXPECT_EQ(complaintAbout(Header{100, 0, largest, largest, 16, 1}.text()),
            "has a header that cannot be right: frames of 2147483647 x 2147483647 pixels.");
  EXPECT_EQ(complaintAbout(Header{100, 0, 20000, 20000, 8, 1}.text()),
            "has a header that cannot be right: frames of 20000 x 20000 pixels.");
  for (const std::int32_t depth : {0, 17, -8}) {
    EXPECT_EQ(complaintAbout(Header{0, 0, 2, 1, depth, 1}.text()),
              "has a header that cannot be right: samples of " + std::to_string(depth) + " bits.");
  }
}

TEST_F(SerReaderTest, AFileThatIsNotThere) {
  try {
    const SerReader reader(scratch.file("missing.ser"));
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), "Cannot read \"" + utf8(scratch.file("missing.ser")) +
                                             "\": No such file or directory");
  }
}

}  // namespace

}  // namespace orvane::host
