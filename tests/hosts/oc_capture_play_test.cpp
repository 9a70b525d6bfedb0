// "oc_capture play", run as a program, on recordings made here.
#include <fstream>
#include <nlohmann/json.hpp>

#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

class OcCapturePlay : public OcCaptureTest {
 protected:
  // Frames of 4 x 2 samples of 8 bits with the Bayer pattern GRBG, with these times in
  // milliseconds.
  void write(const std::vector<int>& milliseconds, std::int32_t promisedFrames) const {
    constexpr std::int64_t start = 638448448000000000;  // 2024-02-29 23:06:40 UTC
    const SerHeader header{9,      0,          4,        2,     8,    promisedFrames,
                           "Anna", "Camera 1", "80/480", start, start};
    std::string content = header.bytes();
    for (std::size_t frame = 0; frame < milliseconds.size(); ++frame) {
      content += "12345678";
    }
    for (const int moment : milliseconds) {
      content += serNumber(start + std::int64_t{10000} * moment);
    }
    std::ofstream(recording(), std::ios::binary) << content;
  }

  ProgramResult play(const CommandLine& more = {}) const {
    return run({"play", recording(), more});
  }

  // In quotation marks if it has spaces.
  std::string argument() const {
    return utf8(recording()).find(' ') == std::string::npos ? utf8(recording()) : name();
  }

  std::string name() const { return "\"" + utf8(recording()) + "\""; }
};

TEST_F(OcCapturePlay, TellsWhatTheRecordingHolds) {
  write({0, 20, 40, 60, 160, 180, 200}, 7);
  const ProgramResult result = expectSuccess(play());
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out,
            name() +
                ": 7 frames of 4 x 2, Bayer pattern GRBG, 8 bits\n"
                "Camera:    Camera 1\n"
                "Telescope: 80/480\n"
                "Observer:  Anna\n"
                "Start:     2024-02-29T23:06:40.000000 UTC\n"
                "Length:    0.200 s, 30.0 frames/s, usually 20.0 ms from frame to frame\n"
                "Gaps:      1, in which about 4 frames are missing; the longest, 100.0 ms, after "
                "frame 3\n");
}

TEST_F(OcCapturePlay, TheExposureInTheLogIsTheLeastFrameTime) {
  // Frames of 30 ms, of which some waited in a queue and came at once.
  write({0, 60, 61, 120, 121, 122, 300, 301, 302}, 9);
  EXPECT_PRED_FORMAT2(IsSubstring, "Gaps:      3, ", play().out);
  for (const auto& [log, gaps] : {std::pair{"file=x.ser\nexposure_us=30000\ngain=1\n", "1, "},
                                  {"exposure_us=\n30000\n", "3, "},
                                  {"exposure_us=-1\n", "3, "}}) {
    std::ofstream(scratch.file("recording.txt")) << log;
    EXPECT_PRED_FORMAT2(IsSubstring, std::string("Gaps:      ") + gaps, play().out) << log;
  }
}

TEST_F(OcCapturePlay, TellsTheSameInJson) {
  write({0, 20, 40, 60, 160, 180, 200}, 7);
  const ProgramResult result = expectSuccess(play({"--json --quiet"}));
  const auto document = nlohmann::ordered_json::parse(result.out);
  expectMembers(document, {{"file", utf8(recording())},
                           {"frames", 7},
                           {"width", 4},
                           {"height", 2},
                           {"colours", "Bayer pattern GRBG"},
                           {"depth", 8},
                           {"startUtc", "2024-02-29T23:06:40.000000"},
                           {"hasTimeStamps", true},
                           {"unusedBytes", 0},
                           {"sheet", nullptr}});
  const auto& timing = document["timing"];
  EXPECT_DOUBLE_EQ(timing["seconds"], 0.2);
  EXPECT_DOUBLE_EQ(timing["framesPerSecond"], 30);
  expectMembers(timing, {{"gaps", 1}, {"missedFrames", 4}, {"longestGapAfterFrame", 3}});
}

TEST_F(OcCapturePlay, MakesAContactSheet) {
  write(std::vector<int>(30, 5), 30);
  const auto sheet = scratch.file("caf\u00e9.png");
  const ProgramResult result = expectSuccess(play({"--flip --bayer none --out", sheet}));
  EXPECT_PRED_FORMAT2(IsSubstring, "Length:    unknown, the time stamps make no sense\n",
                      result.out);
  EXPECT_PRED_FORMAT2(IsSubstring, "Sheet:     \"" + utf8(sheet) + "\"\n", result.out);
  EXPECT_TRUE(isPng(sheet));

  EXPECT_EQ(play({"--out", sheet}).status, 2);
  EXPECT_EQ(play({"--overwrite --quiet --out", sheet}).out, "");
}

TEST_F(OcCapturePlay, ARecordingWithoutFramesOrTimes) {
  write({}, 0);
  const ProgramResult result = expectSuccess(play({"--out", preview()}));
  EXPECT_PRED_FORMAT2(IsSubstring, "0 frames of 4 x 2", result.out);
  EXPECT_PRED_FORMAT2(IsSubstring, "Length:    unknown, there are no time stamps\n", result.out);
  EXPECT_TRUE(std::filesystem::exists(preview()));

  // As a crash leaves it: frames that the header does not count.
  write({0, 20}, 0);
  EXPECT_PRED_FORMAT2(IsSubstring,
                      "Damage:    2 whole frames are behind those that it counts; to repair it: "
                      "oc_capture repair " +
                          argument() + "\n",
                      play().out);
}

TEST_F(OcCapturePlay, RefusesFilesThatLie) {
  std::ofstream(recording()) << "no recording";
  expectFailure(play(), 1, name() + " is no SER file.");
}

TEST_F(OcCapturePlay, RefusesACorrectionThatFitsNoBayerPattern) {
  write({0, 20}, 2);
  expectFailure(play({"--swap-rb --out", preview()}), 2, "--swap-rb needs frames in RGB.");
  EXPECT_FALSE(std::filesystem::exists(preview()));
}

TEST_F(OcCapturePlay, ReadsWhatRecordWrites) {
  sdks.add("ASICamera2");
  expectSuccess(record({"--format rgb24 --width 64 --height 48 --frames 5"}));
  const ProgramResult result = expectSuccess(play({"--swap-rb --out", scratch.file("sheet.png")}));
  EXPECT_TRUE(result.out.starts_with(
      name() + ": 5 frames of 64 x 48, RGB, 8 bits\nCamera:    ZWO ASI120MC-S\n"))
      << result.out;
}

}  // namespace

}  // namespace orvane::testing
