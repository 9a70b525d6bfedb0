// ZWO ASI cameras: what differs from the other families. each_family_test.cpp has the rest.
#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

using Asi = AsiTest;

constexpr const char* exposureAndGain =
    "ASISetControlValue(7, 1, 5000, 0) = 0\n"
    "ASISetControlValue(7, 0, 20, 0) = 0\n";

TEST_F(Asi, FlagsAreTakenOneByOne) {
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

TEST_F(Asi, LaterControlOfATypeWins) {
  sdk.forceOutput("ASIGetControlCaps", "ControlType", 0, 3, 1);  // offset reports the type of gain
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(limits(), "1000000000 0 20");
}

TEST_F(Asi, NegativeLimitsStayNegative) {
  sdk.forceOutput("ASIGetControlCaps", "MaxValue", -5, 2, 1);
  sdk.forceOutput("ASIGetControlCaps", "MinValue", -7, 1, 1);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(limits(), "-5 -7 1000");
}

TEST_F(Asi, FormatsAreTranslatedAndUnknownOnesKept) {
  const std::int32_t formats[8] = {0, 1, 2, 3, -2, 4, 77, 1};
  std::memcpy(small.formats, formats, sizeof formats);
  rescan();
  EXPECT_EQ(infoValue(0, "formats"), "[0,2,1,3,-2,4,77,2]")
      << "all eight, although no end mark follows";
}

TEST_F(Asi, BinsEndAtTheFirstZeroOrAfterSixteen) {
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

TEST_F(Asi, UnknownFormatThatTheCameraListsIsPassedOnUnchanged) {
  small.formats[1] = 9;
  rescan();
  open(320, 202, 1, 9);
  EXPECT_NE(sdk.takeCallsOf("ASISetROIFormat").find("(7, 320, 202, 1, 9)"), std::string::npos);
}

TEST_F(Asi, ShortestExposureIsPassedOn) {
  openSmall();
  EXPECT_EQ(oc.apply(1, 20, 7), 1);
  EXPECT_EQ(sdk.takeLog().substr(0, 30), "ASISetControlValue(7, 1, 1, 0)");
}

TEST_F(Asi, EveryWritableOffsetControlIsSet) {
  openSmall();
  sdk.forceOutput("ASIGetControlCaps", "ControlType", 5, 1, 2);
  EXPECT_EQ(oc.apply(5000, 20, 7), 1);
  const std::string offset = "ASISetControlValue(7, 5, 7, 0) = 0\n";
  EXPECT_EQ(sdk.takeCallsOf("ASISetControlValue"), exposureAndGain + offset + offset + offset);
}

TEST_F(Asi, CameraWithoutAWritableOffsetIsNoError) {
  openSmall();
  sdk.forceOutput("ASIGetControlCaps", "IsWritable", 0);
  EXPECT_EQ(oc.apply(5000, 20, 7), 1);
  EXPECT_EQ(sdk.takeCallsOf("ASISetControlValue"), exposureAndGain);
  EXPECT_EQ(error(), "");
}

TEST_F(Asi, NoControlsAtAllIsNoError) {
  openSmall();
  for (const int count : {0, -1}) {
    onlyOutput("ASIGetNumOfControls", "count", count);
    EXPECT_EQ(oc.apply(5000, 20, 7), 1);
    EXPECT_EQ(sdk.takeCallsOf("ASIGetControlCaps"), "");
  }
}

TEST_F(Asi, AutoFlagIsIgnored) {
  openSmall();
  sdk.forceOutput("ASIGetControlValue", "value", 100);
  sdk.forceOutput("ASIGetControlValue", "isAuto", 1);
  EXPECT_EQ(oc.temperature(), 10.0);
}

}  // namespace
}  // namespace orvane::testing
