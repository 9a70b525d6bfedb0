// Simulated cameras that play a recording back.
#include <fstream>
#include <random>
#include <utility>

#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Pixels = std::vector<int>;

// The content of a SER file. The defaults make a valid one.
struct Recording {
  std::string mark = "LUCAM-RECORDER";
  std::int32_t color = 0;
  std::int32_t isHighByteFirst = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t depth = 8;
  std::int32_t frameCount = -1;  // -1: frames.size()
  std::vector<Pixels> frames;    // the samples, row by row

  Bytes frame(std::size_t number) const {
    Bytes bytes;
    for (const int sample : frames.at(number)) {
      const auto low = static_cast<std::uint8_t>(sample);
      const auto high = static_cast<std::uint8_t>(sample >> 8);
      if (depth > 8 && isHighByteFirst != 0) {
        bytes.push_back(high);
      }
      bytes.push_back(low);
      if (depth > 8 && isHighByteFirst == 0) {
        bytes.push_back(high);
      }
    }
    return bytes;
  }

  std::string content() const {
    std::string text = mark;
    const auto put = [&](std::int32_t number) {
      for (int byte = 0; byte < 4; ++byte) {
        text += static_cast<char>(static_cast<std::uint32_t>(number) >> (8 * byte));
      }
    };
    const int count = frameCount == -1 ? static_cast<int>(frames.size()) : frameCount;
    for (const std::int32_t number : {0, color, isHighByteFirst, width, height, depth, count}) {
      put(number);
    }
    text.resize(178);
    for (std::size_t number = 0; number < frames.size(); ++number) {
      const Bytes bytes = frame(number);
      text.append(bytes.begin(), bytes.end());
    }
    return text;
  }
};

// Frames of random samples whose lowest `lowZeros` bits are 0.
Recording randomRecording(std::int32_t color, std::int32_t width, std::int32_t height,
                          std::int32_t depth, unsigned lowZeros = 0, int frames = 3) {
  std::mt19937 random(7);
  Recording recording;
  recording.color = color;
  recording.width = width;
  recording.height = height;
  recording.depth = depth;
  const std::size_t planes = color >= 100 ? 3 : 1;
  for (int number = 0; number < frames; ++number) {
    Pixels pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * planes);
    for (int& pixel : pixels) {
      pixel =
          static_cast<int>(random() % (1U << static_cast<unsigned>(depth)) >> lowZeros << lowZeros);
    }
    recording.frames.push_back(pixels);
  }
  return recording;
}

// A recording of one frame. Each sample is a function of its position.
template <class SampleAt>
Recording drawnRecording(std::int32_t color, std::int32_t width, std::int32_t height,
                         SampleAt sampleAt) {
  Recording recording = randomRecording(color, width, height, 8, 0, 0);
  Pixels pixels;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      pixels.push_back(sampleAt(x, y));
    }
  }
  recording.frames.push_back(pixels);
  return recording;
}

class PlaybackOf : public FamilyTest {
 protected:
  using FamilyTest::FamilyTest;

  void SetUp() override { scan(); }

  // Writes a file and returns its path in UTF-8.
  std::string write(const std::string& content, const char8_t* name = u8"recording.ser") const {
    const std::filesystem::path path = directory.path() / name;
    std::ofstream(path, std::ios::binary) << content;
    return utf8Of(path);
  }

  int play(const Recording& recording) const {
    return sdk.play_recording(write(recording.content()).c_str());
  }

  // Opens with the gain that shows a recording unchanged.
  int open(int format, int width = 320, int height = 202, int bin = 1,
           std::int64_t exposureUs = 20000, int offset = 0) {
    return oc.open(0, width, height, bin, format, exposureUs, static_cast<int>(small.gainMax) / 2,
                   offset);
  }

  // Plays the recording and opens the camera.
  void show(const Recording& recording, int format = 0, int width = 320, int height = 202,
            int bin = 1, std::int64_t exposureUs = 20000) {
    ASSERT_EQ(play(recording), 1);
    ASSERT_EQ(open(format, width, height, bin, exposureUs), 1) << error();
  }

  // A sample of the first frame, in a format with 8 bits per channel.
  int sampleAt(int x, int y, int channel = 0, int channels = 1) const {
    const Bytes bytes = rendered(0);
    return bytes.begin()[(y * oc.width() + x) * channels + channel];
  }
};

class PlaybackTest : public PlaybackOf {
 protected:
  PlaybackTest() : PlaybackOf("ASICamera2") {}
};

class PlaybackOfEachFamily : public PlaybackOf, public ::testing::WithParamInterface<const char*> {
 protected:
  PlaybackOfEachFamily() : PlaybackOf(GetParam()) {}
};

TEST_P(PlaybackOfEachFamily, RawFramesHoldTheRecordingsSamplesByteByByte) {
  // The recordings that the family shows unchanged: a ToupTek camera delivers 12 bits as they are,
  // the others shift them to the top of 16.
  const Recording deep = GetParam() == std::string("toupcam") ? randomRecording(8, 320, 202, 12)
                                                              : randomRecording(8, 320, 202, 16, 4);
  for (const int format : {0, 1}) {
    const Recording recording = format == 0 ? randomRecording(8, 320, 202, 8) : deep;
    show(recording, format);
    sdk.advance_clock(20000);
    const int size = readFrame();
    ASSERT_GT(size, 0) << error();
    frame.resize(static_cast<std::size_t>(size));
    EXPECT_TRUE(frame == recording.frame(0)) << "format " << format;
    for (int number = 0; number < 7; ++number) {
      Bytes expected = recording.frame(static_cast<std::size_t>(number % 3));
      Bytes delivered = rendered(number);
      delivered.resize(expected.size());
      EXPECT_TRUE(delivered == expected) << "format " << format << " frame " << number;
    }
    oc.close();
  }
  expectClean(sdk);
}

INSTANTIATE_TEST_SUITE_P(Families, PlaybackOfEachFamily, ::testing::ValuesIn(sdkNames),
                         [](const auto& instance) { return std::string(instance.param); });

int gradient(int x, int y) {
  return (x + 3 * y) & 0xff;
}

// The same pixels, with the columns or the rows in the reverse order.
Pixels turned(const Pixels& pixels, int width, bool isMirrored, bool isUpsideDown) {
  const int height = static_cast<int>(pixels.size()) / width;
  Pixels result;
  result.reserve(pixels.size());
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int column = isMirrored ? width - 1 - x : x;
      const int row = isUpsideDown ? height - 1 - y : y;
      result.push_back(pixels.begin()[row * width + column]);
    }
  }
  return result;
}

TEST_F(PlaybackTest, AFlipThatTheSdkHasKeptTurnsTheFramesAndTheirPattern) {
  for (const int flip : {0, 1, 2, 3, 0}) {
    ASSERT_EQ(sdk.command(("keep 0 9 " + std::to_string(flip)).c_str()), 1);
    Recording recording = randomRecording(8, 320, 202, 8, 0, 1);
    for (int opening = 0; opening < 2; ++opening) {
      show(recording);
      Recording seen = recording;
      seen.frames[0] = turned(recording.frames[0], 320, flip % 2 == 1, flip / 2 == 1);
      EXPECT_TRUE(rendered(0) == seen.frame(0)) << "flip " << flip;
      oc.close();
    }
    EXPECT_EQ(oc.scan(), 1);
    EXPECT_EQ(infoValue(0, "bayer"), "8") << "the pattern of frames that are not flipped";
  }
}

TEST_F(PlaybackTest, RegionShowsItsPartOfTheRecording) {
  show(drawnRecording(8, 320, 202, gradient), 0, 64, 48);
  for (const auto& [x, y] : {std::pair{0, 0}, {63, 0}, {5, 17}, {63, 47}}) {
    EXPECT_EQ(sampleAt(x, y), gradient(x, y));
  }
}

TEST_F(PlaybackTest, SmallerRecordingLiesAtTheTopLeftAndTheRestIsDark) {
  show(drawnRecording(8, 100, 50, [](int, int) { return 77; }));
  EXPECT_EQ(sampleAt(0, 0), 77);
  EXPECT_EQ(sampleAt(99, 49), 77);
  EXPECT_EQ(sampleAt(100, 49), 0);
  EXPECT_EQ(sampleAt(99, 50), 0);
  EXPECT_EQ(sampleAt(319, 201), 0);
}

TEST_F(PlaybackTest, LargerRecordingShowsItsMiddle) {
  // 20 columns and 7 rows too many. The camera skips 10 columns and, to keep the Bayer pattern, 2
  // rows.
  show(drawnRecording(8, 340, 209, gradient));
  EXPECT_EQ(sampleAt(0, 0), gradient(10, 2));
  EXPECT_EQ(sampleAt(319, 201), gradient(329, 203));
}

TEST_F(PlaybackTest, ExposureGainAndOffsetScaleTheSamples) {
  small.gainMax = 100;
  rescan();
  show(drawnRecording(8, 320, 202, [](int x, int) { return x < 160 ? 40 : 200; }), 0, 320, 202, 1,
       40000);
  EXPECT_EQ(sampleAt(0, 0), 80);
  EXPECT_EQ(sampleAt(160, 0), 255);
  ASSERT_EQ(oc.apply(10000, 50, 0), 1) << error();
  EXPECT_EQ(sampleAt(0, 0), 10 * 2);
  EXPECT_EQ(sampleAt(160, 0), 100);
  ASSERT_EQ(oc.apply(20000, 70, 0), 1) << error();
  EXPECT_EQ(sampleAt(0, 0), 79) << "20 of 100 steps are 6 dB: a factor of 1.995";
  // The unit of the offset is 1/4096 of full scale: 16 are one step of 8 bits.
  ASSERT_EQ(oc.apply(20000, 50, 16), 1) << error();
  EXPECT_EQ(sampleAt(0, 0), 41);
}

TEST_F(PlaybackTest, MonoRecordingIsGreyForAColorCamera) {
  show(drawnRecording(0, 320, 202, gradient));
  EXPECT_EQ(sampleAt(11, 7), 11 + 21);
  ASSERT_EQ(open(2), 1) << error();
  for (const int channel : {0, 1, 2}) {
    EXPECT_EQ(sampleAt(11, 7, channel, 3), 11 + 21);
  }
}

// A uniform scene of red 100, green 200, blue 40 behind a Bayer pattern.
int uniformBayerPattern(int x, int y) {
  const int even[2][2] = {{100, 200}, {200, 40}};  // RGGB
  return even[y & 1][x & 1];
}
constexpr int evenBrightness = 151;  // 0.299 * 100 + 0.587 * 200 + 0.114 * 40

TEST_F(PlaybackTest, BayerPatternGivesColorFrames) {
  show(drawnRecording(8, 320, 202, uniformBayerPattern), 2);
  for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 1}, {319, 201}}) {
    EXPECT_EQ(sampleAt(x, y, 0, 3), 40) << "the SDK delivers blue first";
    EXPECT_EQ(sampleAt(x, y, 1, 3), 200);
    EXPECT_EQ(sampleAt(x, y, 2, 3), 100);
  }
  ASSERT_EQ(open(3), 1) << error();
  EXPECT_EQ(sampleAt(5, 5), evenBrightness);
}

// Linear interpolation must reproduce a linear gradient.
TEST_F(PlaybackTest, BayerPatternIsInterpolatedFromTheNeighbours) {
  show(drawnRecording(8, 100, 100, [](int x, int y) { return x + y; }), 2);
  for (const auto& [x, y] : {std::pair{10, 20}, {11, 20}, {10, 21}, {11, 21}, {1, 1}, {98, 98}}) {
    for (const int channel : {0, 1, 2}) {
      EXPECT_EQ(sampleAt(x, y, channel, 3), x + y) << x << " " << y << " " << channel;
    }
  }
}

TEST_F(PlaybackTest, BayerPatternIsConvertedToTheCamerasOwn) {
  small.bayerPattern = 1;  // BGGR
  rescan();
  show(drawnRecording(8, 320, 202, uniformBayerPattern));
  EXPECT_EQ(sampleAt(10, 10), 40);
  EXPECT_EQ(sampleAt(11, 10), 200);
  EXPECT_EQ(sampleAt(10, 11), 200);
  EXPECT_EQ(sampleAt(11, 11), 100);
}

TEST_F(PlaybackTest, BayerPatternIsBrightnessForAMonoCamera) {
  small.isColor = 0;
  rescan();
  show(drawnRecording(8, 320, 202, uniformBayerPattern));
  for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 1}, {319, 201}}) {
    EXPECT_EQ(sampleAt(x, y), evenBrightness);
  }
}

TEST_F(PlaybackTest, ColorsOfEitherOrderAreSampledByTheCamerasBayerPattern) {
  for (const std::int32_t color : {100, 101}) {
    Recording recording = randomRecording(color, 320, 202, 8, 0, 1);
    for (std::size_t sample = 0; sample < recording.frames[0].size(); ++sample) {
      const int colors[3] = {100, 200, 40};
      recording.frames[0][sample] = colors[color == 100 ? sample % 3 : 2 - sample % 3];
    }
    show(recording);
    for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 1}}) {
      EXPECT_EQ(sampleAt(x, y), uniformBayerPattern(x, y)) << color;
    }
  }
}

TEST_F(PlaybackTest, BinningAveragesPixelsOfOneColor) {
  show(drawnRecording(8, 320, 202, uniformBayerPattern), 0, 320, 202, 2);
  EXPECT_EQ(oc.width(), 160);
  for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 1}, {158, 98}}) {
    EXPECT_EQ(sampleAt(x, y), uniformBayerPattern(x, y));
  }
}

TEST_F(PlaybackTest, BinningAveragesNeighboursOfAMonoCamera) {
  small.isColor = 0;
  rescan();
  show(drawnRecording(0, 320, 202, [](int x, int y) { return 4 * (x & 1) + 8 * (y & 1); }), 0, 320,
       202, 2);
  EXPECT_EQ(sampleAt(3, 3), 6);
}

TEST_F(PlaybackTest, BigEndianSamplesAreSupported) {
  Recording recording = randomRecording(8, 320, 202, 16, 4);
  recording.isHighByteFirst = 1;
  show(recording, 1);
  recording.isHighByteFirst = 0;
  EXPECT_TRUE(rendered(1) == recording.frame(1));
}

TEST_F(PlaybackTest, SamplesBeyondTheirDepthAreWhite) {
  Recording recording = drawnRecording(8, 320, 202, [](int, int) { return 0xffff; });
  recording.depth = 12;
  show(recording);
  EXPECT_EQ(sampleAt(0, 0), 255);
}

TEST_F(PlaybackTest, SyntheticSceneReturnsAfterPlayback) {
  ASSERT_EQ(open(0), 1) << error();
  const Bytes synthetic = rendered(3);
  const std::string file = write(randomRecording(8, 320, 202, 8).content());
  ASSERT_EQ(sdk.play_recording(file.c_str()), 1);
  EXPECT_FALSE(rendered(3) == synthetic);
  EXPECT_EQ(sdk.play_recording(nullptr), 1);
  EXPECT_TRUE(rendered(3) == synthetic);

  ASSERT_EQ(sdk.play_recording(file.c_str()), 1);
  oc.close();
  sdk.reset();
  rescan();
  ASSERT_EQ(open(0), 1) << error();
  EXPECT_TRUE(rendered(3) == synthetic);
}

TEST_F(PlaybackTest, CommandNamesAFileOfAnyName) {
  const Recording recording = randomRecording(8, 320, 202, 8);
  const std::string file = write(recording.content(), u8"caf\u00e9 \U0001F52D moon.ser");
  EXPECT_EQ(sdk.command(("sdk toupcam; scene nothing; sdk *; scene " + file + "; seed 5").c_str()),
            1);
  ASSERT_EQ(open(0), 1) << error();
  EXPECT_TRUE(rendered(0) == recording.frame(0));
  EXPECT_EQ(sdk.command("scene"), 0);
  EXPECT_EQ(sdk.command("scene no such file"), 0);
  EXPECT_TRUE(rendered(0) == recording.frame(0)) << "a failed command must change nothing";
}

TEST_F(PlaybackTest, TruncatedRecordingPlaysItsCompleteFrames) {
  Recording recording = randomRecording(8, 320, 202, 8);
  for (const std::int32_t promised : {0, -5, 4, 2147483647}) {
    recording.frameCount = promised;
    const std::string content = recording.content();
    // Removes half of the last frame.
    ASSERT_EQ(sdk.play_recording(write(content.substr(0, content.size() - 30000)).c_str()), 1);
    ASSERT_EQ(open(0), 1) << error();
    EXPECT_TRUE(rendered(1) == recording.frame(1));
    EXPECT_TRUE(rendered(2) == recording.frame(0)) << "two frames are complete";
  }
}

struct Bad {
  const char* label;
  void (*spoil)(Recording& recording);
  const char* reason;
};

class PlaybackOfABadFile : public PlaybackTest, public ::testing::WithParamInterface<Bad> {};

TEST_P(PlaybackOfABadFile, IsRefusedAndTheSyntheticSceneStays) {
  ASSERT_EQ(open(0), 1) << error();
  const Bytes synthetic = rendered(0);
  Recording recording = randomRecording(8, 64, 48, 8);
  GetParam().spoil(recording);
  const std::string file = write(recording.content());
  ::testing::internal::CaptureStderr();
  const int result = sdk.play_recording(file.c_str());
  static_cast<void>(std::fflush(nullptr));
  const std::string said = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(result, 0);
  EXPECT_EQ(said.substr(0, said.find_last_not_of("\r\n") + 1),
            "ASICamera2: \"" + file + "\" cannot be played: " + GetParam().reason);
  EXPECT_TRUE(rendered(0) == synthetic);
}

constexpr const char* badSize = "its frames have a size that no camera has";
constexpr const char* badDepth = "its samples have a depth that is not from 1 to 16 bits";
constexpr const char* badColor = "its colours are of a kind that is not known here";

INSTANTIATE_TEST_SUITE_P(
    Files, PlaybackOfABadFile,
    ::testing::Values(
        Bad{"Mark", [](Recording& r) { r.mark = "LUCAM-RECORDEN"; }, "it is no SER recording"},
        Bad{"Width0", [](Recording& r) { r.width = 0; }, badSize},
        Bad{"WidthNegative", [](Recording& r) { r.width = -64; }, badSize},
        Bad{"HeightHuge", [](Recording& r) { r.height = 2147483647; }, badSize},
        Bad{"AreaHuge", [](Recording& r) { r.width = r.height = 65536; }, badSize},
        Bad{"Depth0", [](Recording& r) { r.depth = 0; }, badDepth},
        Bad{"Depth17", [](Recording& r) { r.depth = 17; }, badDepth},
        Bad{"ColorUnknown", [](Recording& r) { r.color = 16; }, badColor},
        Bad{"NoFrame", [](Recording& r) { r.frames.clear(); }, "it holds no whole frame"},
        Bad{"LargerThanTheFile", [](Recording& r) { r.width = 5000; }, "it holds no whole frame"}),
    [](const auto& instance) { return std::string(instance.param.label); });

TEST_F(PlaybackTest, FilesThatAreNoRecordingsAreRefused) {
  EXPECT_EQ(sdk.play_recording(""), 0);
  EXPECT_EQ(sdk.play_recording((directory.utf8() + "/missing.ser").c_str()), 0);
  EXPECT_EQ(sdk.play_recording(directory.utf8().c_str()), 0) << "a directory";
  EXPECT_EQ(sdk.play_recording(write("").c_str()), 0);
  EXPECT_EQ(sdk.play_recording(write("LUCAM-RECORDER").c_str()), 0);
  EXPECT_EQ(sdk.play_recording(write("this is a text file\n").c_str()), 0);
}

// A random header is either refused, or its frames can be read.
TEST_F(PlaybackTest, RandomHeadersAreHarmless) {
  const std::string good = randomRecording(8, 64, 48, 16).content();
  std::mt19937 random(11);
  ASSERT_EQ(open(0, 64, 48), 1) << error();
  int played = 0;
  for (int round = 0; round < 300; ++round) {
    std::string content = good;
    for (int change = 0; change < 2; ++change) {
      content[14 + random() % 28] = static_cast<char>(random() % 4 == 0 ? random() : random() % 20);
    }
    played += sdk.play_recording(write(content).c_str());
    EXPECT_EQ(rendered(round).size(), 64U * 48U);
  }
  EXPECT_GT(played, 10);
  EXPECT_LT(played, 290);
}

}  // namespace
}  // namespace orvane::testing
