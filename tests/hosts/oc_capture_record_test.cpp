// "oc_capture record", run as a program: what it records, against the simulators' own frames.
#include <chrono>
#include <regex>

#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

std::int64_t ticksNow() {
  const auto sinceEpoch = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::system_clock::now().time_since_epoch());
  return 621355968000000000 + 10 * sinceEpoch.count();
}

struct Format {
  const char* name;
  int code;
  int colorId;  // of the ZWO ASI120MC-S, whose Bayer pattern is GRBG
  int depth;
};

void PrintTo(const Format& format, std::ostream* stream) {
  *stream << format.name;
}

class OcCaptureRecordFormat : public OcCaptureAsiTest,
                              public ::testing::WithParamInterface<Format> {};

TEST_P(OcCaptureRecordFormat, HoldsTheCamerasFramesByteByByte) {
  const Format& format = GetParam();
  const std::int64_t before = ticksNow();
  const ProgramResult result =
      record({"--width 320 --height 240 --exposure 5ms --gain 40 --offset 7 --frames 12",
              "--observer Anna --telescope 80/480 --format", format.name});
  const std::int64_t after = ticksNow();
  ASSERT_EQ(result.status, 0) << result.err;
  expectMatch(result.out,
              R"(Recorded 12 frames of 320 x 240 )" + std::string(format.name) +
                  R"( in \d+\.\d s \(\d+\.\d fps\) to ".*"; preview ".*"\.\n(Gaps: .*\n)?)");

  const SerFile file(recording());
  EXPECT_EQ(file.fileId, "LUCAM-RECORDER");
  EXPECT_EQ(file.luId, 0);
  EXPECT_EQ(file.colorId, format.colorId);
  EXPECT_EQ(file.littleEndian, 0);
  EXPECT_EQ(file.width, 320);
  EXPECT_EQ(file.height, 240);
  EXPECT_EQ(file.depth, format.depth);
  EXPECT_EQ(file.frameCount, 12);
  EXPECT_EQ(file.observer, "Anna");
  EXPECT_EQ(file.instrument, "ZWO ASI120MC-S");
  EXPECT_EQ(file.telescope, "80/480");
  EXPECT_GE(file.startUtc, before);
  ASSERT_EQ(file.timeStamps.size(), 12U);
  std::int64_t earlier = file.startUtc;
  for (const std::int64_t stamp : file.timeStamps) {
    EXPECT_GE(stamp, earlier);
    earlier = stamp;
  }
  EXPECT_LE(earlier, after);
  EXPECT_EQ(file.unreadBytes, 0);

  const ReferenceCamera reference(sdks, "ASICamera2", 320, 240, 1, format.code, 5000, 40, 7);
  expectFrames(file, reference, 12);
  EXPECT_TRUE(isPng(preview()));
}

INSTANTIATE_TEST_SUITE_P(Record, OcCaptureRecordFormat,
                         ::testing::Values(Format{"raw8", 0, 9, 8}, Format{"raw16", 1, 9, 16},
                                           Format{"rgb24", 2, 100, 8}, Format{"mono8", 3, 0, 8}),
                         [](const auto& test) { return test.param.name; });

// The three makers whose SDKs do not wait: their clocks run here, and a frame that was missed is
// missed. What was recorded must still be the camera's frames, in their order.
class OcCaptureRecordPolling : public OcCaptureTest,
                               public ::testing::WithParamInterface<const char*> {};

TEST_P(OcCaptureRecordPolling, HoldsTheCamerasFramesInOrder) {
  const std::string baseName = GetParam();
  sdks.add(baseName);
  expectSuccess(record(
      {"--format raw8 --width 320 --height 240 --exposure 20ms --gain 100 --offset 5 --frames 6"},
      "seed 5"));

  const SerFile file(recording());
  ASSERT_EQ(file.frames.size(), 6U);
  const ReferenceCamera reference(sdks, baseName, 320, 240, 1, 0, 20000, 100, 5);
  int number = 0;
  for (const Bytes& frame : file.frames) {
    constexpr int farBehind = 2000;
    while (number < farBehind && frame != reference.frame(number)) {
      ++number;
    }
    ASSERT_LT(number, farBehind);
    ++number;
  }
}

INSTANTIATE_TEST_SUITE_P(Record, OcCaptureRecordPolling,
                         ::testing::Values("PlayerOneCamera", "qhyccd", "toupcam"),
                         [](const auto& test) { return test.param; });

class OcCaptureRecord : public OcCaptureAsiTest {
 protected:
  // Records frames of 64 x 48 pixels.
  ProgramResult recordSmall(const char* more, const std::string& simulator = stoppedClock,
                            const char* camera = "0") const {
    return record({"--width 64 --height 48", more}, simulator, camera);
  }
};

TEST_F(OcCaptureRecord, WithoutSettingsTakesTheCamerasOwn) {
  expectSuccess(record({"--frames 2"}, stoppedClock, "asi120"));
  const SerFile file(recording());
  EXPECT_EQ(file.width, 1280);
  EXPECT_EQ(file.height, 960);
  EXPECT_EQ(file.colorId, 9);
  // Gain: a third of 0 to 100. Offset 10, exposure 20 ms, bin 1, the first format: raw8.
  const ReferenceCamera reference(sdks, "ASICamera2", 1280, 960, 1, 0, 20000, 33, 10);
  expectFrames(file, reference, 2);
}

TEST_F(OcCaptureRecord, HoldsNoRangeAgainstTheUserThatTheCameraHasNotTold) {
  expectSuccess(recordSmall("--frames 1 --gain 70 --exposure 30ms",
                            "clock stopped; seed 5; force ASIOpenCamera 1 1 16"));
  const ReferenceCamera reference(sdks, "ASICamera2", 64, 48, 1, 0, 30000, 70, 10);
  expectFrames(SerFile(recording()), reference, 1);
}

TEST_F(OcCaptureRecord, WithoutALengthTakesAHundredFrames) {
  expectSuccess(recordSmall(""));
  EXPECT_EQ(SerFile(recording()).frameCount, 100);
}

TEST_F(OcCaptureRecord, TakesTheSizeThatTheCameraMakesOfIt) {
  expectSuccess(record({"--width 101 --height 51 --frames 1"}));
  const SerFile file(recording());
  EXPECT_EQ(file.width, 96);
  EXPECT_EQ(file.height, 50);
  EXPECT_EQ(file.unreadBytes, 0);
}

TEST_F(OcCaptureRecord, BinsTheSensor) {
  expectSuccess(record({"--bin 2 --frames 1"}));
  const SerFile file(recording());
  EXPECT_EQ(file.width, 640);
  EXPECT_EQ(file.height, 480);
}

TEST_F(OcCaptureRecord, MonoCamerasHaveNoBayerPattern) {
  expectSuccess(recordSmall("--format raw16 --frames 1", stoppedClock, "3"));
  const SerFile file(recording());
  EXPECT_EQ(file.colorId, 0);
  EXPECT_EQ(file.depth, 16);
}

TEST_F(OcCaptureRecord, EndsAfterTheSecondsThatWereGiven) {
  expectSuccess(recordSmall("--exposure 10ms --seconds 0.5", ""));
  const SerFile file(recording());
  EXPECT_GT(file.frameCount, 0);
  EXPECT_EQ(file.timeStamps.size(), static_cast<std::size_t>(file.frameCount));
}

TEST_F(OcCaptureRecord, TakesFileNamesOfAnyKind) {
  const auto path = scratch.file("caf\u00e9 \U0001F52D.SER");
  const ProgramResult result = expectSuccess(
      runWithSdks("record", {"--camera 0 --width 64 --height 48 --frames 1 --out", path}));
  EXPECT_EQ(SerFile(path).frameCount, 1);
  EXPECT_TRUE(std::filesystem::exists(scratch.file("caf\u00e9 \U0001F52D-preview.png")));
  EXPECT_PRED_FORMAT2(IsSubstring, utf8(path), result.out);
}

TEST_F(OcCaptureRecord, TellsItsProgress) {
  const ProgramResult result = expectSuccess(recordSmall("--frames 3"));
  // No terminal here: lines. The last one comes at the end of a recording however short.
  EXPECT_TRUE(std::regex_search(
      result.err,
      std::regex("(^|\n)3 frames, [0-9.]+ fps, [0-9.]+ MB/s, 0 not ready, [-0-9.]+ \u00b0C\n$")))
      << result.err;
  EXPECT_EQ(result.err.find('\r'), std::string::npos);
}

TEST_F(OcCaptureRecord, AsksForNothingThatItDoesNotNeed) {
  const auto log = scratch.file("calls");
  expectSuccess(recordSmall("--exposure 20ms --frames 1", "clock stopped; log " + utf8(log)));
  const std::string calls = contentOf(log);
  const std::string stream = calls.substr(calls.find("ASIStartVideoCapture"));
  // Twice the exposure and 500 ms is what the SDK may wait, less what has passed.
  EXPECT_TRUE(std::regex_search(
      stream, std::regex(R"(^ASIStartVideoCapture\(0\) = 0\r?\n)"
                         R"((.*\r?\n)?ASIGetControlValue.*\r?\n)"
                         R"(ASIGetVideoData\(0, buffer, 3072, (540|5[0-3]\d)\) = 0\r?\n)"
                         R"(ASIStopVideoCapture\(0\) = 0\r?\nASICloseCamera\(0\) = 0\r?\n$)")))
      << stream;
}

}  // namespace

}  // namespace orvane::testing
