// Opening a camera: the order of validation, the geometry, and the state after a failure. All cases
// use ZWO's SDK; the code under test is the same for every family.
#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

class Open : public AsiTest {
 protected:
  void SetUp() override { scan(); }

  // The SDK reports this size after the region was set.
  void reportSize(double width, double height) {
    onlyOutput("ASIGetROIFormat", "width", width);
    sdk.forceOutput("ASIGetROIFormat", "height", height);
  }
};

TEST_F(Open, IndexOutsideTheCatalogueFails) {
  for (const int index : {-1, 1}) {
    expectOpenFailed(oc.open(index, 320, 202, 1, 0, 20000, 150, 5), "Camera not found; rescan");
  }
  EXPECT_EQ(sdk.takeLog(), "");
}

TEST_F(Open, BadIndexClosesTheCameraThatWasStreaming) {
  ASSERT_EQ(open(), 1);
  sdk.takeLog();
  expectOpenFailed(oc.open(1, 320, 202, 1, 0, 20000, 150, 5), "Camera not found; rescan");
  EXPECT_EQ(sdk.takeLog(), "ASIStopVideoCapture(7) = 0\nASICloseCamera(7) = 0\n");
  expectClosed();
}

TEST_F(Open, BinOrFormatThatIsNotListedFails) {
  for (const auto& [bin, format] : {std::pair{3, 0}, {0, 0}, {-1, 0}, {1, 4}, {1, -1}}) {
    expectOpenFailed(open(320, 202, bin, format), "Unsupported bin or format");
  }
  expectOpenFailed(open(0, -5, 1, 4), "Unsupported bin or format");  // before the dimensions
  EXPECT_EQ(sdk.takeLog(), "");
}

TEST_F(Open, NegativeBinThatIsListedLeavesNoRegion) {
  small.bins[0] = -1;
  small.bins[1] = -2147483647 - 1;
  rescan();
  expectOpenFailed(open(320, 202, -1), "ROI is too small for binning");
  expectOpenFailed(open(320, 202, -2147483647 - 1), "ROI is too small for binning");
}

TEST_F(Open, DimensionsAreComparedWithTheUnbinnedSensor) {
  for (const auto& [width, height] : std::vector<std::pair<int, int>>{
           {0, 202}, {320, 0}, {-8, 202}, {320, -2}, {321, 202}, {320, 203}, {2147483647, 202}}) {
    expectOpenFailed(open(width, height), "Invalid capture dimensions");
  }
  EXPECT_EQ(sdk.takeLog(), "");
  EXPECT_EQ(open(320, 202, 2), 1) << "the full sensor at bin 2";
}

TEST_F(Open, BinnedSizesAreRoundedTo8And2) {
  small.width = 300;
  rescan();
  ASSERT_EQ(open(300, 202, 2), 1) << error();
  EXPECT_NE(sdk.takeLog().find("ASISetROIFormat(7, 144, 100, 2, 0) = 0\n"), std::string::npos);
  EXPECT_EQ(oc.width(), 144);
  EXPECT_EQ(oc.height(), 100);
  ASSERT_EQ(open(100, 51, 2), 1) << error();  // below the binned sensor: a binned size
  EXPECT_EQ(oc.width(), 96);
  EXPECT_EQ(oc.height(), 50);
}

TEST_F(Open, RegionThatRoundsToNothingFails) {
  expectOpenFailed(open(7, 202), "ROI is too small for binning");
  expectOpenFailed(open(320, 1), "ROI is too small for binning");
  EXPECT_EQ(sdk.takeLog(), "");
  EXPECT_EQ(open(8, 2), 1) << error();
}

TEST_F(Open, SizeThatTheSdkReportsBackIsUsed) {
  reportSize(160, 100);
  sdk.forceOutput("ASIGetROIFormat", "bin", 9);
  sdk.forceOutput("ASIGetROIFormat", "imageType", 9);
  ASSERT_EQ(open(320, 202, 1, 1), 1) << error();
  EXPECT_EQ(oc.width(), 160);
  EXPECT_EQ(oc.height(), 100);
  EXPECT_EQ(oc.buffer_size(), 160 * 100 * 2) << "in the requested format";
}

TEST_F(Open, FrameHasOneByteToTwoToThe30) {
  reportSize(1, 1);
  EXPECT_EQ(open(), 1) << error();
  EXPECT_EQ(oc.buffer_size(), 1);
  reportSize(32768, 32768);
  EXPECT_EQ(open(), 1) << error();
  EXPECT_EQ(oc.buffer_size(), 1 << 30);
  reportSize(214748365, 5);  // 2^30 + 1
  expectOpenFailed(open(), "Invalid frame buffer size");
}

TEST_F(Open, SizesThatOverflowOrAreZeroFail) {
  const double sizes[][2] = {{2147483647, 2147483647},
                             {-2147483648.0, -2147483648.0},
                             {65536, 65536},
                             {0, 202},
                             {320, 0},
                             {-320, 202},
                             {-2147483648.0, 3}};
  for (const auto& [width, height] : sizes) {
    reportSize(width, height);
    for (const int format : {0, 1, 2}) {
      expectOpenFailed(open(320, 202, 1, format), "Invalid frame buffer size");
    }
  }
}

TEST_F(Open, SensorSizesNearTheLargestInteger) {
  small.width = 2147483647;
  small.height = 2147483647;
  rescan();
  EXPECT_EQ(infoValue(0, "maxWidth"), "2147483647");
  expectOpenFailed(open(2147483647, 2147483647, 1, 2), "Invalid frame buffer size");
  EXPECT_NE(sdk.takeLog().find("ASISetROIFormat(7, 2147483640, 2147483646, 1, 1) = 0\n"),
            std::string::npos);
  small.width = -2147483647 - 1;
  rescan();
  expectOpenFailed(open(), "Invalid capture dimensions");
}

TEST_F(Open, SecondOpenClosesTheFirstCamera) {
  ASSERT_EQ(open(), 1);
  sdk.takeLog();
  ASSERT_EQ(open(160, 100), 1) << error();
  EXPECT_EQ(sdk.takeLog().substr(0, 75),
            "ASIStopVideoCapture(7) = 0\nASICloseCamera(7) = 0\nASIOpenCamera(7) = 0\nASIIn");
  EXPECT_EQ(oc.width(), 160);
}

TEST_F(Open, FailedOpenLeavesTheSizeItHadReached) {
  ASSERT_EQ(open(160, 100), 1);
  expectOpenFailed(open(0, 0), "Invalid capture dimensions");
  EXPECT_EQ(oc.width(), 160) << "geometry was not valid";
  EXPECT_EQ(oc.height(), 100);
  sdk.forceResult("ASIOpenCamera", 2);
  expectOpenFailed(open(320, 202, 2), "ASIOpenCamera: 2");
  EXPECT_EQ(oc.width(), 160) << "half of 320 at bin 2, stored before the device was asked";
  EXPECT_EQ(oc.height(), 100);
  sdk.clear_faults();
  sdk.forceOutput("ASIGetROIFormat", "width", 8);
  sdk.forceResult("ASIStartVideoCapture", 15);
  expectOpenFailed(open(), "ASIStartVideoCapture: 15");
  EXPECT_EQ(oc.width(), 8) << "as the SDK reported it";
}

}  // namespace
}  // namespace orvane::testing
