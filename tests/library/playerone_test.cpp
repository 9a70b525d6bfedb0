// Player One cameras: discovery, open, read, controls, close.
#include <cmath>

#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

class PlayerOne : public FamilyTest {
 protected:
  PlayerOne() : FamilyTest("PlayerOneCamera", smallCamera()) {}

  void expectRange(const char* minGain, const char* maxGain, const char* maxExposure) {
    EXPECT_EQ(infoValue(0, "minGain"), minGain);
    EXPECT_EQ(infoValue(0, "maxGain"), maxGain);
    EXPECT_EQ(infoValue(0, "maxExposureUs"), maxExposure);
  }
};

using PlayerOneDiscovery = PlayerOne;
using PlayerOneOpen = PlayerOne;
using PlayerOneRead = PlayerOne;
using PlayerOneControls = PlayerOne;
using PlayerOneClose = PlayerOne;

TEST_F(PlayerOneDiscovery, CallsInOrderGainBeforeExposure) {
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(sdk.takeLog(),
            "POAGetCameraCount() = 1\n"
            "POAGetCameraProperties(0 -> \"small\" id 7) = 0\n"
            "POAOpenCamera(7) = 0\n"
            "POAInitCamera(7) = 0\n"
            "POAGetConfigAttributesByConfigID(7, 1 -> [0, 100] writable 1) = 0\n"
            "POAGetConfigAttributesByConfigID(7, 0 -> [32, 1e+09] writable 1) = 0\n"
            "POACloseCamera(7) = 0\n");
  EXPECT_EQ(libraries(), "PlayerOneCamera");
  expectClean(sdk);
}

TEST_F(PlayerOneDiscovery, EveryPropertyIsDescribed) {
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(info(0), R"({"id":0,"name":"small","maxWidth":320,"maxHeight":202,"bitDepth":12,)"
                     R"("pixelSizeUm":3.75,"isColor":true,"isCooled":false,"isUsb3Camera":true,)"
                     R"("isUsb3Host":true,"bins":[1,2],"formats":[0,1,2,3],"depths":[8,16],)"
                     R"("maxExposureUs":1000000000,"minGain":0,"maxGain":100,"bayer":8})");
}

TEST_F(PlayerOneDiscovery, OneUsbFlagSetsBothOfOurs) {
  small.isUsb3Host = 0;
  small.isCooled = 1;
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "isUsb3Camera"), "false");
  EXPECT_EQ(infoValue(0, "isUsb3Host"), "false");
  EXPECT_EQ(infoValue(0, "isCooled"), "true");
}

TEST_F(PlayerOneDiscovery, NoCamerasOrANegativeCountGiveNoRecords) {
  sdk.setCameras({});
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(sdk.takeLog(), "POAGetCameraCount() = 0\n");
  sdk.forceResult("POAGetCameraCount", -1);
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(error(), "");
}

TEST_F(PlayerOneDiscovery, BayerCodesOfAllPatternsAndZeroForOthers) {
  const int expected[][2] = {{0, 8}, {1, 11}, {2, 9}, {3, 10}, {4, 0}, {-1, 0}, {77, 0}};
  for (const auto& [pattern, bayer] : expected) {
    small.isColor = 1;
    small.bayerPattern = pattern;
    rescanWith(small);
    EXPECT_EQ(infoValue(0, "bayer"), std::to_string(bayer)) << pattern;
    EXPECT_EQ(infoValue(0, "isColor"), "true");
    small.isColor = 0;
    rescanWith(small);
    EXPECT_EQ(infoValue(0, "bayer"), "0") << "monochrome, " << pattern;
  }
}

TEST_F(PlayerOneDiscovery, ListsThatBeginWithTheEndMarkAreEmpty) {
  small.bins[0] = 0;
  small.formats[0] = -1;
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "bins"), "[]");
  EXPECT_EQ(infoValue(0, "formats"), "[]");
}

TEST_F(PlayerOneDiscovery, EightBinsAndEightFormatsWithoutAnEndMark) {
  for (int i = 0; i < 8; ++i) {
    small.bins[i] = i + 1;
    small.formats[i] = 7 - i;
  }
  small.bins[8] = 9;
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "bins"), "[1,2,3,4,5,6,7,8]");
  EXPECT_EQ(infoValue(0, "formats"), "[7,6,5,4,3,2,1,0]");
}

TEST_F(PlayerOneDiscovery, NameWithoutANulIsReadToTheEndOfItsField) {
  setText(small.name, std::string(256, 'n'));
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "name"), '"' + std::string(256, 'n') + '"');
}

TEST_F(PlayerOneDiscovery, FailingPropertiesEndTheScanAndKeepTheCamerasBefore) {
  SimCamera second = small;
  second.id = 9;
  sdk.setCameras({small, second});
  sdk.forceResult("POAGetCameraProperties", -3, 2, 1);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), "POAGetCameraProperties: -3");
  expectClean(sdk);
}

TEST_F(PlayerOneDiscovery, CameraThatCannotBeOpenedIsListedWithoutRangesAndNotClosed) {
  small.isBusy = 1;
  sdk.setCameras({small});
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), "");
  const std::string log = sdk.takeLog();
  EXPECT_EQ(log.find("POACloseCamera"), std::string::npos) << log;
  expectRange("0", "0", "0");
  EXPECT_EQ(infoValue(0, "maxWidth"), "320");
}

TEST_F(PlayerOneDiscovery, CameraWhoseInitFailsIsClosedAndListedWithoutRanges) {
  sdk.forceResult("POAInitCamera", 16);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), "");
  expectRange("0", "0", "0");
  const std::string log = sdk.takeLog();
  EXPECT_EQ(log.substr(log.find("POAInitCamera")),
            "POAInitCamera(7) = 16\nPOACloseCamera(7) = 0\n");
  expectClean(sdk);
}

TEST_F(PlayerOneDiscovery, RangeThatFailsStaysZeroAndTheOtherIsRead) {
  sdk.forceResult("POAGetConfigAttributesByConfigID", 3, 2, 1);
  EXPECT_EQ(oc.scan(), 1);
  expectRange("0", "100", "0");
  sdk.clear_faults();
  sdk.forceResult("POAGetConfigAttributesByConfigID", 3, 1, 1);
  EXPECT_EQ(oc.scan(), 1);
  expectRange("0", "0", "1000000000");
  EXPECT_EQ(error(), "");
}

TEST_F(PlayerOneDiscovery, NegativeLimitsStayNegative) {
  sdk.forceOutput("POAGetConfigAttributesByConfigID", "minValue", -6, 1, 1);
  sdk.forceOutput("POAGetConfigAttributesByConfigID", "maxValue", -5, 2, 1);
  EXPECT_EQ(oc.scan(), 1);
  expectRange("-6", "100", "-5");
}

TEST_F(PlayerOneOpen, CallsInOrderSizeBeforePositionExposureBeforeGain) {
  ASSERT_EQ(oc.scan(), 1);
  sdk.takeLog();
  ASSERT_EQ(open(320, 202, 2, 1), 1) << error();
  EXPECT_EQ(sdk.takeLog(),
            "POAOpenCamera(7) = 0\n"
            "POAInitCamera(7) = 0\n"
            "POASetImageBin(7, 2) = 0\n"
            "POASetImageFormat(7, 1) = 0\n"
            "POASetImageSize(7, 160, 101) = 0\n"
            "POASetImageStartPos(7, 0, 0) = 0\n"
            "POAGetImageSize(7 -> 160, 100) = 0\n"
            "POASetConfig(7, 0, 20000, 0) = 0\n"
            "POASetConfig(7, 1, 10, 0) = 0\n"
            "POASetConfig(7, 7, 5, 0) = 0\n"
            "POAStartExposure(7, 0) = 0\n");
  EXPECT_EQ(oc.width(), 160);
  EXPECT_EQ(oc.height(), 100) << "as the SDK rounded it";
  EXPECT_EQ(oc.buffer_size(), 160 * 100 * 2);
}

TEST_F(PlayerOneOpen, FormatsArePassedUnchanged) {
  ASSERT_EQ(oc.scan(), 1);
  const int bytes[] = {1, 2, 3, 1};
  for (const int format : {0, 1, 2, 3}) {
    ASSERT_EQ(open(320, 202, 1, format), 1) << error();
    EXPECT_NE(sdk.takeLog().find("POASetImageFormat(7, " + std::to_string(format) + ") = 0\n"),
              std::string::npos);
    EXPECT_EQ(oc.buffer_size(), 320 * 202 * bytes[format]);
  }
}

TEST_F(PlayerOneOpen, WidthOf7IsRequestedUnchanged) {
  ASSERT_EQ(oc.scan(), 1);
  sdk.takeLog();
  sdk.forceOutput("POAGetImageSize", "width", 7);
  sdk.forceOutput("POAGetImageSize", "height", 5);
  EXPECT_EQ(open(7, 5), 1) << error();
  EXPECT_NE(sdk.takeLog().find("POASetImageSize(7, 7, 5) = 0\n"), std::string::npos);
  EXPECT_EQ(oc.width(), 7);
  EXPECT_EQ(oc.height(), 5);
}

TEST_F(PlayerOneOpen, RegionThatBinsToNothingFails) {
  ASSERT_EQ(oc.scan(), 1);
  small.height = 1;
  rescanWith(small);
  expectOpenFailed(open(320, 1, 2), "ROI is too small for binning");
}

TEST_F(PlayerOneOpen, EveryFailingCallFailsTheOpenUnderItsLabelAndClosesWithoutAStop) {
  ASSERT_EQ(oc.scan(), 1);
  expectOpenFailsAtEachOf({{"POAInitCamera", "POAInitCamera"},
                           {"POASetImageBin", "POASetImageBin"},
                           {"POASetImageFormat", "POASetImageFormat"},
                           {"POASetImageSize", "POASetImageSize"},
                           {"POASetImageStartPos", "POASetImageStartPos"},
                           {"POAGetImageSize", "POAGetImageSize"},
                           {"POASetConfig", "POA exposure"},
                           {"POAStartExposure", "POAStartExposure"}},
                          16, "16", "POACloseCamera(7) = 0\n");
  sdk.forceResult("POASetConfig", 7, 2, 1);
  expectOpenFailed(open(320, 202), "POA gain: 7");
  sdk.clear_faults();
  sdk.forceResult("POASetConfig", -7, 3, 1);
  expectOpenFailed(open(320, 202), "POA offset: -7");
}

TEST_F(PlayerOneOpen, DeviceThatCannotBeOpenedIsNotClosed) {
  ASSERT_EQ(oc.scan(), 1);
  sdk.takeLog();
  sdk.forceResult("POAOpenCamera", 6);
  expectOpenFailed(open(320, 202), "POAOpenCamera: 6");
  EXPECT_EQ(sdk.takeLog(), "POAOpenCamera(7) = 6\n");
}

TEST_F(PlayerOneRead, ReadinessThenDataWithTheHostsWait) {
  openSmall();
  sdk.advance_clock(100000);
  EXPECT_EQ(readFrame(540), 320 * 202);
  EXPECT_EQ(sdk.takeLog(),
            "POAImageReady(7 -> 1) = 0\nPOAGetImageData(7, buffer, 64640, 540) = 0\n");
}

TEST_F(PlayerOneRead, FrameThatIsNotReadyIsNotRequested) {
  openSmall();
  EXPECT_EQ(readFrame(1000), 0);
  EXPECT_EQ(sdk.takeLog(), "POAImageReady(7 -> 0) = 0\n");
  sdk.advance_clock(100000);
  sdk.forceOutput("POAImageReady", "isReady", 2);
  EXPECT_EQ(readFrame(1000), 0) << "only 1 is true";
}

TEST_F(PlayerOneRead, FramesOfEveryFormatAreUnchangedColourToo) {
  for (const int format : {0, 1, 2, 3}) {
    openSmall(format);
    for (int number = 0; number < 3; ++number) {
      sdk.advance_clock(20000);
      for (int tries = 0; readFrame() == 0 && tries < 100; ++tries) {
        sdk.advance_clock(1000);
      }
      EXPECT_EQ(frame, sdkFrame(number, oc.buffer_size())) << "format " << format;
    }
    oc.close();
  }
}

TEST_F(PlayerOneRead, TimeOutIsNoErrorAndOtherCodesAre) {
  openSmall();
  sdk.advance_clock(100000);
  sdk.forceResult("POAGetImageData", 9, 1, 1);
  EXPECT_EQ(readFrame(), 0);
  EXPECT_EQ(error(), "");
  sdk.clear_faults();
  sdk.forceResult("POAGetImageData", 11, 1, 1);
  EXPECT_EQ(readFrame(), -1);
  EXPECT_EQ(error(), "POAGetImageData: 11");
  sdk.clear_faults();
  sdk.forceResult("POAImageReady", 9, 1, 1);
  EXPECT_EQ(readFrame(), -1) << "9 is a time-out of POAGetImageData only";
  EXPECT_EQ(error(), "POAImageReady: 9");
  sdk.clear_faults();
  EXPECT_EQ(readFrame(), 320 * 202) << "must still stream";
}

TEST_F(PlayerOneRead, BufferOneByteTooSmallFailsWithoutACall) {
  openSmall();
  std::vector<std::uint8_t> buffer(320 * 202);
  EXPECT_EQ(oc.read(buffer.data(), 320 * 202 - 1, 0), -1);
  EXPECT_EQ(error(), "Camera closed or buffer too small");
  EXPECT_EQ(sdk.takeLog(), "");
}

TEST_F(PlayerOneControls, ExposureGainOffsetInOrderNegativeOnesToo) {
  openSmall();
  sdk.forceResult("POASetConfig", 0);
  EXPECT_EQ(oc.apply(2147483647, -3, -2147483647 - 1), 1);
  EXPECT_EQ(sdk.takeLog(),
            "POASetConfig(7, 0, 2147483647, 0) = 0\n"
            "POASetConfig(7, 1, -3, 0) = 0\n"
            "POASetConfig(7, 7, -2147483648, 0) = 0\n");
}

TEST_F(PlayerOneControls, FirstFailureEndsIt) {
  openSmall();
  sdk.forceResult("POASetConfig", 7, 2, 1);
  EXPECT_EQ(oc.apply(5000, 20, 7), 0);
  EXPECT_EQ(error(), "POA gain: 7");
  EXPECT_EQ(sdk.takeLog(), "POASetConfig(7, 0, 5000, 0) = 0\nPOASetConfig(7, 1, 20, 0) = 7\n");
}

TEST_F(PlayerOneControls, ExposureOutOfRangeFailsBeforeAnyCall) {
  openSmall();
  for (const std::int64_t exposure : {std::int64_t{0}, std::int64_t{2147483648}}) {
    EXPECT_EQ(oc.apply(exposure, 20, 7), 0);
    EXPECT_EQ(error(), "Exposure out of range");
  }
  EXPECT_EQ(sdk.takeLog(), "");
}

TEST_F(PlayerOneControls, TemperatureIsTheUnchangedDouble) {
  openSmall();
  sdk.forceOutput("POAGetConfig", "value", 21.37);
  EXPECT_EQ(oc.temperature(), 21.37);
  EXPECT_EQ(sdk.takeLog(), "POAGetConfig(7, 3 -> 21.37, 0) = 0\n");
}

TEST_F(PlayerOneControls, TemperatureThatFailsIsNanWithoutAMessage) {
  openSmall();
  sdk.forceResult("POAGetConfig", 3);
  EXPECT_TRUE(std::isnan(oc.temperature()));
  EXPECT_EQ(error(), "");
}

TEST_F(PlayerOneClose, StopThenCloseResultsIgnored) {
  openSmall();
  sdk.forceResult("POAStopExposure", 16);
  sdk.forceResult("POACloseCamera", 16);
  oc.close();
  EXPECT_EQ(sdk.takeLog(), "POAStopExposure(7) = 16\nPOACloseCamera(7) = 16\n");
  EXPECT_EQ(error(), "");
  expectClosed();
}

}  // namespace
}  // namespace orvane::testing
