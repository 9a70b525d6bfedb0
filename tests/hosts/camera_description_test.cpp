// The library's camera descriptions, well-formed and odd.
#include "session/camera_description.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "system/failures.hpp"

namespace orvane::host {

namespace {

const std::string usual =
    R"({"id":2,"name":"ZWO \"Test\" \\ C","maxWidth":1280,"maxHeight":960,"bitDepth":12,)"
    R"("pixelSizeUm":3.75,"isColor":true,"isCooled":false,"isUsb3Camera":true,"isUsb3Host":false,)"
    R"("bins":[1,2],"formats":[0,2,1,3],"depths":[8,16],"maxExposureUs":2000000000000,)"
    R"("minGain":-5,"maxGain":100,"bayer":9})";

std::string usualWith(const std::string& what, const std::string& replacement) {
  std::string text = usual;
  return text.replace(text.find(what), what.size(), replacement);
}

CameraDescription described(const std::string& text) {
  return describeCamera(2, readCameraJson(2, text));
}

std::string refusal(const std::string& text) {
  try {
    described(text);
  } catch (const CameraError& error) {
    return error.what();
  }
  return "not refused";
}

TEST(CameraDescription, HoldsAllThatTheLibraryTells) {
  const CameraDescription camera = described(usual);
  EXPECT_EQ(camera.id, 2);
  EXPECT_EQ(camera.name, "ZWO \"Test\" \\ C");
  EXPECT_EQ(camera.maxWidth, 1280);
  EXPECT_EQ(camera.maxHeight, 960);
  EXPECT_EQ(camera.bitDepth, 12);
  EXPECT_EQ(camera.pixelSizeUm, 3.75);
  EXPECT_TRUE(camera.isColor);
  EXPECT_FALSE(camera.isCooled);
  EXPECT_TRUE(camera.isUsb3Camera);
  EXPECT_FALSE(camera.isUsb3Host);
  EXPECT_EQ(camera.bins, (std::vector<int>{1, 2}));
  EXPECT_EQ(camera.formats, (std::vector<PixelFormat>{PixelFormat::Raw8, PixelFormat::Rgb24,
                                                      PixelFormat::Raw16, PixelFormat::Mono8}));
  EXPECT_EQ(camera.maxExposureUs, 2000000000000);
  EXPECT_EQ(camera.minGain, -5);
  EXPECT_EQ(camera.maxGain, 100);
  EXPECT_EQ(camera.bayer, BayerPattern::Grbg);
}

TEST(CameraDescription, KeepsTheOrderOfTheKeys) {
  EXPECT_EQ(readCameraJson(2, usual).dump(), usual);
}

TEST(CameraDescription, ReplacesBytesThatAreNotUtf8) {
  EXPECT_EQ(described(usualWith("Test", "caf\xe9")).name, "ZWO \"caf\uFFFD\" \\ C");
}

TEST(CameraDescription, HasAPixelSizeThatIsNotANumberWhereTheSdkHasNone) {
  for (const char* odd : {"nan", "-nan", "inf", "-inf", "-nan(ind)", "1e999"}) {
    EXPECT_TRUE(std::isnan(described(usualWith("3.75", odd)).pixelSizeUm)) << odd;
    EXPECT_EQ(readCameraJson(2, usualWith("3.75", odd)).dump(), usualWith("3.75", "null")) << odd;
  }
  EXPECT_EQ(described(usualWith("3.75", "1e-07")).pixelSizeUm, 1e-07);
  EXPECT_EQ(described(usualWith("3.75", "-3")).pixelSizeUm, -3);
}

TEST(CameraDescription, IsNotMisledByAKeyWithinTheName) {
  const std::string text = usualWith("Test", R"(\",\"pixelSizeUm\":oops)");
  EXPECT_EQ(described(text).pixelSizeUm, 3.75);
}

TEST(CameraDescription, LeavesOutFormatsAndBayerPatternsThatItDoesNotKnow) {
  EXPECT_EQ(described(usualWith("[0,2,1,3]", "[7,-1,1]")).formats,
            std::vector<PixelFormat>{PixelFormat::Raw16});
  EXPECT_TRUE(described(usualWith("[0,2,1,3]", "[]")).formats.empty());
  EXPECT_EQ(described(usualWith("\"bayer\":9", "\"bayer\":12")).bayer, BayerPattern::None);
}

TEST(CameraDescription, NamesTheKeyThatIsMissing) {
  for (const char* key : {"id", "name", "maxWidth", "maxHeight", "bitDepth", "pixelSizeUm",
                          "isColor", "isCooled", "isUsb3Camera", "isUsb3Host", "bins", "formats",
                          "maxExposureUs", "minGain", "maxGain", "bayer"}) {
    auto json = readCameraJson(2, usual);
    json.erase(key);
    EXPECT_EQ(refusal(json.dump()), std::string("The description of camera 2 cannot be read: there "
                                                "is no usable \"") +
                                        key + "\".");
  }
}

TEST(CameraDescription, NamesTheKeyWhoseValueIsOfAnotherKind) {
  const std::string start = "The description of camera 2 cannot be read: there is no usable ";
  EXPECT_EQ(refusal(usualWith("1280", "1280.5")), start + "\"maxWidth\".");
  EXPECT_EQ(refusal(usualWith("1280", "2147483648")), start + "\"maxWidth\".");
  EXPECT_EQ(refusal(usualWith("1280", "-2147483649")), start + "\"maxWidth\".");
  EXPECT_EQ(refusal(usualWith("2000000000000", "9223372036854775808")),
            start + "\"maxExposureUs\".");
  EXPECT_EQ(refusal(usualWith("\"isColor\":true", "\"isColor\":1")), start + "\"isColor\".");
  EXPECT_EQ(refusal(usualWith("[1,2]", "[1,\"2\"]")), start + "\"bins\".");
  EXPECT_EQ(refusal(usualWith("[1,2]", "1")), start + "\"bins\".");
}

TEST(CameraDescription, RefusesTextThatIsNoObject) {
  for (const char* text : {"", "[]", "nonsense", "{\"id\":", "{\"pixelSizeUm\":"}) {
    EXPECT_EQ(refusal(text),
              "The description of camera 2 cannot be read: it is not a JSON object.");
  }
  EXPECT_EQ(refusal("{}"),
            "The description of camera 2 cannot be read: there is no usable \"id\".");
}

}  // namespace

}  // namespace orvane::host
