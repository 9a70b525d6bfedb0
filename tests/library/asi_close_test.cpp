// Closing ZWO ASI cameras.
#include "library/asi_test.hpp"

namespace orvane::testing {
namespace {

using AsiClose = AsiTest;

TEST_F(AsiClose, StopThenClose) {
  openSmall();
  oc.close();
  EXPECT_EQ(sdk.takeLog(), "ASIStopVideoCapture(7) = 0\nASICloseCamera(7) = 0\n");
  expectClean(sdk);
}

TEST_F(AsiClose, BeforeAnyOpenAndTwiceInARowNothingHappens) {
  oc.apply(1000, 1, 1);
  oc.close();
  EXPECT_EQ(sdk.takeLog(), "");
  EXPECT_EQ(error(), "Camera closed");
  openSmall();
  oc.close();
  sdk.takeLog();
  oc.apply(1000, 1, 1);
  oc.close();
  EXPECT_EQ(sdk.takeLog(), "");
  EXPECT_EQ(error(), "Camera closed");
}

TEST_F(AsiClose, FailingStopAndCloseAreIgnored) {
  openSmall();
  sdk.forceResult("ASIStopVideoCapture", 16);
  sdk.forceResult("ASICloseCamera", 16);
  oc.close();
  EXPECT_EQ(sdk.takeLog(), "ASIStopVideoCapture(7) = 16\nASICloseCamera(7) = 16\n");
  EXPECT_EQ(error(), "");
  expectClosed();
}

TEST_F(AsiClose, MissingStopFunctionStillCloses) {
  const SdkDirectory lacking("lacking");
  lacking.add("ASICamera2", {"ASIStopVideoCapture"});
  oc.library_dir(lacking.utf8().c_str());
  const SimulatedSdk other(lacking.file("ASICamera2"));
  other.setCameras({smallAsiCamera()});
  ASSERT_EQ(oc.scan(), 1);
  ASSERT_EQ(oc.open(0, 320, 202, 1, 0, 20000, 10, 5), 1) << error();
  other.takeLog();
  oc.close();
  EXPECT_EQ(other.takeLog(), "ASICloseCamera(7) = 0\n");
  EXPECT_EQ(error(), "");
  expectClosed();
}

TEST_F(AsiClose, CameraCanBeOpenedAndScannedAgain) {
  openSmall();
  oc.close();
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), "");
  openSmall();
  EXPECT_EQ(readFrame(), 320 * 202);
}

}  // namespace
}  // namespace orvane::testing
