// The exports before, between and after sessions with cameras: their results, and which of them
// change the error text.
#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

using Boundary = AsiTest;

TEST_F(Boundary, TextsAreEmptyAndSizesZeroBeforeAnyOtherCall) {
  EXPECT_STREQ(oc.error(), "");
  EXPECT_STREQ(oc.libraries(), "");
  EXPECT_EQ(oc.width(), 0);
  EXPECT_EQ(oc.height(), 0);
  EXPECT_EQ(oc.buffer_size(), 0);
}

TEST_F(Boundary, LibraryDirectoryTouchesNeitherErrorTextNorCatalogue) {
  ASSERT_EQ(oc.scan(), 1);
  EXPECT_EQ(oc.open(5, 1, 1, 1, 0, 1, 0, 0), 0);
  oc.library_dir("elsewhere");
  EXPECT_EQ(error(), "Camera not found; rescan");
  EXPECT_EQ(libraries(), "ASICamera2");
  EXPECT_NE(info(0), "{}");
}

TEST_F(Boundary, InfoOutsideTheCatalogueIsAnEmptyObjectAndLeavesTheErrorText) {
  EXPECT_EQ(info(0), "{}");
  EXPECT_EQ(info(-1), "{}");
  ASSERT_EQ(oc.scan(), 1);
  EXPECT_EQ(oc.open(5, 1, 1, 1, 0, 1, 0, 0), 0);
  for (const int index : {-1, 1, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(info(index), "{}") << index;
  }
  EXPECT_EQ(error(), "Camera not found; rescan");
}

TEST_F(Boundary, InfoReplacesTheTextOfTheCallBefore) {
  sdk.setCameras({small, secondCamera()});
  ASSERT_EQ(oc.scan(), 2);
  const char* text = oc.info(0);
  const std::string first = text;
  oc.info(2);
  EXPECT_EQ(text, first) << "a bad index leaves it";
  EXPECT_NE(first, oc.info(1));
  EXPECT_EQ(first, oc.info(0));
}

TEST_F(Boundary, ScanIsRefusedWhileACameraIsOpenAndChangesNothing) {
  openSmall();
  const std::string before = info(0);
  EXPECT_EQ(oc.scan(), -1);
  EXPECT_EQ(error(), "Stop the preview before rescanning");
  EXPECT_EQ(sdk.takeLog(), "");
  EXPECT_EQ(info(0), before);
  EXPECT_EQ(libraries(), "ASICamera2");
  EXPECT_EQ(readFrame(), 320 * 202);
}

TEST_F(Boundary, WithoutACameraNoCallReachesTheSdk) {
  for (const bool wasOpen : {false, true}) {
    SCOPED_TRACE(wasOpen ? "after a close" : "before any open");
    if (wasOpen) {
      openSmall();
      oc.close();
      sdk.takeLog();
    }
    frame.resize(320 * 202);
    EXPECT_EQ(oc.read(frame.data(), 320 * 202, 0), -1);
    EXPECT_EQ(error(), "Camera closed or buffer too small");
    EXPECT_EQ(oc.apply(1000, 1, 1), 0);
    EXPECT_EQ(error(), "Camera closed");
    EXPECT_EQ(oc.apply(-1, 1, 1), 0);
    EXPECT_EQ(error(), "Camera closed") << "the exposure is checked later";
    const double celsius = oc.temperature();
    std::uint64_t bits = 0;
    std::memcpy(&bits, &celsius, sizeof bits);
    EXPECT_EQ(bits, 0x7FF8000000000000U) << "the quiet NaN";
    oc.close();
    EXPECT_EQ(error(), "Camera closed");
    EXPECT_EQ(sdk.takeLog(), "");
  }
}

TEST_F(Boundary, BufferThatIsTooSmallOrNullOrNegativeFailsWithoutACall) {
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

TEST_F(Boundary, NothingIsWrittenPastTheFrame) {
  openSmall(2);
  std::vector<std::uint8_t> larger(320 * 202 * 3 + 64, 0xA5);
  EXPECT_EQ(oc.read(larger.data(), static_cast<int>(larger.size()), 1000), 320 * 202 * 3);
  for (std::size_t i = 320 * 202 * 3; i < larger.size(); ++i) {
    ASSERT_EQ(larger[i], 0xA5);
  }
}

TEST_F(Boundary, OnlyOpenAndAScanThatIsNotRefusedEmptyTheErrorText) {
  openSmall();
  EXPECT_EQ(oc.read(nullptr, 0, 0), -1);
  const std::string message = "Camera closed or buffer too small";
  EXPECT_EQ(error(), message);
  EXPECT_GT(readFrame(), 0);
  EXPECT_EQ(error(), message) << "after a read that succeeded";
  EXPECT_EQ(oc.apply(20000, 150, 5), 1);
  EXPECT_EQ(error(), message) << "after an apply that succeeded";
  oc.temperature();
  oc.info(0);
  oc.libraries();
  oc.width();
  oc.buffer_size();
  oc.close();
  EXPECT_EQ(error(), message) << "after all others";
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(error(), "") << "after a scan";
  oc.apply(1000, 1, 1);
  EXPECT_EQ(error(), "Camera closed");
  EXPECT_EQ(open(), 1);
  EXPECT_EQ(error(), "") << "after an open";
}

TEST_F(Boundary, WidthAndHeightOutliveTheCloseAndBufferSizeDoesNot) {
  openSmall(1);
  EXPECT_EQ(oc.width(), 320);
  EXPECT_EQ(oc.height(), 202);
  EXPECT_EQ(oc.buffer_size(), 320 * 202 * 2);
  oc.close();
  EXPECT_EQ(oc.width(), 320);
  EXPECT_EQ(oc.height(), 202);
  EXPECT_EQ(oc.buffer_size(), 0);
}

}  // namespace
}  // namespace orvane::testing
