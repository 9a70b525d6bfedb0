// The JSON description: escaping, arrays, numbers, and the order of keys.
#include "catalogue/camera_json.hpp"

#include <gtest/gtest.h>

#include <limits>

using orvane::CameraInfo;
using orvane::cameraJson;
using orvane::jsonIntArray;
using orvane::jsonString;

namespace {

// The text of one value in a description.
std::string valueOf(const CameraInfo& camera, const std::string& key) {
  const std::string json = cameraJson(0, camera);
  const std::size_t start = json.find("\"" + key + "\":") + key.size() + 3;
  const std::size_t end =
      json[start] == '[' ? json.find(']', start) + 1 : json.find_first_of(",}", start);
  return json.substr(start, end - start);
}

}  // namespace

TEST(JsonString, IsQuotedAndEscapedWithoutControlCharacters) {
  EXPECT_EQ(jsonString(""), "\"\"");
  EXPECT_EQ(jsonString("a\"b\\c"), "\"a\\\"b\\\\c\"");
  EXPECT_EQ(jsonString("a\tb\nc\rd\x01\x1f"
                       "e f"),
            "\"abcde f\"");
  EXPECT_EQ(jsonString(std::string("a\0b", 3)), "\"ab\"");
  EXPECT_EQ(jsonString("/\x7f\x80\xff\xc3\xa9"), "\"/\x7f\x80\xff\xc3\xa9\"") << "unchanged";
}

TEST(JsonIntArray, NumbersKeepTheirOrderAndSigns) {
  const int numbers[] = {1, -2, 0, std::numeric_limits<int>::min(),
                         std::numeric_limits<int>::max()};
  EXPECT_EQ(jsonIntArray(numbers), "[1,-2,0,-2147483648,2147483647]");
  EXPECT_EQ(jsonIntArray({}), "[]");
}

TEST(CameraJson, AllKeysInOrderWithoutBlanks) {
  CameraInfo camera;
  camera.name = "ZWO \"ASI294MC\" Pro";
  camera.maxWidth = 4144;
  camera.maxHeight = 2822;
  camera.bitDepth = 14;
  camera.pixelSizeUm = 4.63;
  camera.isColor = true;
  camera.isCooled = false;
  camera.isUsb3Camera = true;
  camera.isUsb3Host = false;
  camera.bins = {1, 2, 3, 4};
  camera.formats = {0, 2, 1, 3};
  camera.maxExposureUs = 2000000000;
  camera.minGain = -5;
  camera.maxGain = 570;
  camera.bayer = 8;
  camera.vendorIndex = 99;  // not shown
  EXPECT_EQ(
      cameraJson(7, camera),
      R"({"id":7,"name":"ZWO \"ASI294MC\" Pro","maxWidth":4144,"maxHeight":2822,"bitDepth":14,)"
      R"("pixelSizeUm":4.63,"isColor":true,"isCooled":false,"isUsb3Camera":true,)"
      R"("isUsb3Host":false,"bins":[1,2,3,4],"formats":[0,2,1,3],"depths":[8,16],)"
      R"("maxExposureUs":2000000000,"minGain":-5,"maxGain":570,"bayer":8})");
}

TEST(CameraJson, DefaultRecord) {
  EXPECT_EQ(cameraJson(0, CameraInfo{}),
            R"({"id":0,"name":"","maxWidth":0,"maxHeight":0,"bitDepth":8,"pixelSizeUm":0,)"
            R"("isColor":false,"isCooled":false,"isUsb3Camera":false,"isUsb3Host":false,)"
            R"("bins":[1],"formats":[0],"depths":[8],"maxExposureUs":0,"minGain":0,"maxGain":0,)"
            R"("bayer":0})");
}

TEST(CameraJson, DepthsOffer16BitsWhenFormat1IsListedAnywhere) {
  CameraInfo camera;
  for (const auto& formats : std::vector<std::vector<int>>{{1}, {0, 1}, {1, 0}}) {
    camera.formats = formats;
    EXPECT_EQ(valueOf(camera, "depths"), "[8,16]") << jsonIntArray(formats);
  }
  for (const auto& formats : std::vector<std::vector<int>>{{0}, {}, {2, 3}, {11, -1}}) {
    camera.formats = formats;
    EXPECT_EQ(valueOf(camera, "depths"), "[8]") << jsonIntArray(formats);
    EXPECT_EQ(valueOf(camera, "formats"), jsonIntArray(formats));
  }
}

TEST(CameraJson, LongExposureIsPrintedAsA64BitNumber) {
  using Limits = std::numeric_limits<std::int64_t>;
  CameraInfo camera;
  for (const std::int64_t exposure : {std::int64_t{3600000000}, Limits::min(), Limits::max()}) {
    camera.maxExposureUs = exposure;
    EXPECT_EQ(valueOf(camera, "maxExposureUs"), std::to_string(exposure));
  }
}

TEST(CameraJson, PixelSizeIsWrittenAsStreamsDoWithUpToSixSignificantDigits) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  for (const auto& [micrometres, text] : {std::pair{2.9, "2.9"},
                                          {3.75, "3.75"},
                                          {3.76, "3.76"},
                                          {4.63, "4.63"},
                                          {2.0, "2"},
                                          {0.0, "0"},
                                          {-2.5, "-2.5"},
                                          {1.0 / 3.0, "0.333333"},
                                          {123456.7, "123457"},
                                          {0.0000001, "1e-07"},
                                          {0.0001, "0.0001"},
                                          {0.00001, "1e-05"},
                                          {999999.0, "999999"},
                                          {1000000.0, "1e+06"},
                                          {1.5e300, "1.5e+300"},
                                          {999999.9, "1e+06"},
                                          {std::numeric_limits<double>::quiet_NaN(), "nan"},
                                          {infinity, "inf"},
                                          {-infinity, "-inf"}}) {
    CameraInfo camera;
    camera.pixelSizeUm = micrometres;
    EXPECT_EQ(valueOf(camera, "pixelSizeUm"), text);
  }
}
