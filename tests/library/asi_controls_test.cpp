// Exposure, gain, offset and temperature of ZWO ASI cameras.
#include <cmath>

#include "library/asi_test.hpp"

namespace orvane::testing {
namespace {

using AsiApply = AsiTest;
using AsiTemperature = AsiTest;

// The calls that set a control.
std::string settings(const std::string& log) {
  std::string found;
  for (std::size_t start = 0; start < log.size();) {
    const std::size_t end = log.find('\n', start) + 1;
    if (log.compare(start, 18, "ASISetControlValue") == 0) {
      found += log.substr(start, end - start);
    }
    start = end;
  }
  return found;
}

TEST_F(AsiApply, ExposureThenGainThenOffsetEachNotAutomatic) {
  openSmall();
  EXPECT_EQ(oc.apply(5000, 20, 7), 1);
  EXPECT_EQ(settings(sdk.takeLog()),
            "ASISetControlValue(7, 1, 5000, 0) = 0\n"
            "ASISetControlValue(7, 0, 20, 0) = 0\n"
            "ASISetControlValue(7, 5, 7, 0) = 0\n");
  EXPECT_EQ(error(), "");
}

TEST_F(AsiApply, EveryControlIsQueriedEvenAfterTheOffset) {
  openSmall();
  EXPECT_EQ(oc.apply(5000, 20, 7), 1);
  const std::string log = sdk.takeLog();
  EXPECT_NE(log.find("ASIGetControlCaps(7, 12 ->"), std::string::npos) << log;
}

TEST_F(AsiApply, EveryWritableOffsetControlIsSet) {
  openSmall();
  sdk.forceOutput("ASIGetControlCaps", "ControlType", 5, 1, 2);
  EXPECT_EQ(oc.apply(5000, 20, 7), 1);
  EXPECT_EQ(settings(sdk.takeLog()),
            "ASISetControlValue(7, 1, 5000, 0) = 0\n"
            "ASISetControlValue(7, 0, 20, 0) = 0\n"
            "ASISetControlValue(7, 5, 7, 0) = 0\n"
            "ASISetControlValue(7, 5, 7, 0) = 0\n"
            "ASISetControlValue(7, 5, 7, 0) = 0\n");
}

TEST_F(AsiApply, CameraWithoutAWritableOffsetIsNoError) {
  openSmall();
  sdk.forceOutput("ASIGetControlCaps", "IsWritable", 0);
  EXPECT_EQ(oc.apply(5000, 20, 7), 1);
  EXPECT_EQ(settings(sdk.takeLog()),
            "ASISetControlValue(7, 1, 5000, 0) = 0\n"
            "ASISetControlValue(7, 0, 20, 0) = 0\n");
  EXPECT_EQ(error(), "");
}

TEST_F(AsiApply, CameraWithoutAnOffsetControlIsNoError) {
  SimCamera camera = smallAsiCamera();
  camera.offsetMax = -1;
  sdk.setCameras({camera});
  openSmall();
  EXPECT_EQ(oc.apply(5000, 20, 7), 1);
  EXPECT_EQ(error(), "");
}

TEST_F(AsiApply, NoControlsAtAllIsNoError) {
  openSmall();
  for (const int count : {0, -1}) {
    sdk.clear_faults();
    sdk.forceOutput("ASIGetNumOfControls", "count", count);
    EXPECT_EQ(oc.apply(5000, 20, 7), 1);
    EXPECT_EQ(sdk.takeLog().find("ASIGetControlCaps"), std::string::npos);
  }
}

TEST_F(AsiApply, ExposureOutOfRangeFailsBeforeAnyCall) {
  openSmall();
  for (const std::int64_t exposure : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{2147483648},
                                      std::int64_t{1} << 62, -(std::int64_t{1} << 32) + 1}) {
    EXPECT_EQ(oc.apply(exposure, 20, 7), 0);
    EXPECT_EQ(error(), "Exposure out of range");
    EXPECT_EQ(sdk.takeLog(), "");
  }
}

TEST_F(AsiApply, ShortestAndLongestExposureArePassedOn) {
  openSmall();
  EXPECT_EQ(oc.apply(1, 20, 7), 1);
  EXPECT_EQ(sdk.takeLog().substr(0, 30), "ASISetControlValue(7, 1, 1, 0)");
  EXPECT_EQ(oc.apply(2147483647, 20, 7), 1);
  EXPECT_EQ(sdk.takeLog().substr(0, 39), "ASISetControlValue(7, 1, 2147483647, 0)");
}

TEST_F(AsiApply, NegativeGainAndOffsetArePassedOn) {
  openSmall();
  EXPECT_EQ(oc.apply(5000, -20, -2147483647 - 1), 1);
  EXPECT_EQ(settings(sdk.takeLog()),
            "ASISetControlValue(7, 1, 5000, 0) = 0\n"
            "ASISetControlValue(7, 0, -20, 0) = 0\n"
            "ASISetControlValue(7, 5, -2147483648, 0) = 0\n");
}

TEST_F(AsiApply, FirstFailureEndsItAndEarlierSettingsStay) {
  openSmall();
  const struct {
    const char* function;
    int nth;
    const char* message;
    std::size_t settingsTried;
  } failures[] = {{"ASISetControlValue", 1, "ASI exposure: 8", 1},
                  {"ASISetControlValue", 2, "ASI gain: 8", 2},
                  {"ASIGetNumOfControls", 1, "ASI controls: 8", 2},
                  {"ASIGetControlCaps", 3, "ASI control caps: 8", 2},
                  {"ASIGetControlCaps", 4, "ASI control caps: 8", 3},
                  {"ASISetControlValue", 3, "ASI offset: 8", 3}};
  for (const auto& failure : failures) {
    sdk.clear_faults();
    sdk.takeLog();
    sdk.forceResult(failure.function, 8, failure.nth, 1);
    EXPECT_EQ(oc.apply(5000, 20, 7), 0);
    EXPECT_EQ(error(), failure.message);
    const std::string log = settings(sdk.takeLog());
    EXPECT_EQ(static_cast<std::size_t>(std::count(log.begin(), log.end(), '\n')),
              failure.settingsTried)
        << failure.message;
    EXPECT_EQ(readFrame(), 320 * 202) << "the camera must still stream";
  }
}

TEST_F(AsiTemperature, TenthsOfADegreeBecomeDegrees) {
  openSmall();
  const std::pair<int, double> readings[] = {{-105, -10.5}, {253, 25.3}, {0, 0.0}};
  for (const auto& [tenths, celsius] : readings) {
    sdk.clear_faults();
    sdk.forceOutput("ASIGetControlValue", "value", tenths);
    EXPECT_EQ(oc.temperature(), celsius);
    EXPECT_EQ(sdk.takeLog(), "ASIGetControlValue(7, 8 -> " + std::to_string(tenths) + ", 0) = 0\n");
  }
}

TEST_F(AsiTemperature, AutoFlagIsIgnored) {
  openSmall();
  sdk.forceOutput("ASIGetControlValue", "value", 100);
  sdk.forceOutput("ASIGetControlValue", "isAuto", 1);
  EXPECT_EQ(oc.temperature(), 10.0);
}

TEST_F(AsiTemperature, FailureIsNanWithoutAMessage) {
  openSmall();
  sdk.forceResult("ASIGetControlValue", 3);
  EXPECT_TRUE(std::isnan(oc.temperature()));
  EXPECT_EQ(error(), "");
}

TEST_F(AsiTemperature, NanBeforeAnyOpenAndAfterCloseWithoutACall) {
  EXPECT_TRUE(std::isnan(oc.temperature()));
  openSmall();
  oc.close();
  sdk.takeLog();
  EXPECT_TRUE(std::isnan(oc.temperature()));
  EXPECT_EQ(sdk.takeLog(), "");
}

TEST_F(AsiTemperature, UncooledCameraIsAskedToo) {
  openSmall();
  const double celsius = oc.temperature();
  EXPECT_GT(celsius, -60.0);
  EXPECT_LT(celsius, 100.0);
}

}  // namespace
}  // namespace orvane::testing
