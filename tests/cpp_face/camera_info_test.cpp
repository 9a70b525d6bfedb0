// Parsing the descriptions of cameras.
#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "cpp_face/face_test.hpp"
#include "cpp_face/scripted_library.hpp"

namespace orvane::testing {
namespace {

std::string with(const std::string& key, const std::string& value) {
  std::string text = infoText(3, "a");
  const std::size_t start = text.find("\"" + key + "\":") + key.size() + 3;
  const bool isList = text[start] == '[';
  const std::size_t end = isList ? text.find(']', start) + 1 : text.find_first_of(",}", start);
  return text.replace(start, end - start, value);
}

double pixelSize(const std::string& value) {
  return oc::parseCameraInfo(3, with("pixelSizeUm", value)).pixelSizeUm;
}

std::string failure(const std::string& text) {
  return errorOf([&] { oc::parseCameraInfo(3, text); });
}

TEST(CppFaceCameraInfo, EveryValueIsRead) {
  const std::string text = infoText(3, "ZWO ASI2600MC");
  const oc::CameraInfo camera = oc::parseCameraInfo(3, text);
  EXPECT_EQ(camera.index, 3);
  EXPECT_EQ(camera.name, "ZWO ASI2600MC");
  EXPECT_EQ(camera.maxWidth, 4);
  EXPECT_EQ(camera.maxHeight, 2);
  EXPECT_EQ(camera.bitDepth, 12);
  EXPECT_EQ(camera.pixelSizeUm, 3.75);
  EXPECT_TRUE(camera.isColor);
  EXPECT_FALSE(camera.isCooled);
  EXPECT_TRUE(camera.isUsb3Camera);
  EXPECT_FALSE(camera.isUsb3Host);
  EXPECT_EQ(camera.bins, (std::vector<int>{1, 2}));
  EXPECT_EQ(camera.formats, (std::vector<oc::Format>{oc::Format::Raw8, oc::Format::Rgb24,
                                                     oc::Format::Mono8, oc::Format::Raw16}));
  EXPECT_EQ(camera.depths, (std::vector<int>{8, 16}));
  EXPECT_EQ(camera.maxExposureUs, 2000000000);
  EXPECT_EQ(camera.minGain, -25);
  EXPECT_EQ(camera.maxGain, 570);
  EXPECT_EQ(camera.bayer, oc::Bayer::Grbg);
  EXPECT_EQ(camera.json, text);
}

TEST(CppFaceCameraInfo, NamesComeByteForByte) {
  const auto name = [](const std::string& escaped) {
    return oc::parseCameraInfo(0, infoText(0, escaped)).name;
  };
  EXPECT_EQ(name(""), "");
  EXPECT_EQ(name(R"(a \"b\" \\ c\\)"), R"(a "b" \ c\)");
  EXPECT_EQ(name("\xff\xc3 \xe9"), "\xff\xc3 \xe9");
  EXPECT_EQ(name(R"(\",\"maxWidth\":7,\"pixelSizeUm\":nan,\"bins\":[9])"),
            R"(","maxWidth":7,"pixelSizeUm":nan,"bins":[9])");
  EXPECT_EQ(oc::parseCameraInfo(0, infoText(0, R"(\"maxWidth\":7)")).maxWidth, 4);
}

TEST(CppFaceCameraInfo, APixelSizeNeedNotBeANumber) {
  EXPECT_EQ(pixelSize("1e+06"), 1e6);
  EXPECT_EQ(pixelSize("1e-07"), 1e-07);
  EXPECT_EQ(pixelSize("-0.5"), -0.5);
  for (const char* value : {"1e999", "nan", "-nan", "-nan(ind)", "1.5x"}) {
    EXPECT_TRUE(std::isnan(pixelSize(value))) << value;
  }
  EXPECT_EQ(pixelSize("inf"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(pixelSize("-inf"), -std::numeric_limits<double>::infinity());
}

TEST(CppFaceCameraInfo, UnknownCodesAreLeftOut) {
  EXPECT_EQ(oc::parseCameraInfo(3, with("formats", "[-1,7,3]")).formats,
            std::vector<oc::Format>{oc::Format::Mono8});
  EXPECT_TRUE(oc::parseCameraInfo(3, with("formats", "[]")).formats.empty());
  EXPECT_EQ(oc::parseCameraInfo(3, with("bayer", "7")).bayer, oc::Bayer::None);
  EXPECT_EQ(oc::parseCameraInfo(3, with("bayer", "0")).bayer, oc::Bayer::None);
  EXPECT_EQ(oc::parseCameraInfo(3, with("bayer", "11")).bayer, oc::Bayer::Bggr);
}

TEST(CppFaceCameraInfo, WhatCannotBeReadIsNamed) {
  const std::string beginning = "The description of camera 3 cannot be read: there is no usable \"";
  EXPECT_EQ(failure("{}"), beginning + "id\".");
  const std::vector<std::pair<std::string, std::vector<std::string>>> unusable = {
      {"maxWidth", {"2147483648", "-2147483649", "1280.5", ""}},
      {"pixelSizeUm", {""}},
      {"isCooled", {"1", "yes"}},
      {"bins", {"[1,x]", "1"}},
      {"maxExposureUs", {"9223372036854775808"}}};
  for (const auto& [key, values] : unusable) {
    for (const std::string& value : values) {
      EXPECT_EQ(failure(with(key, value)), beginning + key + "\".") << value;
    }
  }
  const std::string whole = infoText(3, "a");
  for (const char* key : {"id", "name", "maxWidth", "maxHeight", "bitDepth", "pixelSizeUm",
                          "isColor", "isCooled", "isUsb3Camera", "isUsb3Host", "bins", "formats",
                          "depths", "maxExposureUs", "minGain", "maxGain", "bayer"}) {
    std::string without = whole;
    EXPECT_EQ(failure(without.insert(without.find(key), "x")), beginning + key + "\".");
  }
  for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
    const std::string text = failure(whole.substr(0, length));
    EXPECT_TRUE(text == "no error" || text.rfind(beginning, 0) == 0) << length << ": " << text;
  }
}

TEST(CppFaceCameraInfo, ACameraIsFoundAgainByItsNameAndOrder) {
  const auto camera = [](int index, const std::string& name, int ordinal) {
    oc::CameraInfo info;
    info.index = index;
    info.name = name;
    info.ordinal = ordinal;
    return info;
  };
  const std::vector<oc::CameraInfo> cameras = {camera(0, "b", 0), camera(1, "a", 0),
                                               camera(2, "a", 1)};
  EXPECT_EQ(oc::findAgain(cameras, camera(0, "a", 0))->index, 1);
  EXPECT_EQ(oc::findAgain(cameras, camera(0, "a", 1))->index, 2);
  EXPECT_EQ(oc::findAgain(cameras, camera(0, "a", 2))->index, 2);
  EXPECT_FALSE(oc::findAgain(cameras, camera(0, "c", 0)));
}

}  // namespace
}  // namespace orvane::testing
