// Reading frames of ZWO ASI cameras.
#include "library/asi_test.hpp"

namespace orvane::testing {
namespace {

using AsiRead = AsiTest;

TEST_F(AsiRead, OneCallAFrameWithTheHostsBufferLengthAndWait) {
  openSmall();
  std::vector<std::uint8_t> larger(320 * 202 + 1000);
  EXPECT_EQ(oc.read(larger.data(), static_cast<int>(larger.size()), 540), 320 * 202);
  EXPECT_EQ(sdk.takeLog(), "ASIGetVideoData(7, buffer, 65640, 540) = 0\n");
}

TEST_F(AsiRead, FramesOfEveryFormatReachTheHostUnchanged) {
  for (const int format : {0, 1, 3}) {
    openSmall(format);
    for (int number = 0; number < 3; ++number) {
      ASSERT_EQ(readFrame(), oc.buffer_size());
      EXPECT_EQ(frame, sdkFrame(number, oc.buffer_size()))
          << "format " << format << ", frame " << number;
    }
    oc.close();
  }
}

TEST_F(AsiRead, ColourFramesHaveRedAndBlueSwapped) {
  openSmall(2);
  ASSERT_EQ(readFrame(), 320 * 202 * 3);
  const std::vector<std::uint8_t> sdkBytes = sdkFrame(0, oc.buffer_size());
  ASSERT_NE(frame, sdkBytes);
  for (std::size_t i = 0; i < frame.size(); i += 3) {
    ASSERT_EQ(frame[i], sdkBytes[i + 2]);
    ASSERT_EQ(frame[i + 1], sdkBytes[i + 1]);
    ASSERT_EQ(frame[i + 2], sdkBytes[i]);
  }
}

TEST_F(AsiRead, TimeOutIsNoErrorAndLeavesTheErrorText) {
  openSmall();
  EXPECT_EQ(oc.read(nullptr, 0, 0), -1);
  sdk.forceResult("ASIGetVideoData", 11);
  EXPECT_EQ(readFrame(), 0);
  EXPECT_EQ(error(), "Camera closed or buffer too small");
}

TEST_F(AsiRead, FrameThatDoesNotComeInTimeIsATimeOut) {
  openSmall();
  EXPECT_EQ(readFrame(0), 0);
  EXPECT_EQ(sdk.takeLog(), "ASIGetVideoData(7, buffer, 64640, 0) = 11\n");
  EXPECT_EQ(readFrame(100), 320 * 202);
}

TEST_F(AsiRead, EveryOtherCodeIsAnErrorAndTheCameraKeepsStreaming) {
  openSmall();
  for (const int code : {5, 9, 16, -3}) {
    sdk.clear_faults();
    sdk.forceResult("ASIGetVideoData", code, 1, 1);
    EXPECT_EQ(readFrame(), -1);
    EXPECT_EQ(error(), "ASIGetVideoData: " + std::to_string(code));
    EXPECT_EQ(sdk.invariants().streamsRunning, 1);
    EXPECT_EQ(readFrame(), 320 * 202);
  }
}

TEST_F(AsiRead, UnpluggedCameraIsAnError) {
  openSmall();
  sdk.set_plugged(0, 0);
  EXPECT_EQ(readFrame(), -1);
  EXPECT_EQ(error(), "ASIGetVideoData: 5");
}

TEST_F(AsiRead, BufferOfExactlyTheBufferSizeIsAccepted) {
  openSmall(1);
  std::vector<std::uint8_t> exact(static_cast<std::size_t>(oc.buffer_size()));
  EXPECT_EQ(oc.read(exact.data(), oc.buffer_size(), 1000), 320 * 202 * 2);
}

TEST_F(AsiRead, BufferThatIsTooSmallOrNullOrNegativeFailsWithoutACall) {
  openSmall();
  std::vector<std::uint8_t> buffer(320 * 202);
  const std::string message = "Camera closed or buffer too small";
  EXPECT_EQ(oc.read(buffer.data(), 320 * 202 - 1, 1000), -1);
  EXPECT_EQ(error(), message);
  EXPECT_EQ(oc.read(buffer.data(), -1, 1000), -1);
  EXPECT_EQ(oc.read(buffer.data(), -2147483647 - 1, 1000), -1);
  EXPECT_EQ(oc.read(nullptr, 320 * 202, 1000), -1);
  EXPECT_EQ(error(), message);
  EXPECT_EQ(sdk.takeLog(), "");
}

TEST_F(AsiRead, ReadBeforeAnyOpenAndAfterCloseFails) {
  std::uint8_t byte = 0;
  EXPECT_EQ(oc.read(&byte, 1, 0), -1);
  EXPECT_EQ(error(), "Camera closed or buffer too small");
  openSmall();
  oc.close();
  sdk.takeLog();
  std::vector<std::uint8_t> buffer(320 * 202);
  EXPECT_EQ(oc.read(buffer.data(), 320 * 202, 0), -1);
  EXPECT_EQ(error(), "Camera closed or buffer too small");
  EXPECT_EQ(sdk.takeLog(), "");
}

TEST_F(AsiRead, NothingIsWrittenPastTheFrame) {
  openSmall(2);
  std::vector<std::uint8_t> larger(320 * 202 * 3 + 64, 0xA5);
  EXPECT_EQ(oc.read(larger.data(), static_cast<int>(larger.size()), 1000), 320 * 202 * 3);
  for (std::size_t i = 320 * 202 * 3; i < larger.size(); ++i) {
    ASSERT_EQ(larger[i], 0xA5);
  }
}

TEST_F(AsiRead, MissingFunctionIsAnErrorOfTheRead) {
  const SdkDirectory lacking("lacking");
  lacking.add("ASICamera2", {"ASIGetVideoData"});
  // The test has loaded the complete SDK from another path. The library under test knows only the
  // incomplete one.
  oc.library_dir(lacking.utf8().c_str());
  const SimulatedSdk other(lacking.file("ASICamera2"));
  other.setCameras({smallAsiCamera()});
  ASSERT_EQ(oc.scan(), 1);
  ASSERT_EQ(oc.open(0, 320, 202, 1, 0, 20000, 10, 5), 1) << error();
  EXPECT_EQ(readFrame(), -1);
  EXPECT_EQ(error(), "ASICamera2: missing ASIGetVideoData");
  EXPECT_EQ(other.invariants().streamsRunning, 1);
}

}  // namespace
}  // namespace orvane::testing
