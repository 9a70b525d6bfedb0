// ZWO ASI cameras: what differs from the other families. each_family_test.cpp has the rest.
#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

using AsiDiscovery = AsiTest;
using AsiOpen = AsiTest;
using AsiRead = AsiTest;
using AsiApply = AsiTest;
using AsiTemperature = AsiTest;

TEST_F(AsiDiscovery, FlagsAreTakenOneByOne) {
  const std::vector<std::string> flags = {"isColor", "isCooled", "isUsb3Camera", "isUsb3Host"};
  small.isColor = 0;
  small.isCooled = 1;
  small.isUsb3Camera = 1;
  small.isUsb3Host = 0;
  rescan();
  EXPECT_EQ(values(flags), "false true true false");
  small.isColor = 2;
  small.isCooled = 0;
  small.isUsb3Camera = 0;
  small.isUsb3Host = -1;
  rescan();
  EXPECT_EQ(values(flags), "true false false true") << "anything but 0 is true";
}

TEST_F(AsiDiscovery, CamerasAreListedInTheSdksOrderAndUsedByTheirIds) {
  sdk.setCameras({small, secondCamera()});
  ASSERT_EQ(oc.scan(), 2);
  EXPECT_EQ(infoValue(0, "name"), "\"small\"");
  EXPECT_EQ(infoValue(1, "name"), "\"second\"");
  sdk.takeLog();
  ASSERT_EQ(oc.open(1, 320, 202, 1, 0, 20000, 150, 5), 1);
  EXPECT_EQ(sdk.takeLog().substr(0, 20), "ASIOpenCamera(9) = 0");
}

TEST_F(AsiDiscovery, LaterControlOfATypeWins) {
  sdk.forceOutput("ASIGetControlCaps", "ControlType", 0, 3, 1);  // offset reports the type of gain
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(limits(), "1000000000 0 20");
}

TEST_F(AsiDiscovery, NegativeLimitsStayNegative) {
  sdk.forceOutput("ASIGetControlCaps", "MaxValue", -5, 2, 1);
  sdk.forceOutput("ASIGetControlCaps", "MinValue", -7, 1, 1);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(limits(), "-5 -7 1000");
}

TEST_F(AsiDiscovery, AnotherScanStartsWithAnEmptyCatalogue) {
  sdk.setCameras({small, secondCamera()});
  EXPECT_EQ(oc.scan(), 2);
  sdk.set_plugged(0, 0);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(infoValue(0, "name"), "\"second\"");
  EXPECT_EQ(info(1), "{}");
}

TEST_F(AsiDiscovery, FormatsAreTranslatedAndUnknownOnesKept) {
  const std::int32_t formats[8] = {0, 1, 2, 3, -2, 4, 77, 1};
  std::memcpy(small.formats, formats, sizeof formats);
  rescan();
  EXPECT_EQ(infoValue(0, "formats"), "[0,2,1,3,-2,4,77,2]")
      << "all eight, although no end mark follows";
}

TEST_F(AsiDiscovery, BinsEndAtTheFirstZeroOrAfterSixteen) {
  const std::int32_t four[16] = {1, 2, 3, 4, 0, 6};
  std::memcpy(small.bins, four, sizeof four);
  rescan();
  EXPECT_EQ(infoValue(0, "bins"), "[1,2,3,4]");
  for (int& bin : small.bins) {
    bin = -9;
  }
  rescan();
  EXPECT_EQ(infoValue(0, "bins"), "[-9,-9,-9,-9,-9,-9,-9,-9,-9,-9,-9,-9,-9,-9,-9,-9]");
}

TEST_F(AsiDiscovery, NameIsEscapedInTheDescription) {
  setText(small.name, "a\"b\\c\td\ne\xc3\xa9");
  rescan();
  EXPECT_EQ(infoValue(0, "name"), "\"a\\\"b\\\\cde\xc3\xa9\"");
}

TEST_F(AsiDiscovery, PixelSizesInTheRuntimesNumberFormat) {
  const std::pair<double, const char*> sizes[] = {{2.9, "2.9"}, {3.75, "3.75"},  {4.63, "4.63"},
                                                  {2.0, "2"},   {1e-7, "1e-07"}, {1e6, "1e+06"}};
  for (const auto& [micrometres, text] : sizes) {
    small.pixelSizeUm = micrometres;
    rescan();
    EXPECT_EQ(infoValue(0, "pixelSizeUm"), text);
  }
}

TEST_F(AsiDiscovery, DefaultCamerasAreListed) {
  sdk.reset();
  EXPECT_GE(oc.scan(), 3);
  EXPECT_EQ(error(), "");
  expectClean(sdk);
}

TEST_F(AsiOpen, UnknownFormatThatTheCameraListsIsPassedOnUnchanged) {
  small.formats[1] = 9;
  rescan();
  open(320, 202, 1, 9);
  EXPECT_NE(callsOf("ASISetROIFormat").find("(7, 320, 202, 1, 9)"), std::string::npos);
}

TEST_F(AsiRead, UnpluggedCameraIsAnError) {
  openSmall();
  sdk.set_plugged(0, 0);
  EXPECT_EQ(readFrame(), -1);
  EXPECT_EQ(error(), "ASIGetVideoData: 5");
}

TEST_F(AsiApply, ShortestExposureIsPassedOn) {
  openSmall();
  EXPECT_EQ(oc.apply(1, 20, 7), 1);
  EXPECT_EQ(sdk.takeLog().substr(0, 30), "ASISetControlValue(7, 1, 1, 0)");
}

TEST_F(AsiApply, EveryControlIsQueriedEvenAfterTheOffset) {
  openSmall();
  EXPECT_EQ(oc.apply(5000, 20, 7), 1);
  const std::string calls = callsOf("ASIGetControlCaps");
  EXPECT_NE(calls.find("ASIGetControlCaps(7, 12 ->"), std::string::npos) << calls;
}

TEST_F(AsiApply, ControlThatFailsAfterTheOffsetFailsTheCall) {
  openSmall();
  sdk.forceResult("ASIGetControlCaps", 8, 4, 1);
  EXPECT_EQ(oc.apply(5000, 20, 7), 0);
  EXPECT_EQ(error(), "ASI control caps: 8");
  EXPECT_EQ(callsOf("ASISetControlValue"),
            "ASISetControlValue(7, 1, 5000, 0) = 0\n"
            "ASISetControlValue(7, 0, 20, 0) = 0\n"
            "ASISetControlValue(7, 5, 7, 0) = 0\n");
}

TEST_F(AsiApply, EveryWritableOffsetControlIsSet) {
  openSmall();
  sdk.forceOutput("ASIGetControlCaps", "ControlType", 5, 1, 2);
  EXPECT_EQ(oc.apply(5000, 20, 7), 1);
  EXPECT_EQ(callsOf("ASISetControlValue"),
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
  EXPECT_EQ(callsOf("ASISetControlValue"),
            "ASISetControlValue(7, 1, 5000, 0) = 0\n"
            "ASISetControlValue(7, 0, 20, 0) = 0\n");
  EXPECT_EQ(error(), "");
}

TEST_F(AsiApply, CameraWithoutAnOffsetControlIsNoError) {
  small.offsetMax = -1;
  sdk.setCameras({small});
  openSmall();
  EXPECT_EQ(oc.apply(5000, 20, 7), 1);
  EXPECT_EQ(error(), "");
}

TEST_F(AsiApply, NoControlsAtAllIsNoError) {
  openSmall();
  for (const int count : {0, -1}) {
    onlyOutput("ASIGetNumOfControls", "count", count);
    EXPECT_EQ(oc.apply(5000, 20, 7), 1);
    EXPECT_EQ(callsOf("ASIGetControlCaps"), "");
  }
}

TEST_F(AsiTemperature, AutoFlagIsIgnored) {
  openSmall();
  sdk.forceOutput("ASIGetControlValue", "value", 100);
  sdk.forceOutput("ASIGetControlValue", "isAuto", 1);
  EXPECT_EQ(oc.temperature(), 10.0);
}

}  // namespace
}  // namespace orvane::testing
