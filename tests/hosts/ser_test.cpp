// SER files: the writer's byte by byte and through another reader, and the reader on files with
// correct and with wrong headers.
#include <gtest/gtest.h>

#include <fstream>
#include <limits>

#include "failure.hpp"
#include "formats/ser_reader.hpp"
#include "formats/ser_writer.hpp"
#include "scratch_directory.hpp"
#include "ser_file.hpp"
#include "system/file.hpp"

namespace orvane::host {

namespace {

using orvane::testing::contentOf;
using orvane::testing::failureOf;
using orvane::testing::ScratchDirectory;
using orvane::testing::SerFile;
using orvane::testing::utf8;
using Header = orvane::testing::SerHeader;
using Bytes = std::vector<std::uint8_t>;

const SerDescription twoPixels{{2, 1, PixelFormat::Raw8, BayerPattern::None}, "", "", "", 0, 0};

class SerWriterTest : public ::testing::Test {
 protected:
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.file("caf\u00e9 \U0001F52D.ser");
};

std::string nuls(std::size_t count) {
  return std::string(count, '\0');
}

TEST_F(SerWriterTest, WritesTheseBytes) {
  SerWriter writer(path, {{2, 1, PixelFormat::Raw16, BayerPattern::Gbrg},
                          "Anna",
                          "Camera 1",
                          "80/480",
                          0x0102030405060708,
                          0x1112131415161718});
  writer.addFrame(Bytes{'a', 'b', 'c', 'd'}, 0x2122232425262728);
  writer.addFrame(Bytes{'e', 'f', 'g', 'h'}, 0x3132333435363738);
  writer.close();

  const std::string expected = std::string("LUCAM-RECORDER") +       // FileID
                               nuls(4) +                             // LuID
                               "\x0a" + nuls(3) +                    // ColorID: GBRG
                               nuls(4) +                             // LittleEndian
                               "\x02" + nuls(3) +                    // ImageWidth
                               "\x01" + nuls(3) +                    // ImageHeight
                               "\x10" + nuls(3) +                    // PixelDepthPerPlane
                               "\x02" + nuls(3) +                    // FrameCount
                               "Anna" + nuls(36) +                   // Observer
                               "Camera 1" + nuls(32) +               // Instrument
                               "80/480" + nuls(34) +                 // Telescope
                               "\x08\x07\x06\x05\x04\x03\x02\x01" +  // DateTime
                               "\x18\x17\x16\x15\x14\x13\x12\x11" +  // DateTime_UTC
                               "abcd" + "efgh" +                     // frames
                               "\x28\x27\x26\x25\x24\x23\x22\x21" +  // time stamps
                               "\x38\x37\x36\x35\x34\x33\x32\x31";
  EXPECT_EQ(contentOf(path), expected);
  EXPECT_EQ(expected.size(), 178U + 8U + 16U);
}

TEST_F(SerWriterTest, NamesTheColoursAndTheDepth) {
  struct Case {
    PixelFormat format;
    BayerPattern bayer;
    int colorId;
    int depth;
  };
  for (const Case& expected : {Case{PixelFormat::Raw8, BayerPattern::None, 0, 8},
                               Case{PixelFormat::Raw8, BayerPattern::Rggb, 8, 8},
                               Case{PixelFormat::Raw8, BayerPattern::Grbg, 9, 8},
                               Case{PixelFormat::Raw16, BayerPattern::Gbrg, 10, 16},
                               Case{PixelFormat::Raw16, BayerPattern::Bggr, 11, 16},
                               Case{PixelFormat::Raw16, BayerPattern::None, 0, 16},
                               Case{PixelFormat::Rgb24, BayerPattern::None, 100, 8},
                               Case{PixelFormat::Mono8, BayerPattern::None, 0, 8}}) {
    const FrameLayout layout{4, 3, expected.format, expected.bayer};
    SerWriter writer(path, {layout, "", "", "", 0, 0}, Existing::Replace);
    const Bytes content(frameBytes(layout), 7);
    writer.addFrame(content, 1);
    writer.close();
    const SerFile file(path);
    EXPECT_EQ(file.colorId, expected.colorId);
    EXPECT_EQ(file.depth, expected.depth);
    EXPECT_EQ(file.frames, std::vector<Bytes>{content});
    EXPECT_EQ(file.timeStamps, std::vector<std::int64_t>{1});
    EXPECT_EQ(file.unreadBytes, 0);
  }
}

TEST_F(SerWriterTest, CutsLongNamesBetweenCharacters) {
  SerWriter(path, {twoPixels.layout, std::string(40, 'o'), std::string(41, 'i'),
                   std::string(39, 't') + "\u00e9", 0, 0})
      .addFrame(Bytes{1, 2}, 1);
  const SerFile file(path);
  // A name that fills its field has no NUL behind it.
  EXPECT_EQ(contentOf(path).substr(42, 120),
            std::string(40, 'o') + std::string(40, 'i') + std::string(39, 't') + nuls(1));
  EXPECT_EQ(file.frameCount, 1);
  EXPECT_EQ(file.unreadBytes, 0);
}

TEST_F(SerWriterTest, ACrashCostsNoMoreThanTheFramesSinceTheCheckpoint) {
  SerWriter writer(path, twoPixels);
  writer.addFrame(Bytes{1, 2}, 10);
  EXPECT_EQ(SerFile(path).frameCount, 1);
  writer.addFrame(Bytes{3, 4}, 20);
  writer.checkpoint();
  writer.addFrame(Bytes{5, 6}, 30);
  // The file as a crash would leave it now:
  const SerFile file(path);
  EXPECT_EQ(file.frameCount, 2);
  EXPECT_EQ(file.frames, (std::vector<Bytes>{{1, 2}, {3, 4}}));
  EXPECT_EQ(file.unreadBytes, 2);
}

TEST_F(SerWriterTest, TheDestructorFinishesTheFile) {
  {
    SerWriter writer(path, twoPixels);
    writer.addFrame(Bytes{1, 2}, 10);
    EXPECT_EQ(writer.frameCount(), 1);
  }
  const SerFile file(path);
  EXPECT_EQ(file.frameCount, 1);
  EXPECT_EQ(file.timeStamps, std::vector<std::int64_t>{10});
  EXPECT_EQ(file.unreadBytes, 0);
}

TEST_F(SerWriterTest, RefusesAFrameOfAnotherSize) {
  SerWriter writer(path, twoPixels);
  EXPECT_THROW(writer.addFrame(Bytes{1}, 0), std::runtime_error);
  EXPECT_THROW(writer.addFrame(Bytes{1, 2, 3}, 0), std::runtime_error);
  EXPECT_EQ(writer.frameCount(), 0);
  writer.close();
  EXPECT_FALSE(std::filesystem::exists(path));
}

class SerReaderTest : public SerWriterTest {
 protected:
  using Samples = std::vector<std::uint16_t>;

  SerReader open(const std::string& content) const {
    std::ofstream(path, std::ios::binary) << content;
    return SerReader(path);
  }

  // The message about this content, after the file's name.
  std::string complaintAbout(const std::string& content) const {
    const std::string start = "\"" + utf8(path) + "\" ";
    const std::string text = failureOf<std::runtime_error>([&] { open(content); });
    return text.starts_with(start) ? text.substr(start.size()) : text;
  }
};

TEST_F(SerReaderTest, ReadsWhatTheWriterWrites) {
  SerWriter writer(path, {{2, 2, PixelFormat::Raw16, BayerPattern::Gbrg},
                          "Anna",
                          "Camera 1",
                          std::string(40, 't'),
                          5,
                          6});
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
    return open(Header{0, endian, 2, 1, depth, 1}.bytes().append(bytes)).readImage(0).samples;
  };
  using namespace std::string_view_literals;
  EXPECT_EQ(samples(8, 0, "\x80\xff"sv), (Samples{0x8080, 0xffff}));
  EXPECT_EQ(samples(12, 0, "\xff\x0f\x00\x00"sv), (Samples{0xffff, 0}));
  // The other order of bytes, and a sample that is larger than its depth allows.
  EXPECT_EQ(samples(12, 1, "\x0f\xff\x10\x00"sv), (Samples{0xffff, 0xffff}));
  EXPECT_EQ(samples(1, 0, "\x01\x00"sv), (Samples{0xffff, 0}));
}

TEST_F(SerReaderTest, PutsColoursInTheirOrder) {
  const Image rgb = open(Header{100, 0, 1, 1, 8, 1}.bytes() + "\x01\x02\x03").readImage(0);
  EXPECT_EQ(rgb.channels, 3);
  EXPECT_EQ(rgb.samples, (Samples{0x101, 0x202, 0x303}));
  const Image bgr =
      open(Header{101, 0, 1, 1, 16, 1}.bytes() + "\x01\x01\x02\x02\x03\x03").readImage(0);
  EXPECT_EQ(bgr.samples, (Samples{0x303, 0x202, 0x101}));
}

TEST_F(SerReaderTest, AFileWithoutTimeStamps) {
  const SerReader reader = open(Header{}.bytes() + "ab" + "1234567");
  EXPECT_TRUE(reader.facts().timeStamps.empty());
  EXPECT_EQ(reader.facts().unusedBytes, 1);
  EXPECT_EQ(reader.facts().framesBehind, 3);
  // A time of the year 2024 is one.
  const std::string time("\x00\x40\x56\x1d\xc6\x39\xdc\x08", 8);
  EXPECT_EQ(open(Header{}.bytes() + "ab" + time + "more").facts().unusedBytes, 4);
}

TEST_F(SerReaderTest, ReadsBeyondFourGibibytes) {
  constexpr std::int32_t frames = 5000;
  constexpr std::int32_t side = 1000;
  const std::string header = Header{0, 0, side, side, 8, frames}.bytes();
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
  const SerReader reader = open(Header{0, 0, 2, 1, 8, 0}.bytes());
  EXPECT_EQ(reader.facts().frames, 0);
  EXPECT_EQ(reader.facts().unusedBytes, 0);
}

TEST_F(SerReaderTest, SaysWhatIsWrong) {
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  const std::string whole = Header{}.bytes() + "ab";
  EXPECT_EQ(complaintAbout(whole), "no failure");
  EXPECT_EQ(complaintAbout(""), "is no SER file.");
  EXPECT_EQ(complaintAbout(whole.substr(0, 177)), "is no SER file.");
  EXPECT_EQ(complaintAbout("GUCAM" + whole.substr(5)), "is no SER file.");
  EXPECT_EQ(complaintAbout(Header{0, 0, 2, 1, 8, -1}.bytes()),
            "has a header that cannot be right: -1 frames.");
  EXPECT_EQ(complaintAbout(Header{0, 0, 0, 1, 8, 1}.bytes()),
            "has a header that cannot be right: frames of 0 x 1 pixels.");
  EXPECT_EQ(complaintAbout(Header{0, 0, 1, -5, 8, 1}.bytes()),
            "has a header that cannot be right: frames of 1 x -5 pixels.");
  EXPECT_EQ(complaintAbout(Header{100, 0, largest, largest, 16, 1}.bytes()),
            "has a header that cannot be right: frames of 2147483647 x 2147483647 pixels.");
  EXPECT_EQ(complaintAbout(Header{100, 0, 20000, 20000, 8, 1}.bytes()),
            "has a header that cannot be right: frames of 20000 x 20000 pixels.");
  for (const std::int32_t depth : {0, 17, -8}) {
    EXPECT_EQ(complaintAbout(Header{0, 0, 2, 1, depth, 1}.bytes()),
              "has a header that cannot be right: samples of " + std::to_string(depth) + " bits.");
  }
}

TEST_F(SerReaderTest, AFileThatIsNotThere) {
  EXPECT_EQ(failureOf<std::runtime_error>([&] { SerReader{path}; }),
            "Cannot read \"" + utf8(path) + "\": No such file or directory");
}

}  // namespace

}  // namespace orvane::host
