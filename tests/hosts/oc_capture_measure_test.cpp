// "oc_capture bench" and "oc_capture watch", run as a program.
#include <nlohmann/json.hpp>

#include "oc_capture_test.hpp"
#include "session/causes.hpp"

namespace orvane::testing {

namespace {

using nlohmann::ordered_json;

class OcCaptureMeasure : public OcCaptureAsiTest {
 protected:
  ProgramResult bench(const CommandLine& more, const std::string& simulator = "seed 5") const {
    return runWithSdks("bench", {"--width 64 --height 48 --exposure 2ms", more}, simulator);
  }

  // Watches the first camera and draws the chart.
  ProgramResult watch(const char* more, const std::string& simulator = "seed 5") const {
    return runWithSdks("watch",
                       {"--camera 0 --width 64 --height 48 --exposure 2ms --out", chart, more},
                       simulator);
  }

  const std::filesystem::path chart = scratch.file("caf\u00e9.png");
};

TEST_F(OcCaptureMeasure, BenchMeasuresEachFormatOfEachCamera) {
  const ProgramResult result = expectSuccess(bench({"--seconds 0.1 --json --quiet --out", chart}));
  EXPECT_EQ(result.err, "");
  const auto document = ordered_json::parse(result.out);
  expectMembers(document, {{"exposureUs", 2000}, {"chart", utf8(chart)}});
  std::string measured;
  for (const auto& entry : document["measurements"]) {
    measured += entry["camera"].get<std::string>().substr(7, 4) + " " +
                entry["format"].get<std::string>() + ", ";
    EXPECT_GT(entry["frames"], 0);
    EXPECT_GT(entry["framesPerSecond"], 0);
    const auto& waits = entry["waitMilliseconds"];
    EXPECT_LE(waits["p50"], waits["p90"]);
    EXPECT_LE(waits["p90"], waits["p99"]);
    EXPECT_LE(waits["p99"], waits["max"]);
    EXPECT_NEAR(entry["framesPerSecond"].get<double>() * entry["seconds"].get<double>(),
                entry["frames"].get<double>(), 0.01);
    EXPECT_EQ(entry["error"], "");
  }
  EXPECT_EQ(measured,
            "120M raw8, 120M rgb24, 120M mono8, 120M raw16, 294M raw8, 294M rgb24, 294M mono8, "
            "294M raw16, 2600 raw8, 2600 raw16, 290M raw8, 290M raw16, ");
  EXPECT_TRUE(isPng(chart));
}

TEST_F(OcCaptureMeasure, BenchShowsATable) {
  const ProgramResult result =
      expectSuccess(bench({"--seconds 0.1 --camera asi120 --format raw16 --discard 1"}));
  expectMatch(result.out,
              "Camera          Format  Size     Frames/s +MB/s +Not ready +Wait p50 ms +p90 +p99 "
              "+Longest\nZWO ASI120MC-S  raw16   64 x 48( +[0-9.]+){7}\n");
}

TEST_F(OcCaptureMeasure, BenchGoesOnAfterACameraThatFails) {
  const ProgramResult result = bench({"--seconds 0.05 --format raw8 --json --out", chart},
                                     "seed 5; force ASIStartVideoCapture 2 1 16");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "oc_capture: ZWO ASI294MC Pro, raw8: " +
                            host::explained("ASIStartVideoCapture: 16") + "\n");
  const auto document = ordered_json::parse(result.out);
  ASSERT_EQ(document["measurements"].size(), 4U);
  expectMembers(document["measurements"][1],
                {{"error", "ASIStartVideoCapture: 16"},
                 {"explanation", host::explained("ASIStartVideoCapture: 16")},
                 {"frames", 0}});
  EXPECT_GT(document["measurements"][2]["frames"], 0);
  EXPECT_TRUE(isPng(chart));
}

TEST_F(OcCaptureMeasure, BenchHoldsSettingsAgainstEveryCameraFirst) {
  expectFailure(bench({"--bin 3"}), 2, "ZWO ASI120MC-S has no bin 3; it offers 1, 2.");
}

TEST_F(OcCaptureMeasure, WatchTellsTheFramesStatistics) {
  const ProgramResult result =
      expectSuccess(watch("--format raw16 --gain 100 --frames 7 --json", stoppedClock));
  const ReferenceCamera reference(sdks, "ASICamera2", 64, 48, 1, 1, 2000, 100, 10);
  double sum = 0;
  int smallest = 65535;
  int largest = 0;
  int mostSaturated = 0;
  for (int number = 0; number < 7; ++number) {
    const Bytes frame = reference.frame(number);
    int saturated = 0;
    for (std::size_t at = 0; at < frame.size(); at += 2) {
      const int sample = frame[at] | frame[at + 1] << 8;
      sum += sample;
      smallest = std::min(smallest, sample);
      largest = std::max(largest, sample);
      saturated += sample >= 0xfff0 ? 1 : 0;  // 12 bits, shifted to the top
    }
    mostSaturated = std::max(mostSaturated, saturated);
  }
  const auto document = ordered_json::parse(result.out);
  EXPECT_NEAR(document["mean"].get<double>(), sum / (7 * 64 * 48), 1e-6);
  EXPECT_TRUE(document["lowestTemperature"].is_number());
  expectMembers(document, {{"camera", "ZWO ASI120MC-S"},
                           {"frames", 7},
                           {"min", smallest},
                           {"max", largest},
                           {"mostSaturatedPixels", mostSaturated},
                           {"plot", utf8(chart)},
                           {"error", ""}});
  EXPECT_TRUE(isPng(chart));
  expectMatch(result.err,
              "[0-9.]+ s, 7 frames, [-0-9.]+ \u00b0C, mean [0-9.]+, min [0-9]+, max "
              "[0-9]+, saturated [0-9]+\n");
}

TEST_F(OcCaptureMeasure, WatchEndsAfterItsTime) {
  const ProgramResult result = expectSuccess(watch("--seconds 0.2"));
  expectMatch(result.out,
              "Watched [0-9]+ frames in 0\\.[0-9] s: mean [0-9.]+, min [0-9]+, max [0-9]+, "
              "saturated pixels at most [0-9]+, [-0-9.]+ to [-0-9.]+ \u00b0C; plot \".*\"\\.\n");
  EXPECT_TRUE(isPng(chart));
}

TEST_F(OcCaptureMeasure, WatchOfACameraThatFailsShowsWhatCameBefore) {
  const ProgramResult result =
      watch("--seconds 100 --json --quiet", "clock stopped; seed 5; force ASIGetVideoData 4 -1 5");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, errorText("ASIGetVideoData: 5"));
  expectMembers(ordered_json::parse(result.out), {{"frames", 3}, {"error", "ASIGetVideoData: 5"}});
  EXPECT_TRUE(isPng(chart));
}

TEST_F(OcCaptureMeasure, WatchWithoutATemperature) {
  const ProgramResult result = expectSuccess(
      watch("--frames 2 --json --quiet", "clock stopped; force ASIGetControlValue 1 -1 3"));
  expectMembers(ordered_json::parse(result.out),
                {{"lowestTemperature", nullptr}, {"highestTemperature", nullptr}});
  EXPECT_TRUE(isPng(chart));
}

}  // namespace

}  // namespace orvane::testing
