// ToupTek cameras: discovery, open, read, controls, close.
#include <cmath>

#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

constexpr std::int64_t failure = -2147467259;  // E_FAIL
constexpr std::int64_t pending = -2147483638;  // E_PENDING

// The SDK's code of a Bayer pattern, formed as in its headers.
constexpr std::int32_t fourCc(char a, char b, char c, char d) {
  return a | b << 8 | c << 16 | d << 24;
}

SimCamera smallToupTekCamera() {
  SimCamera camera = smallCamera();
  camera.bayerPattern = fourCc('R', 'G', 'G', 'B');
  camera.gainMin = 100;
  camera.gainMax = 1000;
  return camera;
}

class ToupTek : public FamilyTest {
 protected:
  ToupTek() : FamilyTest("toupcam", smallToupTekCamera()) { gain = 150; }

  void forceMosaic(std::uint32_t code) { sdk.forceOutput("Toupcam_get_RawFormat", "fourCc", code); }

  int nextFrame() {
    sdk.advance_clock(100000);
    return readFrame();
  }
};

using ToupTekDiscovery = ToupTek;
using ToupTekOpen = ToupTek;
using ToupTekRead = ToupTek;
using ToupTekControls = ToupTek;
using ToupTekClose = ToupTek;

TEST_F(ToupTekDiscovery, CallsInOrderExposureBeforeGain) {
  forceMosaic(0x42474752);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(sdk.takeLog(),
            "Toupcam_EnumV2(buffer -> \"small\") = 1\n"
            "Toupcam_Open(\"small-0123\") = h1\n"
            "Toupcam_get_MaxBitDepth(h1) = 12\n"
            "Toupcam_get_RawFormat(h1 -> 1111967570, 8) = 0\n"
            "Toupcam_get_ExpTimeRange(h1 -> 32, 1000000000, 20000) = 0\n"
            "Toupcam_get_ExpoAGainRange(h1 -> 100, 1000, 100) = 0\n"
            "Toupcam_Close(h1)\n");
  EXPECT_EQ(libraries(), "toupcam");
  expectClean(sdk);
}

TEST_F(ToupTekDiscovery, EveryPropertyIsDescribed) {
  forceMosaic(0x42474752);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(info(0), R"({"id":0,"name":"small","maxWidth":320,"maxHeight":202,"bitDepth":12,)"
                     R"("pixelSizeUm":3.75,"isColor":true,"isCooled":false,"isUsb3Camera":true,)"
                     R"("isUsb3Host":true,"bins":[1],"formats":[0,1],"depths":[8,16],)"
                     R"("maxExposureUs":1000000000,"minGain":100,"maxGain":1000,"bayer":8})");
}

TEST_F(ToupTekDiscovery, BayerPatternsOfAllFourTexts) {
  const std::pair<std::int32_t, const char*> expected[] = {{fourCc('R', 'G', 'G', 'B'), "8"},
                                                           {fourCc('B', 'G', 'G', 'R'), "11"},
                                                           {fourCc('G', 'R', 'B', 'G'), "9"},
                                                           {fourCc('G', 'B', 'R', 'G'), "10"}};
  for (const auto& [code, bayer] : expected) {
    sdk.clear_faults();
    forceMosaic(static_cast<std::uint32_t>(code));
    EXPECT_EQ(oc.scan(), 1) << error();
    EXPECT_EQ(infoValue(0, "bayer"), bayer);
  }
}

TEST_F(ToupTekDiscovery, ColourCameraWithAnotherBayerPatternIsClosedAndFailsTheScan) {
  SimCamera second = small;
  setText(second.key, "other");
  sdk.setCameras({small, second});
  for (const std::uint32_t code : {0U, 0x59595959U, 0xFFFFFFFFU}) {
    sdk.clear_faults();
    sdk.takeLog();
    forceMosaic(code);
    EXPECT_EQ(oc.scan(), 0);
    EXPECT_EQ(error(), "Unsupported ToupTek raw mosaic");
    const std::string log = sdk.takeLog();
    EXPECT_NE(log.find("Toupcam_Close("), std::string::npos);
    EXPECT_EQ(log.find("\"other\") ="), std::string::npos)
        << "the scan must not examine the others";
    expectClean(sdk);
  }
}

TEST_F(ToupTekDiscovery, MonochromeCameraHasNoBayerCodeWhateverItReports) {
  small.isColor = 0;
  sdk.setCameras({small});
  for (const std::uint32_t code : {0x42474752U, 0U}) {
    sdk.clear_faults();
    forceMosaic(code);
    EXPECT_EQ(oc.scan(), 1);
    EXPECT_EQ(infoValue(0, "bayer"), "0");
    EXPECT_EQ(infoValue(0, "isColor"), "false");
    EXPECT_EQ(error(), "");
  }
}

TEST_F(ToupTekDiscovery, FailingRawFormatEndsTheScanForMonochromeCamerasToo) {
  small.isColor = 0;
  sdk.setCameras({small});
  sdk.forceResult("Toupcam_get_RawFormat", failure);
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(error(), "Toupcam_get_RawFormat: -2147467259");
  expectClean(sdk);
}

TEST_F(ToupTekDiscovery, PositiveResultsAreSuccesses) {
  sdk.forceOutput("Toupcam_get_RawFormat", "result", 1);
  sdk.forceOutput("Toupcam_get_ExpTimeRange", "result", 1);
  sdk.forceOutput("Toupcam_get_ExpoAGainRange", "result", 1);
  EXPECT_EQ(oc.scan(), 1) << error();
  EXPECT_EQ(infoValue(0, "maxExposureUs"), "1000000000");
  EXPECT_EQ(infoValue(0, "maxGain"), "1000");
}

TEST_F(ToupTekDiscovery, BitDepthDecidesTheFormats) {
  const std::pair<std::int64_t, const char*> depths[] = {
      {8, "[0]"}, {9, "[0,1]"}, {16, "[0,1]"}, {0, "[0]"}, {-2147467259, "[0]"}};
  for (const auto& [depth, formats] : depths) {
    sdk.clear_faults();
    sdk.forceResult("Toupcam_get_MaxBitDepth", depth);
    EXPECT_EQ(oc.scan(), 1);
    EXPECT_EQ(infoValue(0, "bitDepth"), std::to_string(depth));
    EXPECT_EQ(infoValue(0, "formats"), formats);
  }
}

TEST_F(ToupTekDiscovery, UsbFlagsDistinguishCameraAndPort) {
  small.isUsb3Host = 0;
  small.isCooled = 1;
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "isUsb3Camera"), "true");
  EXPECT_EQ(infoValue(0, "isUsb3Host"), "false");
  EXPECT_EQ(infoValue(0, "isCooled"), "true");
  sdk.forceOutput("Toupcam_EnumV2", "flag", 0x100);  // on a USB 2 port, no USB 3 camera
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "isUsb3Camera"), "false");
  EXPECT_EQ(infoValue(0, "isUsb3Host"), "false");
  sdk.clear_faults();
  sdk.forceOutput("Toupcam_EnumV2", "flag", 0);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "isUsb3Host"), "false");
}

TEST_F(ToupTekDiscovery, RangesThatFailStayZero) {
  sdk.forceResult("Toupcam_get_ExpTimeRange", failure);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "maxExposureUs"), "0");
  EXPECT_EQ(infoValue(0, "maxGain"), "1000");
  sdk.clear_faults();
  sdk.forceResult("Toupcam_get_ExpoAGainRange", failure);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "maxExposureUs"), "1000000000");
  EXPECT_EQ(infoValue(0, "maxGain"), "0");
  EXPECT_EQ(error(), "");
}

TEST_F(ToupTekDiscovery, RangesAreUnsigned) {
  sdk.forceOutput("Toupcam_get_ExpTimeRange", "nMax", 4294967295.0);
  sdk.forceOutput("Toupcam_get_ExpoAGainRange", "nMin", 40000);
  sdk.forceOutput("Toupcam_get_ExpoAGainRange", "nMax", 65535);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "maxExposureUs"), "4294967295");
  EXPECT_EQ(infoValue(0, "minGain"), "40000");
  EXPECT_EQ(infoValue(0, "maxGain"), "65535");
}

TEST_F(ToupTekDiscovery, PixelSizeIsWidenedFromSinglePrecision) {
  small.pixelSizeUm = 2.4;
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "pixelSizeUm"), "2.4");
}

TEST_F(ToupTekDiscovery, EntryWithoutAModelIsSkipped) {
  SimCamera second = small;
  setText(second.key, "other");
  setText(second.name, "second");
  sdk.setCameras({small, second});
  sdk.forceOutput("Toupcam_EnumV2", "model", 0);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "name"), "\"second\"");
  EXPECT_EQ(error(), "");
}

TEST_F(ToupTekDiscovery, CameraThatCannotBeOpenedIsAbsent) {
  SimCamera second = small;
  setText(second.key, "other");
  setText(second.name, "second");
  small.isBusy = 1;
  sdk.setCameras({small, second});
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "name"), "\"second\"");
  EXPECT_EQ(error(), "");
}

TEST_F(ToupTekDiscovery, OnlyTheFirst128EntriesAreExamined) {
  std::vector<SimCamera> many(130, small);
  for (std::size_t i = 0; i < many.size(); ++i) {
    setText(many[i].key, "small-" + std::to_string(i));
  }
  sdk.setCameras(many);
  EXPECT_EQ(oc.scan(), 128);
  EXPECT_EQ(error(), "");
  sdk.setCameras({small});
  sdk.forceOutput("Toupcam_EnumV2", "result", 4294967295.0);
  EXPECT_EQ(oc.scan(), 1) << "the other entries have no model";
}

TEST_F(ToupTekDiscovery, DisplayNamesOfOtherScripts) {
  for (const char* name : {"", "caméra", "天文相机", "🔭 scope"}) {
    setText(small.name, name);
    rescanWith(small);
    EXPECT_EQ(infoValue(0, "name"), '"' + std::string(name) + '"');
  }
}

TEST_F(ToupTekDiscovery, NameAndIdWithoutANulAreReadToTheEndOfTheirFields) {
  setText(small.name, std::string(64, 'n'));
  setText(small.key, std::string(64, 'k'));
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "name"), '"' + std::string(64, 'n') + '"');
  EXPECT_EQ(open(320, 202), 1) << error();
  EXPECT_NE(sdk.takeLog().find("Toupcam_Open(\"" + std::string(64, 'k') + "\") = h"),
            std::string::npos);
}

TEST_F(ToupTekDiscovery, NameOf63UnitsIsComplete) {
  setText(small.name, std::string(63, 'n'));
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "name"), '"' + std::string(63, 'n') + '"');
}

#ifdef _WIN32
TEST_F(ToupTekDiscovery, LoneSurrogateBecomesTheReplacementCharacter) {
  setText(small.name, "a\xed\xa0\x80z");
  rescanWith(small);
  EXPECT_EQ(infoValue(0, "name"), "\"a\xef\xbf\xbdz\"");
}
#endif

TEST_F(ToupTekOpen, CallsInOrderWithoutABinningCall) {
  ASSERT_EQ(oc.scan(), 1);
  sdk.takeLog();
  ASSERT_EQ(open(320, 202, 1, 1), 1) << error();
  EXPECT_EQ(sdk.takeLog(),
            "Toupcam_Open(\"small-0123\") = h2\n"
            "Toupcam_put_Option(h2, 4, 1) = 0\n"
            "Toupcam_put_Option(h2, 6, 1) = 0\n"
            "Toupcam_put_Roi(h2, 0, 0, 320, 202) = 0\n"
            "Toupcam_get_FinalSize(h2 -> 320, 202) = 0\n"
            "Toupcam_put_AutoExpoEnable(h2, 0) = 0\n"
            "Toupcam_put_ExpoTime(h2, 20000) = 1\n"
            "Toupcam_put_ExpoAGain(h2, 150) = 0\n"
            "Toupcam_put_Option(h2, 21, 5) = 0\n"
            "Toupcam_StartPullModeWithCallback(h2, null, null) = 0\n");
  EXPECT_EQ(oc.buffer_size(), 320 * 202 * 2);
}

TEST_F(ToupTekOpen, EightBitsForRaw8AndAValueAlreadySetIsASuccess) {
  ASSERT_EQ(oc.scan(), 1);
  sdk.takeLog();
  ASSERT_EQ(open(320, 202, 1, 0), 1) << error();
  EXPECT_NE(sdk.takeLog().find("Toupcam_put_Option(h2, 6, 0) = 1\n"), std::string::npos);
  EXPECT_EQ(oc.buffer_size(), 320 * 202);
}

TEST_F(ToupTekOpen, SizeThatTheSdkReportsBackIsUsed) {
  ASSERT_EQ(oc.scan(), 1);
  sdk.forceOutput("Toupcam_get_FinalSize", "width", 160);
  sdk.forceOutput("Toupcam_get_FinalSize", "height", 100);
  ASSERT_EQ(open(320, 202), 1);
  EXPECT_EQ(oc.width(), 160);
  EXPECT_EQ(oc.height(), 100);
  EXPECT_EQ(oc.buffer_size(), 160 * 100);
}

TEST_F(ToupTekOpen, OnlyBin1IsOffered) {
  ASSERT_EQ(oc.scan(), 1);
  expectOpenFailed(open(320, 202, 2), "Unsupported bin or format");
}

TEST_F(ToupTekOpen, OddRegionIsRefusedByTheSdk) {
  ASSERT_EQ(oc.scan(), 1);
  expectOpenFailed(open(319, 202), "ToupTek ROI: -2147024809");
}

TEST_F(ToupTekOpen, EveryFailingCallFailsTheOpenUnderItsLabelAndClosesWithoutAStop) {
  ASSERT_EQ(oc.scan(), 1);
  const std::vector<FailingCall> calls = {{"Toupcam_put_Option", "ToupTek RAW"},
                                          {"Toupcam_put_Roi", "ToupTek ROI"},
                                          {"Toupcam_get_FinalSize", "ToupTek size"},
                                          {"Toupcam_put_AutoExpoEnable", "ToupTek manual exposure"},
                                          {"Toupcam_put_ExpoTime", "ToupTek exposure"},
                                          {"Toupcam_put_ExpoAGain", "ToupTek gain"},
                                          {"Toupcam_StartPullModeWithCallback", "ToupTek start"}};
  int handle = 2;
  for (const FailingCall& call : calls) {
    expectOpenFailsAtEachOf({call}, failure, "-2147467259",
                            "Toupcam_Close(h" + std::to_string(handle++) + ")\n");
  }
  sdk.forceResult("Toupcam_put_Option", -1, 2, 1);
  expectOpenFailed(open(320, 202), "ToupTek depth: -1");
  sdk.clear_faults();
  sdk.forceResult("Toupcam_put_Option", -2147467263, 3, 1);
  expectOpenFailed(open(320, 202), "ToupTek black level: -2147467263");
}

TEST_F(ToupTekOpen, PositiveResultsAreSuccesses) {
  ASSERT_EQ(oc.scan(), 1);
  for (const char* function :
       {"Toupcam_put_Option", "Toupcam_put_Roi", "Toupcam_put_AutoExpoEnable",
        "Toupcam_put_ExpoTime", "Toupcam_put_ExpoAGain"}) {
    sdk.forceOutput(function, "result", 1);
  }
  EXPECT_EQ(open(320, 202), 1) << error();
}

TEST_F(ToupTekOpen, NullHandleFailsAndNothingIsClosed) {
  ASSERT_EQ(oc.scan(), 1);
  sdk.takeLog();
  sdk.forceResult("Toupcam_Open", 0);
  expectOpenFailed(open(320, 202), "Toupcam_Open failed");
  EXPECT_EQ(sdk.takeLog(), "Toupcam_Open(\"small-0123\") = null\n");
}

TEST_F(ToupTekOpen, GainIsCheckedAfterTheExposureIsSet) {
  ASSERT_EQ(oc.scan(), 1);
  sdk.takeLog();
  gain = 65536;
  expectOpenFailed(open(320, 202), "ToupTek gain out of range");
  EXPECT_NE(sdk.takeLog().find("Toupcam_put_ExpoTime(h2, 20000) = 1\n"), std::string::npos);
}

TEST_F(ToupTekRead, OneCallWithPackedRowsAndTheFormatsBits) {
  openSmall(0);
  EXPECT_EQ(nextFrame(), 320 * 202);
  EXPECT_EQ(sdk.takeLog(), "Toupcam_PullImageWithRowPitch(h2, buffer, 8, -1 -> 320, 202) = 0\n");
  oc.close();
  openSmall(1);
  EXPECT_EQ(nextFrame(), 320 * 202 * 2);
  EXPECT_EQ(sdk.takeLog(), "Toupcam_PullImageWithRowPitch(h4, buffer, 16, -1 -> 320, 202) = 0\n");
}

TEST_F(ToupTekRead, FramesReachTheHostUnchanged) {
  for (const int format : {0, 1}) {
    openSmall(format);
    ASSERT_EQ(nextFrame(), oc.buffer_size());
    EXPECT_EQ(frame, sdkFrame(0, oc.buffer_size()));
    oc.close();
  }
}

TEST_F(ToupTekRead, NoFrameWaitingIsNoErrorAndDoesNotWait) {
  openSmall();
  EXPECT_EQ(readFrame(100000), 0);
  EXPECT_EQ(sdk.takeLog(), "Toupcam_PullImageWithRowPitch(h2, buffer, 8, -1) = -2147483638\n");
  EXPECT_EQ(error(), "");
  sdk.forceResult("Toupcam_PullImageWithRowPitch", pending, 1, 1);
  EXPECT_EQ(nextFrame(), 0);
}

TEST_F(ToupTekRead, OtherNegativeResultsAreErrorsAndPositiveOnesFrames) {
  openSmall();
  sdk.forceResult("Toupcam_PullImageWithRowPitch", failure, 1, 1);
  EXPECT_EQ(nextFrame(), -1);
  EXPECT_EQ(error(), "ToupTek pull frame: -2147467259");
  sdk.clear_faults();
  sdk.forceOutput("Toupcam_PullImageWithRowPitch", "result", 1);
  EXPECT_EQ(nextFrame(), 320 * 202);
}

TEST_F(ToupTekRead, AnotherSizeIsAChangeOfGeometry) {
  openSmall();
  const std::pair<const char*, double> changes[] = {
      {"width", 318}, {"height", 200}, {"width", 0}, {"height", 4294967295.0}};
  for (const auto& [output, value] : changes) {
    sdk.clear_faults();
    sdk.forceOutput("Toupcam_PullImageWithRowPitch", output, value);
    EXPECT_EQ(nextFrame(), -1);
    EXPECT_EQ(error(), "ToupTek frame geometry changed");
  }
  sdk.clear_faults();
  EXPECT_EQ(nextFrame(), 320 * 202) << "must still stream";
}

TEST_F(ToupTekRead, SizesStartAtZeroForASdkThatWritesNone) {
  openSmall();
  sdk.forceResult("Toupcam_PullImageWithRowPitch", 0);
  EXPECT_EQ(nextFrame(), -1);
  EXPECT_EQ(error(), "ToupTek frame geometry changed");
}

TEST_F(ToupTekControls, ModeExposureGainBlackLevelInOrder) {
  openSmall();
  EXPECT_EQ(oc.apply(5000, 200, 7), 1) << error();
  EXPECT_EQ(sdk.takeLog(),
            "Toupcam_put_AutoExpoEnable(h2, 0) = 1\n"
            "Toupcam_put_ExpoTime(h2, 5000) = 0\n"
            "Toupcam_put_ExpoAGain(h2, 200) = 0\n"
            "Toupcam_put_Option(h2, 21, 7) = 0\n");
}

TEST_F(ToupTekControls, GainBelowZeroOrAbove65535FailsAfterTheExposureIsSet) {
  openSmall();
  for (const int bad : {-1, 65536, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(oc.apply(5000, bad, 7), 0);
    EXPECT_EQ(error(), "ToupTek gain out of range");
    const std::string log = sdk.takeLog();
    EXPECT_NE(log.find("Toupcam_put_ExpoTime(h2, 5000)"), std::string::npos);
    EXPECT_EQ(log.find("Toupcam_put_ExpoAGain"), std::string::npos);
  }
}

TEST_F(ToupTekControls, Gains0And65535ArePassedOn) {
  openSmall();
  sdk.forceResult("Toupcam_put_ExpoAGain", 0);
  for (const int good : {0, 65535}) {
    EXPECT_EQ(oc.apply(5000, good, 7), 1) << error();
    EXPECT_NE(sdk.takeLog().find("Toupcam_put_ExpoAGain(h2, " + std::to_string(good) + ") = 0\n"),
              std::string::npos);
  }
}

TEST_F(ToupTekControls, BlackLevelIsPassedUnscaledAndANegativeOneToo) {
  openSmall(1);
  sdk.forceResult("Toupcam_put_Option", 0);
  EXPECT_EQ(oc.apply(5000, 200, -9), 1);
  EXPECT_NE(sdk.takeLog().find("Toupcam_put_Option(h2, 21, -9) = 0\n"), std::string::npos);
}

TEST_F(ToupTekControls, ModelWithoutABlackLevelFails) {
  small.offsetMax = -1;
  rescanWith(small);
  expectOpenFailed(open(320, 202), "ToupTek black level: -2147467263");
}

TEST_F(ToupTekControls, ExposureOutOfRangeFailsBeforeAnyCall) {
  openSmall();
  EXPECT_EQ(oc.apply(2147483648, 200, 7), 0);
  EXPECT_EQ(error(), "Exposure out of range");
  EXPECT_EQ(sdk.takeLog(), "");
}

TEST_F(ToupTekControls, TemperatureIsSignedTenths) {
  openSmall();
  const std::pair<int, double> readings[] = {{-32768, -3276.8}, {253, 25.3}, {-105, -10.5}};
  for (const auto& [tenths, celsius] : readings) {
    sdk.clear_faults();
    sdk.forceOutput("Toupcam_get_Temperature", "tenthsOfDegree", tenths);
    EXPECT_EQ(oc.temperature(), celsius);
  }
}

TEST_F(ToupTekControls, TemperatureThatFailsIsNanWithoutAMessage) {
  openSmall();
  sdk.forceResult("Toupcam_get_Temperature", -2147467263);
  EXPECT_TRUE(std::isnan(oc.temperature()));
  EXPECT_EQ(error(), "");
}

TEST_F(ToupTekClose, StopThenCloseResultIgnored) {
  openSmall();
  sdk.forceResult("Toupcam_Stop", failure);
  oc.close();
  EXPECT_EQ(sdk.takeLog(), "Toupcam_Stop(h2) = -2147467259\nToupcam_Close(h2)\n");
  EXPECT_EQ(error(), "");
  expectClosed();
  expectClean(sdk);
}

}  // namespace
}  // namespace orvane::testing
