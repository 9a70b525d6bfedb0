// SER files, byte by byte and through a reader.
#include "formats/ser_writer.hpp"

#include <gtest/gtest.h>

#include "scratch_directory.hpp"
#include "ser_file.hpp"

namespace orvane::host {

namespace {

using orvane::testing::contentOf;
using orvane::testing::ScratchDirectory;
using orvane::testing::SerFile;
using Bytes = std::vector<std::uint8_t>;

class SerWriterTest : public ::testing::Test {
 protected:
  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.file("caf\u00e9 \U0001F52D.ser");
};

SerDescription description(int width, int height, PixelFormat format, BayerPattern bayer) {
  SerDescription description;
  description.layout = {width, height, format, bayer};
  return description;
}

std::string nuls(std::size_t count) {
  return std::string(count, '\0');
}

TEST_F(SerWriterTest, WritesTheseBytes) {
  SerDescription known = description(2, 1, PixelFormat::Raw16, BayerPattern::Gbrg);
  known.observer = "Anna";
  known.instrument = "Camera 1";
  known.telescope = "80/480";
  known.startLocal = 0x0102030405060708;
  known.startUtc = 0x1112131415161718;
  SerWriter writer(path, known);
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
    const SerDescription frame = description(4, 3, expected.format, expected.bayer);
    SerWriter writer(path, frame, Existing::Replace);
    const Bytes content(frameBytes(frame.layout), 7);
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
  SerDescription longNames = description(1, 1, PixelFormat::Raw8, BayerPattern::None);
  longNames.observer = std::string(40, 'o');
  longNames.instrument = std::string(41, 'i');
  longNames.telescope = std::string(39, 't') + "\u00e9";
  SerWriter(path, longNames).addFrame(Bytes{1}, 1);
  const SerFile file(path);
  // A name that fills its field has no NUL behind it.
  EXPECT_EQ(contentOf(path).substr(42, 120),
            std::string(40, 'o') + std::string(40, 'i') + std::string(39, 't') + nuls(1));
  EXPECT_EQ(file.frameCount, 1);
  EXPECT_EQ(file.unreadBytes, 0);
}

TEST_F(SerWriterTest, ACrashCostsNoMoreThanTheFramesSinceTheCheckpoint) {
  SerWriter writer(path, description(2, 1, PixelFormat::Raw8, BayerPattern::None));
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
    SerWriter writer(path, description(2, 1, PixelFormat::Raw8, BayerPattern::None));
    writer.addFrame(Bytes{1, 2}, 10);
    EXPECT_EQ(writer.frameCount(), 1);
  }
  const SerFile file(path);
  EXPECT_EQ(file.frameCount, 1);
  EXPECT_EQ(file.timeStamps, std::vector<std::int64_t>{10});
  EXPECT_EQ(file.unreadBytes, 0);
}

TEST_F(SerWriterTest, RefusesAFrameOfAnotherSize) {
  SerWriter writer(path, description(2, 1, PixelFormat::Raw8, BayerPattern::None));
  EXPECT_THROW(writer.addFrame(Bytes{1}, 0), std::runtime_error);
  EXPECT_THROW(writer.addFrame(Bytes{1, 2, 3}, 0), std::runtime_error);
  EXPECT_EQ(writer.frameCount(), 0);
  writer.close();
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace

}  // namespace orvane::host
