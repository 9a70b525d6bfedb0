// Opening ZWO ASI cameras: the order of validation, the geometry, the calls, and the state after a
// failure.
#include "library/asi_test.hpp"

namespace orvane::testing {
namespace {

class AsiOpen : public AsiTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(oc.scan(), 1);
    sdk.takeLog();
  }
};

TEST_F(AsiOpen, CallsInOrder) {
  ASSERT_EQ(open(320, 202, 1, 0), 1) << error();
  EXPECT_EQ(sdk.takeLog(),
            "ASIOpenCamera(7) = 0\n"
            "ASIInitCamera(7) = 0\n"
            "ASISetROIFormat(7, 320, 202, 1, 0) = 0\n"
            "ASISetStartPos(7, 0, 0) = 0\n"
            "ASIGetROIFormat(7 -> 320, 202, 1, 0) = 0\n"
            "ASISetControlValue(7, 1, 20000, 0) = 0\n"
            "ASISetControlValue(7, 0, 10, 0) = 0\n"
            "ASIGetNumOfControls(7 -> 13) = 0\n"
            "ASIGetControlCaps(7, 0 -> type 0 [0, 100] writable 1) = 0\n"
            "ASIGetControlCaps(7, 1 -> type 1 [32, 1000000000] writable 1) = 0\n"
            "ASIGetControlCaps(7, 2 -> type 5 [0, 20] writable 1) = 0\n"
            "ASISetControlValue(7, 5, 5, 0) = 0\n"
            "ASIGetControlCaps(7, 3 -> type 6 [40, 100] writable 1) = 0\n"
            "ASIGetControlCaps(7, 4 -> type 9 [0, 3] writable 1) = 0\n"
            "ASIGetControlCaps(7, 5 -> type 10 [0, 100] writable 1) = 0\n"
            "ASIGetControlCaps(7, 6 -> type 11 [1, 60000] writable 1) = 0\n"
            "ASIGetControlCaps(7, 7 -> type 12 [50, 160] writable 1) = 0\n"
            "ASIGetControlCaps(7, 8 -> type 13 [0, 1] writable 1) = 0\n"
            "ASIGetControlCaps(7, 9 -> type 14 [0, 1] writable 1) = 0\n"
            "ASIGetControlCaps(7, 10 -> type 8 [-500, 1000] writable 0) = 0\n"
            "ASIGetControlCaps(7, 11 -> type 3 [1, 99] writable 1) = 0\n"
            "ASIGetControlCaps(7, 12 -> type 4 [1, 99] writable 1) = 0\n"
            "ASIStartVideoCapture(7) = 0\n");
  EXPECT_EQ(oc.width(), 320);
  EXPECT_EQ(oc.height(), 202);
  EXPECT_EQ(oc.buffer_size(), 320 * 202);
  EXPECT_EQ(error(), "");
}

TEST_F(AsiOpen, ImageTypesAndBufferSizesOfAllFormats) {
  const int expected[][3] = {{0, 0, 1}, {1, 2, 2}, {2, 1, 3}, {3, 3, 1}};
  for (const auto& [format, imageType, bytes] : expected) {
    ASSERT_EQ(open(320, 202, 1, format), 1) << error();
    EXPECT_NE(sdk.takeLog().find("ASISetROIFormat(7, 320, 202, 1, " + std::to_string(imageType) +
                                 ") = 0\n"),
              std::string::npos)
        << format;
    EXPECT_EQ(oc.buffer_size(), 320 * 202 * bytes) << format;
  }
}

TEST_F(AsiOpen, UnknownFormatThatTheCameraListsIsPassedOnUnchanged) {
  SimCamera camera = smallAsiCamera();
  camera.formats[1] = 9;
  rescanWith(camera);
  open(320, 202, 1, 9);
  EXPECT_NE(sdk.takeLog().find("ASISetROIFormat(7, 320, 202, 1, 9)"), std::string::npos);
}

TEST_F(AsiOpen, IndexOutsideTheCatalogueFails) {
  expectOpenFailed(oc.open(-1, 320, 202, 1, 0, 20000, 10, 5), "Camera not found; rescan");
  expectOpenFailed(oc.open(1, 320, 202, 1, 0, 20000, 10, 5), "Camera not found; rescan");
  EXPECT_EQ(sdk.takeLog(), "");
}

TEST_F(AsiOpen, BadIndexClosesTheCameraThatWasStreaming) {
  ASSERT_EQ(open(320, 202), 1);
  sdk.takeLog();
  expectOpenFailed(oc.open(1, 320, 202, 1, 0, 20000, 10, 5), "Camera not found; rescan");
  EXPECT_EQ(sdk.takeLog(), "ASIStopVideoCapture(7) = 0\nASICloseCamera(7) = 0\n");
  expectClosed();
}

TEST_F(AsiOpen, OpenWithoutAScanFindsNoCamera) {
  LibraryUnderTest fresh;  // shares the catalogue of the process, so empty it
  sdk.setCameras({});
  ASSERT_EQ(fresh.scan(), 0);
  expectOpenFailed(fresh.open(0, 1, 1, 1, 0, 1, 0, 0), "Camera not found; rescan");
}

TEST_F(AsiOpen, BinOrFormatThatIsNotListedFails) {
  expectOpenFailed(open(320, 202, 3), "Unsupported bin or format");
  expectOpenFailed(open(320, 202, 0), "Unsupported bin or format");
  expectOpenFailed(open(320, 202, -1), "Unsupported bin or format");
  expectOpenFailed(open(320, 202, 1, 4), "Unsupported bin or format");
  expectOpenFailed(open(320, 202, 1, -1), "Unsupported bin or format");
  EXPECT_EQ(sdk.takeLog(), "");
}

TEST_F(AsiOpen, FormatIsCheckedBeforeTheDimensions) {
  expectOpenFailed(open(0, -5, 1, 4), "Unsupported bin or format");
}

TEST_F(AsiOpen, NegativeBinThatIsListedLeavesNoRegion) {
  SimCamera camera = smallAsiCamera();
  camera.bins[0] = -1;
  camera.bins[1] = -2147483647 - 1;
  rescanWith(camera);
  expectOpenFailed(open(320, 202, -1), "ROI is too small for binning");
  expectOpenFailed(open(320, 202, -2147483647 - 1), "ROI is too small for binning");
}

TEST_F(AsiOpen, DimensionsAreComparedWithTheUnbinnedSensor) {
  for (const auto& [width, height] : std::vector<std::pair<int, int>>{
           {0, 202}, {320, 0}, {-8, 202}, {320, -2}, {321, 202}, {320, 203}, {2147483647, 202}}) {
    expectOpenFailed(open(width, height), "Invalid capture dimensions");
  }
  EXPECT_EQ(sdk.takeLog(), "");
  EXPECT_EQ(open(320, 202, 2), 1) << "the full sensor at bin 2";
}

TEST_F(AsiOpen, FullSensorAtBin2GivesHalfOfItRoundedTo8And2) {
  SimCamera camera = smallAsiCamera();
  camera.width = 300;
  camera.height = 202;
  rescanWith(camera);
  ASSERT_EQ(open(300, 202, 2), 1) << error();
  EXPECT_NE(sdk.takeLog().find("ASISetROIFormat(7, 144, 100, 2, 0) = 0\n"), std::string::npos);
  EXPECT_EQ(oc.width(), 144);
  EXPECT_EQ(oc.height(), 100);
}

TEST_F(AsiOpen, RequestBelowTheBinnedSensorIsABinnedSize) {
  ASSERT_EQ(open(100, 51, 2), 1) << error();
  EXPECT_EQ(oc.width(), 96);
  EXPECT_EQ(oc.height(), 50);
}

TEST_F(AsiOpen, RegionThatRoundsToNothingFails) {
  expectOpenFailed(open(7, 202), "ROI is too small for binning");
  expectOpenFailed(open(320, 1), "ROI is too small for binning");
  EXPECT_EQ(sdk.takeLog(), "");
  EXPECT_EQ(open(8, 2), 1) << error();
}

TEST_F(AsiOpen, SizeThatTheSdkReportsBackIsUsed) {
  sdk.forceOutput("ASIGetROIFormat", "width", 160);
  sdk.forceOutput("ASIGetROIFormat", "height", 100);
  sdk.forceOutput("ASIGetROIFormat", "bin", 9);
  sdk.forceOutput("ASIGetROIFormat", "imageType", 9);
  ASSERT_EQ(open(320, 202, 1, 1), 1) << error();
  EXPECT_EQ(oc.width(), 160);
  EXPECT_EQ(oc.height(), 100);
  EXPECT_EQ(oc.buffer_size(), 160 * 100 * 2) << "in the requested format";
}

TEST_F(AsiOpen, FrameOfExactlyTwoToThe30BytesIsAccepted) {
  sdk.forceOutput("ASIGetROIFormat", "width", 32768);
  sdk.forceOutput("ASIGetROIFormat", "height", 32768);
  EXPECT_EQ(open(320, 202), 1) << error();
  EXPECT_EQ(oc.buffer_size(), 1 << 30);
}

TEST_F(AsiOpen, FrameOfOneByteMoreFails) {
  // 2^30 + 1 = 5 * 214748365.
  sdk.forceOutput("ASIGetROIFormat", "width", 214748365);
  sdk.forceOutput("ASIGetROIFormat", "height", 5);
  expectOpenFailed(open(320, 202), "Invalid frame buffer size");
}

TEST_F(AsiOpen, SizesThatOverflowOrAreZeroFail) {
  const double sizes[][2] = {{2147483647, 2147483647},
                             {-2147483648.0, -2147483648.0},
                             {65536, 65536},
                             {0, 202},
                             {320, 0},
                             {-320, 202},
                             {-2147483648.0, 3}};
  for (const auto& [width, height] : sizes) {
    sdk.clear_faults();
    sdk.forceOutput("ASIGetROIFormat", "width", width);
    sdk.forceOutput("ASIGetROIFormat", "height", height);
    for (const int format : {0, 1, 2}) {
      expectOpenFailed(open(320, 202, 1, format), "Invalid frame buffer size");
    }
  }
}

TEST_F(AsiOpen, SensorSizesNearTheLargestInteger) {
  SimCamera camera = smallAsiCamera();
  camera.width = 2147483647;
  camera.height = 2147483647;
  rescanWith(camera);
  EXPECT_EQ(infoValue(0, "maxWidth"), "2147483647");
  expectOpenFailed(open(2147483647, 2147483647, 1, 2), "Invalid frame buffer size");
  EXPECT_NE(sdk.takeLog().find("ASISetROIFormat(7, 2147483640, 2147483646, 1, 1) = 0\n"),
            std::string::npos);
  camera.width = -2147483647 - 1;
  rescanWith(camera);
  expectOpenFailed(open(320, 202), "Invalid capture dimensions");
}

TEST_F(AsiOpen, EveryFailingCallFailsTheOpenUnderItsLabelAndClosesWithoutAStop) {
  expectOpenFailsAtEachOf({{"ASIInitCamera", "ASIInitCamera"},
                           {"ASISetROIFormat", "ASISetROIFormat"},
                           {"ASISetStartPos", "ASISetStartPos"},
                           {"ASIGetROIFormat", "ASIGetROIFormat"},
                           {"ASISetControlValue", "ASI exposure"},
                           {"ASIGetNumOfControls", "ASI controls"},
                           {"ASIGetControlCaps", "ASI control caps"},
                           {"ASIStartVideoCapture", "ASIStartVideoCapture"}},
                          10, "10", "ASICloseCamera(7) = 0\n");
}

TEST_F(AsiOpen, GainAndOffsetFailuresHaveTheirOwnLabels) {
  sdk.forceResult("ASISetControlValue", 16, 2, 1);
  expectOpenFailed(open(320, 202), "ASI gain: 16");
  sdk.clear_faults();
  sdk.forceResult("ASISetControlValue", -7, 3, 1);
  expectOpenFailed(open(320, 202), "ASI offset: -7");
}

TEST_F(AsiOpen, DeviceThatCannotBeOpenedIsNotClosed) {
  sdk.forceResult("ASIOpenCamera", 5);
  expectOpenFailed(open(320, 202), "ASIOpenCamera: 5");
  EXPECT_EQ(sdk.takeLog(), "ASIOpenCamera(7) = 5\n");
}

TEST_F(AsiOpen, ExposureOutOfRangeFailsBeforeAnyControlIsSet) {
  for (const std::int64_t exposure :
       {std::int64_t{0}, std::int64_t{-1}, std::int64_t{2147483648}}) {
    EXPECT_EQ(oc.open(0, 320, 202, 1, 0, exposure, 10, 5), 0);
    EXPECT_EQ(error(), "Exposure out of range");
    EXPECT_EQ(sdk.takeLog().find("ASISetControlValue"), std::string::npos);
    expectClean(sdk);
  }
}

TEST_F(AsiOpen, SecondOpenClosesTheFirstCamera) {
  ASSERT_EQ(open(320, 202), 1);
  sdk.takeLog();
  ASSERT_EQ(open(160, 100), 1) << error();
  EXPECT_EQ(sdk.takeLog().substr(0, 75),
            "ASIStopVideoCapture(7) = 0\nASICloseCamera(7) = 0\nASIOpenCamera(7) = 0\nASIIn");
  EXPECT_EQ(oc.width(), 160);
}

TEST_F(AsiOpen, FailedOpenLeavesTheSizeItHadReached) {
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
  expectOpenFailed(open(320, 202), "ASIStartVideoCapture: 15");
  EXPECT_EQ(oc.width(), 8) << "as the SDK reported it";
}

TEST_F(AsiOpen, CleanSessionWorksAfterAFailedOne) {
  sdk.forceResult("ASIGetROIFormat", 4, 1, 1);
  expectOpenFailed(open(320, 202), "ASIGetROIFormat: 4");
  ASSERT_EQ(open(320, 202), 1) << error();
  EXPECT_EQ(readFrame(), 320 * 202);
  oc.close();
  expectClean(sdk);
}

}  // namespace
}  // namespace orvane::testing
