// Player One cameras: what differs from the other families. each_family_test.cpp has the rest.
#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

class PlayerOne : public FamilyTest {
 protected:
  PlayerOne() : FamilyTest("PlayerOneCamera") {}
};

TEST_F(PlayerOne, OneUsbFlagSetsBothOfOurs) {
  small.isUsb3Host = 0;
  small.isCooled = 1;
  rescan();
  EXPECT_EQ(values({"isUsb3Camera", "isUsb3Host", "isCooled"}), "false false true");
}

TEST_F(PlayerOne, EightBinsAndEightFormatsWithoutAnEndMark) {
  for (int i = 0; i < 8; ++i) {
    small.bins[i] = i + 1;
    small.formats[i] = 7 - i;
  }
  small.bins[8] = 9;
  rescan();
  EXPECT_EQ(values({"bins", "formats"}), "[1,2,3,4,5,6,7,8] [7,6,5,4,3,2,1,0]");
}

TEST_F(PlayerOne, NegativeLimitsStayNegative) {
  sdk.forceOutput("POAGetConfigAttributesByConfigID", "minValue", -6, 1, 1);
  sdk.forceOutput("POAGetConfigAttributesByConfigID", "maxValue", -5, 2, 1);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(limits(), "-5 -6 1000");
}

TEST_F(PlayerOne, WidthOf7IsRequestedUnchanged) {
  scan();
  sdk.forceOutput("POAGetImageSize", "width", 7);
  sdk.forceOutput("POAGetImageSize", "height", 5);
  EXPECT_EQ(open(7, 5), 1) << error();
  EXPECT_EQ(sdk.takeCallsOf("POASetImageSize"), "POASetImageSize(7, 7, 5) = 0\n");
  EXPECT_EQ(oc.width(), 7);
  EXPECT_EQ(oc.height(), 5);
}

TEST_F(PlayerOne, RegionThatBinsToNothingFails) {
  small.height = 1;
  rescan();
  expectOpenFailed(open(320, 1, 2), "ROI is too small for binning");
}

TEST_F(PlayerOne, OnlyTheReadinessOneIsTrue) {
  openSmall();
  sdk.forceOutput("POAImageReady", "isReady", 2);
  EXPECT_EQ(nextFrame(), 0);
  EXPECT_EQ(sdk.takeLog(), "POAImageReady(7 -> 2) = 0\n");
}

}  // namespace
}  // namespace orvane::testing
