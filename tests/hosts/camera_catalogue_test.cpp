// Cameras in the form that programs show, from well-formed and from odd descriptions.
#include "session/camera_catalogue.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "cpp_face/scripted_library.hpp"
#include "system/failures.hpp"

namespace orvane::host {

namespace {

oc::Scan scanned(const std::string& description) {
  oc::Scan found;
  found.cameras.push_back(oc::parseCameraInfo(2, description));
  return presentable(found);
}

oc::CameraInfo camera(const std::string& description) {
  return scanned(description).cameras.front();
}

std::string withPixelSize(const std::string& text) {
  std::string description = testing::infoText(2, "a");
  return description.replace(description.find("3.75"), 4, text);
}

TEST(CameraCatalogue, ADescriptionKeepsTheOrderOfItsKeys) {
  const std::string usual = testing::infoText(2, R"(ZWO \"Test\" \\ C)");
  EXPECT_EQ(descriptionOf(camera(usual)).dump(), usual);
}

TEST(CameraCatalogue, BytesThatAreNotUtf8AreReplaced) {
  const oc::CameraInfo odd = camera(testing::infoText(2, "caf\xe9"));
  EXPECT_EQ(odd.name, "caf\uFFFD");
  EXPECT_EQ(descriptionOf(odd)["name"], "caf\uFFFD");
  oc::Scan found;
  found.error = "\xff: 5";
  EXPECT_EQ(presentable(found).error, "\uFFFD: 5");
}

TEST(CameraCatalogue, APixelSizeThatIsNotANumberIsNull) {
  for (const char* odd : {"nan", "-nan", "inf", "-inf", "-nan(ind)", "1e999"}) {
    const oc::CameraInfo found = camera(withPixelSize(odd));
    EXPECT_TRUE(std::isnan(found.pixelSizeUm)) << odd;
    EXPECT_EQ(descriptionOf(found).dump(), withPixelSize("null")) << odd;
  }
  EXPECT_EQ(descriptionOf(camera(withPixelSize("-3")))["pixelSizeUm"], -3);
}

TEST(CameraCatalogue, AKeyWithinTheNameDoesNotMislead) {
  const std::string text = testing::infoText(2, R"(\",\"pixelSizeUm\":oops)");
  EXPECT_EQ(descriptionOf(camera(text)).dump(), text);
}

TEST(CameraCatalogue, TheUsualGainIsAThirdOfTheRangeAndTheMiddleIsItsHalf) {
  oc::CameraInfo known;
  EXPECT_EQ(usualGain(known), 0);
  EXPECT_EQ(middleGain(known), 0);
  EXPECT_FALSE(hasGainRange(known));
  EXPECT_FALSE(hasLongestExposure(known));
  known.minGain = -30;
  known.maxGain = 570;
  EXPECT_EQ(usualGain(known), 170);
  EXPECT_EQ(middleGain(known), 270);
  known.maxGain = 571;
  EXPECT_EQ(middleGain(known), 270) << "rounded down, as the simulated SDKs do";
  EXPECT_TRUE(hasGainRange(known));
}

TEST(CameraCatalogue, ADirectoryThatIsMissingIsTheUsersFailure) {
  EXPECT_THROW(readCatalogue("no such directory"), UsageError);
}

}  // namespace

}  // namespace orvane::host
