// QHYCCD cameras: what differs from the other families. each_family_test.cpp has the rest.
#include <cmath>
#include <limits>

#include "library/family_test.hpp"

namespace orvane::testing {
namespace {

constexpr std::int64_t qhyError = 0xFFFFFFFF;

class Qhy : public FamilyTest {
 protected:
  Qhy() : FamilyTest("qhyccd") {}
};

const std::vector<std::string> capabilities = {"bins", "formats", "isCooled"};

TEST_F(Qhy, AllCapabilitiesOrNone) {
  for (int i = 0; i < 4; ++i) {
    small.bins[i] = i + 1;
  }
  small.isCooled = 1;
  rescan();
  EXPECT_EQ(values(capabilities), "[1,2,3,4] [0,1] true");
  small.bins[0] = 0;
  small.bitDepth = 8;
  small.isCooled = 0;
  rescan();
  EXPECT_EQ(values(capabilities), "[1] [0] false");
}

TEST_F(Qhy, CapabilityNeedsTheResultZero) {
  sdk.forceOutput("IsQHYCCDControlAvailable", "result", 1);
  EXPECT_EQ(oc.scan(), 1);
  EXPECT_EQ(values(capabilities), "[1] [0] false");
  EXPECT_EQ(infoValue(0, "bayer"), "10") << "the query for colour has its own results";
}

TEST_F(Qhy, ColourResultsOneToFour) {
  const std::pair<std::int64_t, const char*> answers[] = {
      {0, "0"}, {1, "10"}, {2, "9"},          {3, "11"},
      {4, "8"}, {5, "0"},  {2147483648, "0"}, {qhyError, "0"}};
  for (const auto& [answer, bayer] : answers) {
    onlyResult("IsQHYCCDControlAvailable", answer, 1, 1);
    EXPECT_EQ(oc.scan(), 1);
    EXPECT_EQ(infoValue(0, "bayer"), bayer) << answer;
    EXPECT_EQ(infoValue(0, "isColor"), std::string(bayer) == "0" ? "false" : "true") << answer;
  }
}

TEST_F(Qhy, LimitsAreTruncatedTowardZeroAndClamped) {
  const double infinity = std::numeric_limits<double>::infinity();
  const std::pair<double, const char*> rows[] = {
      {-1.9, "-1 -1 -1"},
      {99.9, "99 99 99"},
      {3600000000.75, "3600000000 2147483647 2147483647"},
      {std::nan(""), "0 0 0"},
      {infinity, "9223372036854775807 2147483647 2147483647"},
      {-infinity, "-9223372036854775808 -2147483648 -2147483648"},
      {1e300, "9223372036854775807 2147483647 2147483647"},
      {-1e300, "-9223372036854775808 -2147483648 -2147483648"},
      {2147483647.9, "2147483647 2147483647 2147483647"},
      {2147483648.0, "2147483648 2147483647 2147483647"},
      {-2147483648.9, "-2147483648 -2147483648 -2147483648"},
      {-2147483649.5, "-2147483649 -2147483648 -2147483648"},
      {9223372036854775808.0, "9223372036854775807 2147483647 2147483647"}};
  for (const auto& [limit, expected] : rows) {
    onlyOutput("GetQHYCCDParamMinMaxStep", "maximum", limit);
    sdk.forceOutput("GetQHYCCDParamMinMaxStep", "minimum", limit);
    EXPECT_EQ(oc.scan(), 1);
    EXPECT_EQ(limits(), expected) << limit;
  }
}

TEST_F(Qhy, CountsUpTo128AreExaminedAndMoreIsAFailure) {
  sdk.setCameras(manyCameras(128));
  EXPECT_EQ(oc.scan(), 128);
  EXPECT_EQ(error(), "");
  for (const std::int64_t count : {std::int64_t{129}, qhyError, std::int64_t{2147483648}}) {
    onlyResult("ScanQHYCCD", count);
    EXPECT_EQ(oc.scan(), 0);
    EXPECT_EQ(error(), "QHY scan failed");
  }
}

TEST_F(Qhy, IdWithoutANulIsReadToTheEndOfItsBuffer) {
  setText(small.key, std::string(256, 'k'));
  rescan();
  EXPECT_EQ(open(), 1) << error();
}

TEST_F(Qhy, BufferIsTheLargerOfFrameAndMemoryLengthAndItsSizeIsChecked) {
  scan();
  for (const std::int64_t length : {qhyError, (std::int64_t{1} << 30) + 1}) {
    onlyResult("GetQHYCCDMemLength", length);
    expectOpenFailed(open(), "Invalid frame buffer size");
  }
  onlyResult("GetQHYCCDMemLength", 1 << 30);
  EXPECT_EQ(open(), 1);
  EXPECT_EQ(oc.buffer_size(), 1 << 30);
  onlyResult("GetQHYCCDMemLength", 10);
  EXPECT_EQ(open(320, 202, 1, 1), 1);
  EXPECT_EQ(oc.buffer_size(), 320 * 202 * 2);
}

TEST_F(Qhy, AnyDifferenceInTheFrameIsAChangeOfGeometry) {
  openSmall(1);
  sdk.forceOutput("GetQHYCCDLiveFrame", "bitsPerPixel", 8);
  EXPECT_EQ(nextFrame(), -1) << "of 16 bits";
  EXPECT_EQ(error(), "QHY frame geometry changed");
  oc.close();
  openSmall();
  const std::pair<const char*, double> changes[] = {
      {"width", 319}, {"height", 203}, {"bitsPerPixel", 16}, {"channels", 3}, {"channels", 0}};
  for (const auto& [output, value] : changes) {
    onlyOutput("GetQHYCCDLiveFrame", output, value);
    EXPECT_EQ(nextFrame(), -1);
    EXPECT_EQ(error(), "QHY frame geometry changed") << output;
  }
  sdk.clear_faults();
  EXPECT_EQ(nextFrame(), 320 * 202) << "must still stream";
}

}  // namespace
}  // namespace orvane::testing
