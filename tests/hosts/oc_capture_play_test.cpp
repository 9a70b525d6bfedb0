// "oc_capture play", run as a program, on recordings made here.
#include <fstream>
#include <nlohmann/json.hpp>

#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

std::string bytesOf(std::int64_t value, int count) {
  std::string text;
  for (int byte = 0; byte < count; ++byte) {
    text += static_cast<char>(static_cast<std::uint64_t>(value) >> (8 * byte) & 0xFFU);
  }
  return text;
}

class OcCapturePlay : public OcCaptureTest {
 protected:
  // Frames of 4 x 2 samples of 8 bits through a GRBG Bayer pattern, with these times in
  // milliseconds.
  void write(const std::vector<int>& milliseconds, std::int32_t promisedFrames) const {
    constexpr std::int64_t start = 638448448000000000;  // 2024-02-29 23:06:40 UTC
    const auto padded = [](const std::string& text) {
      return text + std::string(40 - text.size(), '\0');
    };
    std::string content = "LUCAM-RECORDER" + bytesOf(0, 4) + bytesOf(9, 4) + bytesOf(0, 4) +
                          bytesOf(4, 4) + bytesOf(2, 4) + bytesOf(8, 4) +
                          bytesOf(promisedFrames, 4) + padded("Anna") + padded("Camera 1") +
                          padded("80/480") + bytesOf(start, 8) + bytesOf(start, 8);
    for (std::size_t frame = 0; frame < milliseconds.size(); ++frame) {
      content += "12345678";
    }
    for (const int moment : milliseconds) {
      content += bytesOf(start + std::int64_t{10000} * moment, 8);
    }
    std::ofstream(recording(), std::ios::binary) << content;
  }

  ProgramResult play(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments{"play", utf8(recording())};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments);
  }

  std::string name() const { return "\"" + utf8(recording()) + "\""; }
};

TEST_F(OcCapturePlay, TellsWhatTheRecordingHolds) {
  write({0, 20, 40, 60, 160, 180, 200}, 7);
  const ProgramResult result = play();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out,
            name() +
                ": 7 frames of 4 x 2, mosaic GRBG, 8 bits\n"
                "Camera:    Camera 1\n"
                "Telescope: 80/480\n"
                "Observer:  Anna\n"
                "Start:     2024-02-29T23:06:40.000000 UTC\n"
                "Length:    0.200 s, 30.0 frames/s, usually 20.0 ms from frame to frame\n"
                "Gaps:      1, in which about 4 frames are missing; the longest, 100.0 ms, after "
                "frame 3\n");
}

TEST_F(OcCapturePlay, TellsTheSameInJson) {
  write({0, 20, 40, 60, 160, 180, 200}, 7);
  const ProgramResult result = play({"--json", "--quiet"});
  EXPECT_EQ(result.status, 0);
  const auto document = nlohmann::ordered_json::parse(result.out);
  EXPECT_EQ(document["file"], utf8(recording()));
  EXPECT_EQ(document["frames"], 7);
  EXPECT_EQ(document["width"], 4);
  EXPECT_EQ(document["height"], 2);
  EXPECT_EQ(document["colours"], "mosaic GRBG");
  EXPECT_EQ(document["depth"], 8);
  EXPECT_EQ(document["startUtc"], "2024-02-29T23:06:40.000000");
  EXPECT_EQ(document["hasTimeStamps"], true);
  EXPECT_DOUBLE_EQ(document["timing"]["seconds"], 0.2);
  EXPECT_DOUBLE_EQ(document["timing"]["framesPerSecond"], 30);
  EXPECT_EQ(document["timing"]["gaps"], 1);
  EXPECT_EQ(document["timing"]["missedFrames"], 4);
  EXPECT_EQ(document["timing"]["longestGapAfterFrame"], 3);
  EXPECT_EQ(document["unusedBytes"], 0);
  EXPECT_TRUE(document["sheet"].is_null());
}

TEST_F(OcCapturePlay, MakesAContactSheet) {
  write(std::vector<int>(30, 5), 30);
  const auto sheet = scratch.file("caf\u00e9.png");
  const ProgramResult result = play({"--out", utf8(sheet), "--flip", "--bayer", "none"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("Length:    unknown, the time stamps make no sense\n"),
            std::string::npos)
      << result.out;
  EXPECT_NE(result.out.find("Sheet:     \"" + utf8(sheet) + "\"\n"), std::string::npos);
  EXPECT_EQ(contentOf(sheet).substr(0, 8), "\x89PNG\r\n\x1a\n");

  EXPECT_EQ(play({"--out", utf8(sheet)}).status, 2);
  EXPECT_EQ(play({"--out", utf8(sheet), "--overwrite", "--quiet"}).out, "");
}

TEST_F(OcCapturePlay, ARecordingWithoutFramesOrTimes) {
  write({}, 0);
  ProgramResult result = play({"--out", utf8(preview())});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("0 frames of 4 x 2"), std::string::npos);
  EXPECT_NE(result.out.find("Length:    unknown, there are no time stamps\n"), std::string::npos);
  EXPECT_TRUE(std::filesystem::exists(preview()));

  // As a crash leaves it: frames that the header does not count.
  write({0, 20}, 0);
  result = play();
  EXPECT_NE(result.out.find("Unused:    32 bytes behind the frames and time stamps\n"),
            std::string::npos)
      << result.out;
}

TEST_F(OcCapturePlay, RefusesFilesThatLie) {
  write({0, 20}, 100);
  ProgramResult result = play();
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "oc_capture: " + name() +
                            " is cut short: its header promises 100 frames, and it holds 4.\n");
  std::ofstream(recording()) << "no recording";
  result = play();
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "oc_capture: " + name() + " is no SER file.\n");
}

TEST_F(OcCapturePlay, RefusesACorrectionThatFitsNoBayerPattern) {
  write({0, 20}, 2);
  const ProgramResult result = play({"--out", utf8(preview()), "--swap-rb"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "oc_capture: --swap-rb needs frames in RGB.\n");
  EXPECT_FALSE(std::filesystem::exists(preview()));
}

TEST_F(OcCapturePlay, ReadsWhatRecordWrites) {
  sdks.add("ASICamera2");
  ASSERT_EQ(run(recordArguments(
                    {"--format", "rgb24", "--width", "64", "--height", "48", "--frames", "5"}))
                .status,
            0);
  const ProgramResult result = play({"--swap-rb", "--out", utf8(scratch.file("sheet.png"))});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out.rfind(name() + ": 5 frames of 64 x 48, RGB, 8 bits\nCamera:    ZWO "
                                      "ASI120MC-S\n",
                             0),
            0U)
      << result.out;
}

}  // namespace

}  // namespace orvane::testing
