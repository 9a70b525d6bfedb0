// The settings log beside a recording.
#include "session/recording_log.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <vector>

#include "formats/ser_time.hpp"
#include "scratch_directory.hpp"

namespace orvane::host {

namespace {

using orvane::testing::contentOf;

RecordingFacts evening() {
  RecordingFacts facts;
  facts.program = "oc_capture 1.2.3";
  facts.sdks = {"ASICamera2", "qhyccd"};
  facts.camera.name = "ZWO ASI294MC Pro";
  facts.camera.bitDepth = 14;
  facts.file = "jupiter.ser";
  facts.target = "Jupiter\nsecond line";
  facts.layout = {640, 480, oc::Format::Raw16, oc::Bayer::Grbg};
  facts.region = Region{101, 202, 640, 480};
  facts.settings.bin = 1;
  facts.settings.exposureUs = 20000;
  facts.settings.gain = 120;
  facts.settings.offset = 30;
  facts.temperatureAtStart = -9.96;
  facts.start = *timeOfSerTicks(638'000'000'000'000'000);
  facts.end = facts.start + std::chrono::seconds(90);
  facts.frames = 4500;
  facts.droppedFrames = 2;
  facts.gaps = 1;
  facts.failedReads = 3;
  facts.framesPerSecond = 49.98765;
  return facts;
}

// Local times depend on the computer's time zone.
std::string withoutLocalTimes(const std::string& text) {
  return std::regex_replace(text, std::regex("_local=[^\n]*"), "_local=");
}

TEST(SettingsLog, HasOneKeyALine) {
  EXPECT_EQ(withoutLocalTimes(settingsLog(evening())),
            "program=oc_capture 1.2.3\n"
            "file=jupiter.ser\n"
            "camera=ZWO ASI294MC Pro\n"
            "sdk=ASICamera2, qhyccd\n"
            "observer=\n"
            "telescope=\n"
            "target=Jupiter second line\n"
            "filter=\n"
            "width=640\n"
            "height=480\n"
            "region=101,202,640x480\n"
            "bin=1\n"
            "format=raw16\n"
            "bit_depth=14\n"
            "bayer_pattern=GRBG\n"
            "exposure_us=20000\n"
            "gain=120\n"
            "offset=30\n"
            "temperature_start_c=-10.0\n"
            "temperature_end_c=\n"
            "start_utc=2022-09-28T22:13:20.000000Z\n"
            "start_local=\n"
            "middle_utc=2022-09-28T22:14:05.000000Z\n"
            "middle_local=\n"
            "end_utc=2022-09-28T22:14:50.000000Z\n"
            "end_local=\n"
            "frames=4500\n"
            "dropped_frames=2\n"
            "gaps=1\n"
            "failed_reads=3\n"
            "frames_per_second=49.988\n"
            "error=\n");
}

// A local time and its offset give the time in UTC again.
TEST(SettingsLog, LocalTimesHaveTheirOffset) {
  const auto time = *timeOfSerTicks(638'000'000'000'000'000);
  const std::string text = localText(time);
  std::smatch parts;
  ASSERT_TRUE(std::regex_match(text, parts, std::regex("(.{26})([+-])(\\d\\d):(\\d\\d)"))) << text;
  const auto minutes = std::chrono::minutes(60 * std::stoi(parts[3]) + std::stoi(parts[4]));
  const std::int64_t offset = (parts[2] == "-" ? -1 : 1) * std::int64_t{minutes.count()};
  EXPECT_EQ(serLocalTicks(time) - serTicks(time), offset * 600'000'000);
}

TEST(SettingsLog, EveryKeyIsInTheDocument) {
  const std::string document = contentOf(ORVANE_DOCS_DIR "/settings_log.md");
  std::istringstream lines(settingsLog(evening()));
  int keys = 0;
  for (std::string line; std::getline(lines, line); ++keys) {
    const std::string key = "`" + line.substr(0, line.find('=')) + "`";
    EXPECT_NE(document.find(key), std::string::npos) << key;
  }
  EXPECT_EQ(keys, 32);
}

}  // namespace

}  // namespace orvane::host
