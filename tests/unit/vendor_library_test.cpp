// Loading SDK libraries, finding their functions, and the two result checks.
#include "vendors/vendor_library.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "doubles/scripted_platform.hpp"

namespace orvane {
namespace {

class VendorLibraryTest : public ::testing::Test {
 protected:
  void SetUp() override { script = {}; }

  scripted::Platform& script = scripted::platform();
  VendorLibrary library;
};

template <class Body>
std::string messageOf(Body body) {
  try {
    body();
  } catch (const std::runtime_error& failure) {
    return failure.what();
  }
  return "no failure";
}

int answer() {
  return 42;
}

TEST_F(VendorLibraryTest, IsLoadedOnceAndKeepsItsBaseName) {
  script.libraries["dir/qhyccd"];
  loadVendorLibrary(library, "qhyccd", "dir");
  EXPECT_NE(library.module, nullptr);
  EXPECT_EQ(library.name, "qhyccd");
  loadVendorLibrary(library, "qhyccd", "elsewhere");
  EXPECT_EQ(script.loads(), std::vector<std::string>{"dir/qhyccd"});
}

TEST_F(VendorLibraryTest, AFailedLoadIsSilentAndRetriedFromTheLatestDirectory) {
  loadVendorLibrary(library, "qhyccd", "dir");
  EXPECT_EQ(library.module, nullptr);
  EXPECT_EQ(library.name, "qhyccd");
  script.libraries["elsewhere/qhyccd"];
  loadVendorLibrary(library, "qhyccd", "elsewhere");
  EXPECT_NE(library.module, nullptr);
  EXPECT_EQ(script.loads(), (std::vector<std::string>{"dir/qhyccd", "elsewhere/qhyccd"}));
}

TEST_F(VendorLibraryTest, ResolveSymbolLooksAFunctionUpEveryTime) {
  script.libraries["dir/x"].add("answer", answer);
  loadVendorLibrary(library, "x", "dir");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(reinterpret_cast<int (*)()>(resolveSymbol(library, "answer"))(), 42);
  }
  EXPECT_EQ(script.lookups().size(), 3U);
}

TEST_F(VendorLibraryTest, ResolveSymbolReportsAMissingFunction) {
  script.libraries["dir/toupcam"];
  loadVendorLibrary(library, "toupcam", "dir");
  EXPECT_EQ(messageOf([&] { resolveSymbol(library, "Toupcam_Close"); }),
            "toupcam: missing Toupcam_Close");
}

TEST_F(VendorLibraryTest, ResolveSymbolReportsAnUnloadedLibraryInTheSameForm) {
  EXPECT_EQ(messageOf([&] { resolveSymbol(library, "ScanQHYCCD"); }), ": missing ScanQHYCCD");
  loadVendorLibrary(library, "qhyccd", "dir");
  EXPECT_EQ(messageOf([&] { resolveSymbol(library, "ScanQHYCCD"); }), "qhyccd: missing ScanQHYCCD");
  EXPECT_TRUE(script.lookups().empty());
}

TEST(CheckVendorResult, AcceptsZeroOnly) {
  EXPECT_NO_THROW(checkVendorResult(0, "x"));
  EXPECT_EQ(messageOf([] { checkVendorResult(1, "x"); }), "x: 1");
  EXPECT_EQ(messageOf([] { checkVendorResult(-3, "x"); }), "x: -3");
  EXPECT_EQ(messageOf([] { checkVendorResult(4294967295, "QHY binning"); }),
            "QHY binning: 4294967295");
  EXPECT_EQ(messageOf([] { checkVendorResult(std::numeric_limits<std::int64_t>::min(), "x"); }),
            "x: -9223372036854775808");
}

TEST(CheckToupResult, AcceptsZeroAndPositiveResults) {
  EXPECT_NO_THROW(checkToupResult(0, "x"));
  EXPECT_NO_THROW(checkToupResult(1, "x"));
  EXPECT_NO_THROW(checkToupResult(2147483647, "x"));
  EXPECT_EQ(messageOf([] { checkToupResult(-1, "x"); }), "x: -1");
  EXPECT_EQ(messageOf([] { checkToupResult(-2147467259, "ToupTek ROI"); }),
            "ToupTek ROI: -2147467259");
}

}  // namespace
}  // namespace orvane
