// QHYCCD cameras: discovery, open, read, controls, close.
#include <cmath>
#include <limits>

#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

constexpr std::int64_t qhyError = 0xFFFFFFFF;

SimCamera smallQhyCamera() {
  SimCamera camera = smallCamera();
  camera.bayerPattern = 4;  // RGGB
  camera.isCooled = 1;
  return camera;
}

class Qhy : public FamilyTest {
 protected:
  Qhy() : FamilyTest("qhyccd", smallQhyCamera()) {}

  // The memory length that the SDK reports: three bytes per pixel for a colour camera.
  static constexpr int memory = 320 * 202 * 3;

  // Waits until the SDK has a frame, and reads it.
  int nextFrame() {
    sdk.advance_clock(100000);
    return readFrame();
  }
};

using QhyDiscovery = Qhy;
using QhyOpen = Qhy;
using QhyRead = Qhy;
using QhyControls = Qhy;
using QhyClose = Qhy;

TEST_F(QhyDiscovery, CallsInOrderRecordBeforeCloseExposureBeforeGain) {
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(sdk.takeLog(),
            "InitQHYCCDResource() = 0\n"
            "ScanQHYCCD() = 1\n"
            "GetQHYCCDId(0 -> \"small-0123\") = 0\n"
            "GetQHYCCDModel(\"small-0123\" -> \"small\") = 0\n"
            "OpenQHYCCD(\"small-0123\") = h1\n"
            "SetQHYCCDStreamMode(h1, 1) = 0\n"
            "InitQHYCCD(h1) = 0\n"
            "GetQHYCCDChipInfo(h1 -> 1.2, 0.7575, 320, 202, 3.75, 3.75, 12) = 0\n"
            "IsQHYCCDControlAvailable(h1, 20) = 4\n"
            "IsQHYCCDControlAvailable(h1, 18) = 0\n"
            "IsQHYCCDControlAvailable(h1, 35) = 0\n"
            "IsQHYCCDControlAvailable(h1, 22) = 0\n"
            "IsQHYCCDControlAvailable(h1, 23) = 4294967295\n"
            "IsQHYCCDControlAvailable(h1, 24) = 4294967295\n"
            "GetQHYCCDParamMinMaxStep(h1, 8 -> 32, 1e+09, 1) = 0\n"
            "GetQHYCCDParamMinMaxStep(h1, 6 -> 0, 100, 1) = 0\n"
            "CloseQHYCCD(h1) = 0\n");
  EXPECT_EQ(libraries(), "qhyccd");
  expectClean(sdk);
}

TEST_F(QhyDiscovery, EveryPropertyIsDescribed) {
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(info(0), R"({"id":0,"name":"small","maxWidth":320,"maxHeight":202,"bitDepth":12,)"
                     R"("pixelSizeUm":3.75,"isColor":true,"isCooled":true,"isUsb3Camera":false,)"
                     R"("isUsb3Host":false,"bins":[1,2],"formats":[0,1],"depths":[8,16],)"
                     R"("maxExposureUs":1000000000,"minGain":0,"maxGain":100,"bayer":8})");
}

TEST_F(QhyDiscovery, AllCapabilitiesOrNone) {
  for (int i = 0; i < 4; ++i) {
    small.bins[i] = i + 1;
  }
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "bins"), "[1,2,3,4]");
  EXPECT_EQ(infoValue(0, "formats"), "[0,1]");
  small.bins[0] = 0;
  small.bitDepth = 8;
  small.isCooled = 0;
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "bins"), "[1]");
  EXPECT_EQ(infoValue(0, "formats"), "[0]");
  EXPECT_EQ(infoValue(0, "isCooled"), "false");
}

TEST_F(QhyDiscovery, CapabilityNeedsTheResultZero) {
  sdk.forceOutput("IsQHYCCDControlAvailable", "result", 1);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "isCooled"), "false");
  EXPECT_EQ(infoValue(0, "formats"), "[0]");
  EXPECT_EQ(infoValue(0, "bins"), "[1]");
  EXPECT_EQ(infoValue(0, "bayer"), "10") << "the query for colour has its own results";
}

TEST_F(QhyDiscovery, ColourResultsOneToFour) {
  const std::pair<std::int64_t, const char*> answers[] = {
      {0, "0"}, {1, "10"}, {2, "9"},          {3, "11"},
      {4, "8"}, {5, "0"},  {2147483648, "0"}, {qhyError, "0"}};
  for (const auto& [answer, bayer] : answers) {
    sdk.clear_faults();
    sdk.forceResult("IsQHYCCDControlAvailable", answer, 1, 1);
    EXPECT_EQ(oc.scan(), 1);
    EXPECT_EQ(infoValue(0, "bayer"), bayer) << answer;
    EXPECT_EQ(infoValue(0, "isColor"), std::string(bayer) == "0" ? "false" : "true") << answer;
  }
}

TEST_F(QhyDiscovery, LimitsAreTruncatedTowardZero) {
  small.gainMin = -1.9;
  small.gainMax = 99.9;
  small.exposureMaxUs = 3600000000.75;
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "minGain"), "-1");
  EXPECT_EQ(infoValue(0, "maxGain"), "99");
  EXPECT_EQ(infoValue(0, "maxExposureUs"), "3600000000");
}

TEST_F(QhyDiscovery, LimitsThatFitNoIntegerAreClamped) {
  const double infinity = std::numeric_limits<double>::infinity();
  const struct {
    double limit;
    const char* asGain;
    const char* asExposure;
  } limits[] = {{std::nan(""), "0", "0"},
                {infinity, "2147483647", "9223372036854775807"},
                {-infinity, "-2147483648", "-9223372036854775808"},
                {1e300, "2147483647", "9223372036854775807"},
                {-1e300, "-2147483648", "-9223372036854775808"},
                {2147483647.9, "2147483647", "2147483647"},
                {2147483648.0, "2147483647", "2147483648"},
                {-2147483648.9, "-2147483648", "-2147483648"},
                {-2147483649.5, "-2147483648", "-2147483649"},
                {9223372036854775808.0, "2147483647", "9223372036854775807"}};
  for (const auto& [limit, asGain, asExposure] : limits) {
    sdk.clear_faults();
    sdk.forceOutput("GetQHYCCDParamMinMaxStep", "maximum", limit);
    sdk.forceOutput("GetQHYCCDParamMinMaxStep", "minimum", limit);
    EXPECT_EQ(oc.scan(), 1);
    EXPECT_EQ(infoValue(0, "maxGain"), asGain) << limit;
    EXPECT_EQ(infoValue(0, "minGain"), asGain) << limit;
    EXPECT_EQ(infoValue(0, "maxExposureUs"), asExposure) << limit;
  }
}

TEST_F(QhyDiscovery, RangesThatFailStayZero) {
  sdk.forceResult("GetQHYCCDParamMinMaxStep", qhyError);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), "");
  EXPECT_EQ(infoValue(0, "maxGain"), "0");
  EXPECT_EQ(infoValue(0, "maxExposureUs"), "0");
}

TEST_F(QhyDiscovery, ResourcesAreInitialisedOnceAfterAFailedFirstAttempt) {
  sdk.forceResult("InitQHYCCDResource", qhyError, 1, 1);
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(error(), "InitQHYCCDResource: 4294967295");
  EXPECT_EQ(sdk.takeLog(), "InitQHYCCDResource() = 4294967295\n");
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(sdk.takeLog().substr(0, 25), "InitQHYCCDResource() = 0\n");
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(sdk.takeLog().substr(0, 17), "ScanQHYCCD() = 1\n");
}

TEST_F(QhyDiscovery, NoCamerasAreNoError) {
  sdk.setCameras({});
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(error(), "");
}

TEST_F(QhyDiscovery, CountsUpTo128AreExaminedAndMoreIsAFailure) {
  std::vector<SimCamera> many(130, small);
  for (std::size_t i = 0; i < many.size(); ++i) {
    setText(many[i].key, "small-" + std::to_string(i));
  }
  many.resize(128);
  sdk.setCameras(many);
  EXPECT_EQ(oc.scan(), 128);
  EXPECT_EQ(error(), "");
  for (const std::int64_t count : {std::int64_t{129}, qhyError, std::int64_t{2147483648}}) {
    sdk.clear_faults();
    sdk.forceResult("ScanQHYCCD", count);
    EXPECT_EQ(oc.scan(), 0);
    EXPECT_EQ(error(), "QHY scan failed");
  }
}

TEST_F(QhyDiscovery, FailingIdEndsTheScanAndKeepsTheCamerasBefore) {
  SimCamera second = small;
  setText(second.key, "other-1");
  sdk.setCameras({small, second});
  sdk.forceResult("GetQHYCCDId", qhyError, 2, 1);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), "GetQHYCCDId: 4294967295");
}

TEST_F(QhyDiscovery, FailingModelGivesTheMakersName) {
  sdk.forceResult("GetQHYCCDModel", qhyError);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "name"), "\"QHYCCD\"");
  EXPECT_EQ(error(), "");
}

TEST_F(QhyDiscovery, CameraThatCannotBeOpenedIsAbsent) {
  SimCamera second = small;
  setText(second.key, "other-1");
  setText(second.name, "second");
  small.isBusy = 1;
  sdk.setCameras({small, second});
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "name"), "\"second\"");
  EXPECT_EQ(error(), "");
}

TEST_F(QhyDiscovery, FailureOnAnOpenCameraClosesItAndEndsTheScan) {
  SimCamera second = small;
  setText(second.key, "other-1");
  for (const char* function : {"SetQHYCCDStreamMode", "InitQHYCCD", "GetQHYCCDChipInfo"}) {
    sdk.reset();
    sdk.stop_clock(1);
    sdk.log_enable(1);
    sdk.setCameras({small, second});
    if (std::string(function) != "SetQHYCCDStreamMode") {
      // The library initialises the SDK only once per process, but the reset has undone it.
      sdk.module.function<std::uint32_t()>("InitQHYCCDResource")();
    }
    sdk.takeLog();
    sdk.forceResult(function, qhyError);
    EXPECT_EQ(oc.scan(), 0);
    EXPECT_EQ(error(), std::string(function) + ": 4294967295");
    const std::string log = sdk.takeLog();
    const std::string last = "\nCloseQHYCCD(h1) = 0\n";
    ASSERT_GT(log.size(), last.size());
    EXPECT_EQ(log.substr(log.size() - last.size()), last) << log;
    expectClean(sdk);
  }
}

TEST_F(QhyDiscovery, TextsWithoutANulAreReadToTheEndOfTheirBuffers) {
  setText(small.key, std::string(256, 'k'));
  setText(small.name, std::string(256, 'm'));
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "name"), '"' + std::string(256, 'm') + '"');
  EXPECT_EQ(open(320, 202), 1) << error();
}

TEST_F(QhyOpen, CallsInOrderStreamModeBeforeInit) {
  ASSERT_EQ(oc.scan(), 1);
  sdk.takeLog();
  ASSERT_EQ(open(320, 202, 2, 1), 1) << error();
  EXPECT_EQ(sdk.takeLog(),
            "OpenQHYCCD(\"small-0123\") = h2\n"
            "SetQHYCCDStreamMode(h2, 1) = 0\n"
            "InitQHYCCD(h2) = 0\n"
            "SetQHYCCDBinMode(h2, 2, 2) = 0\n"
            "SetQHYCCDBitsMode(h2, 16) = 0\n"
            "SetQHYCCDResolution(h2, 0, 0, 160, 101) = 0\n"
            "GetQHYCCDMemLength(h2) = 193920\n"
            "SetQHYCCDParam(h2, 8, 20000) = 0\n"
            "SetQHYCCDParam(h2, 6, 10) = 0\n"
            "IsQHYCCDControlAvailable(h2, 7) = 0\n"
            "SetQHYCCDParam(h2, 7, 5) = 0\n"
            "BeginQHYCCDLive(h2) = 0\n");
  EXPECT_EQ(oc.width(), 160);
  EXPECT_EQ(oc.height(), 101);
  EXPECT_EQ(oc.buffer_size(), memory) << "the SDK's memory length is larger";
}

TEST_F(QhyOpen, EightBitsForEveryOtherFormat) {
  ASSERT_EQ(oc.scan(), 1);
  ASSERT_EQ(open(320, 202, 1, 0), 1);
  EXPECT_NE(sdk.takeLog().find("SetQHYCCDBitsMode(h2, 8) = 0\n"), std::string::npos);
}

TEST_F(QhyOpen, FrameIsTheSizeWhereTheMemoryLengthIsSmaller) {
  ASSERT_EQ(oc.scan(), 1);
  sdk.forceResult("GetQHYCCDMemLength", 10);
  ASSERT_EQ(open(320, 202, 1, 1), 1);
  EXPECT_EQ(oc.buffer_size(), 320 * 202 * 2);
}

TEST_F(QhyOpen, MemoryLengthIsNotCheckedButItsSizeIs) {
  ASSERT_EQ(oc.scan(), 1);
  sdk.forceResult("GetQHYCCDMemLength", qhyError);
  expectOpenFailed(open(320, 202), "Invalid frame buffer size");
  sdk.clear_faults();
  sdk.forceResult("GetQHYCCDMemLength", (1 << 30) + 1);
  expectOpenFailed(open(320, 202), "Invalid frame buffer size");
  sdk.clear_faults();
  sdk.forceResult("GetQHYCCDMemLength", 1 << 30);
  EXPECT_EQ(open(320, 202), 1);
  EXPECT_EQ(oc.buffer_size(), 1 << 30);
}

TEST_F(QhyOpen, EveryFailingCallFailsTheOpenUnderItsLabelAndClosesWithoutAStop) {
  ASSERT_EQ(oc.scan(), 1);
  const std::vector<FailingCall> calls = {
      {"SetQHYCCDStreamMode", "QHY stream mode"}, {"InitQHYCCD", "InitQHYCCD"},
      {"SetQHYCCDBinMode", "QHY binning"},        {"SetQHYCCDBitsMode", "QHY bit depth"},
      {"SetQHYCCDResolution", "QHY ROI"},         {"SetQHYCCDParam", "QHY exposure"},
      {"BeginQHYCCDLive", "BeginQHYCCDLive"}};
  int handle = 2;
  for (const FailingCall& call : calls) {
    expectOpenFailsAtEachOf({call}, qhyError, "4294967295",
                            "CloseQHYCCD(h" + std::to_string(handle++) + ") = 0\n");
  }
  sdk.forceResult("SetQHYCCDParam", 1, 2, 1);
  expectOpenFailed(open(320, 202), "QHY gain: 1");
  sdk.clear_faults();
  sdk.forceResult("SetQHYCCDParam", 4294967294, 3, 1);
  expectOpenFailed(open(320, 202), "QHY offset: 4294967294");
}

TEST_F(QhyOpen, NullHandleFailsAndNothingIsClosed) {
  ASSERT_EQ(oc.scan(), 1);
  sdk.takeLog();
  sdk.forceResult("OpenQHYCCD", 0);
  expectOpenFailed(open(320, 202), "OpenQHYCCD failed");
  EXPECT_EQ(sdk.takeLog(), "OpenQHYCCD(\"small-0123\") = null\n");
}

TEST_F(QhyRead, OneCallWithoutALengthOrAWait) {
  openSmall();
  EXPECT_EQ(nextFrame(), 320 * 202);
  EXPECT_EQ(sdk.takeLog(), "GetQHYCCDLiveFrame(h2, buffer -> 320, 202, 8, 1) = 0\n");
}

TEST_F(QhyRead, ResultIsTheSizeOfTheFrameAndMayBeBelowTheBufferSize) {
  openSmall();
  ASSERT_EQ(nextFrame(), 320 * 202);
  EXPECT_EQ(oc.buffer_size(), memory);
  const std::vector<std::uint8_t> expected = sdkFrame(0, 320 * 202);
  frame.resize(320 * 202);
  EXPECT_NE(frame, std::vector<std::uint8_t>(320 * 202, 0xA5));
  EXPECT_EQ(expected.size(), frame.size());
}

TEST_F(QhyRead, SixteenBitFramesReachTheHostUnchanged) {
  openSmall(1);
  sdk.advance_clock(20000);
  int count = readFrame();
  for (int tries = 0; count == 0 && tries < 100; ++tries) {
    sdk.advance_clock(1000);
    count = readFrame();
  }
  ASSERT_EQ(count, 320 * 202 * 2);
  frame.resize(320 * 202 * 2);
  EXPECT_EQ(frame, sdkFrame(0, 320 * 202 * 2));
}

TEST_F(QhyRead, FailedReadMeansNoFrame) {
  openSmall();
  EXPECT_EQ(readFrame(), 0) << "no frame yet";
  for (const std::int64_t code : {std::int64_t{1}, std::int64_t{4294967293}, qhyError}) {
    sdk.clear_faults();
    sdk.forceResult("GetQHYCCDLiveFrame", code);
    EXPECT_EQ(readFrame(), 0) << code;
  }
  EXPECT_EQ(error(), "");
}

TEST_F(QhyRead, AnyDifferenceInTheFrameIsAChangeOfGeometry) {
  openSmall();
  const std::pair<const char*, double> changes[] = {
      {"width", 319}, {"height", 203}, {"bitsPerPixel", 16}, {"channels", 3}, {"channels", 0}};
  for (const auto& [output, value] : changes) {
    sdk.clear_faults();
    sdk.forceOutput("GetQHYCCDLiveFrame", output, value);
    EXPECT_EQ(nextFrame(), -1);
    EXPECT_EQ(error(), "QHY frame geometry changed") << output;
  }
  sdk.clear_faults();
  EXPECT_EQ(nextFrame(), 320 * 202) << "must still stream";
}

TEST_F(QhyRead, SixteenBitFramesMustHaveSixteenBits) {
  openSmall(1);
  sdk.forceOutput("GetQHYCCDLiveFrame", "bitsPerPixel", 8);
  EXPECT_EQ(nextFrame(), -1);
  EXPECT_EQ(error(), "QHY frame geometry changed");
}

TEST_F(QhyControls, ExposureGainThenOffsetIfAvailable) {
  openSmall();
  sdk.forceResult("SetQHYCCDParam", 0);
  EXPECT_EQ(oc.apply(2147483647, -3, -2147483647 - 1), 1);
  EXPECT_EQ(sdk.takeLog(),
            "SetQHYCCDParam(h2, 8, 2147483647) = 0\n"
            "SetQHYCCDParam(h2, 6, -3) = 0\n"
            "IsQHYCCDControlAvailable(h2, 7) = 0\n"
            "SetQHYCCDParam(h2, 7, -2147483648) = 0\n");
}

TEST_F(QhyControls, CameraWithoutAnOffsetIsNoError) {
  small.offsetMax = -1;
  sdk.setCameras({small});
  openSmall();
  EXPECT_EQ(oc.apply(5000, 20, 7), 1);
  EXPECT_EQ(sdk.takeLog(),
            "SetQHYCCDParam(h2, 8, 5000) = 0\n"
            "SetQHYCCDParam(h2, 6, 20) = 0\n"
            "IsQHYCCDControlAvailable(h2, 7) = 4294967295\n");
  EXPECT_EQ(error(), "");
}

TEST_F(QhyControls, FirstFailureEndsItAndIsPrintedUnsigned) {
  openSmall();
  sdk.forceResult("SetQHYCCDParam", qhyError);
  EXPECT_EQ(oc.apply(5000, 20, 7), 0);
  EXPECT_EQ(error(), "QHY exposure: 4294967295");
  EXPECT_EQ(sdk.takeLog(), "SetQHYCCDParam(h2, 8, 5000) = 4294967295\n");
}

TEST_F(QhyControls, TemperatureIsPassedOnEvenIfItIsAnErrorNumber) {
  openSmall();
  sdk.forceOutput("GetQHYCCDParam", "result", -9.25);
  EXPECT_EQ(oc.temperature(), -9.25);
  EXPECT_EQ(sdk.takeLog(), "GetQHYCCDParam(h2, 14) = -9.25\n");
  sdk.clear_faults();
  sdk.forceResult("GetQHYCCDParam", qhyError);
  EXPECT_EQ(oc.temperature(), 4294967295.0);
}

TEST_F(QhyClose, StopThenCloseResultsIgnored) {
  openSmall();
  sdk.forceResult("StopQHYCCDLive", qhyError);
  sdk.forceResult("CloseQHYCCD", qhyError);
  oc.close();
  EXPECT_EQ(sdk.takeLog(), "StopQHYCCDLive(h2) = 4294967295\nCloseQHYCCD(h2) = 4294967295\n");
  EXPECT_EQ(error(), "");
  expectClosed();
}

}  // namespace
}  // namespace orvane::testing
