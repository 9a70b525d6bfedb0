// Which camera a user means.
#include "session/camera_choice.hpp"

#include <gtest/gtest.h>

#include "failure.hpp"
#include "system/failures.hpp"

namespace orvane::host {

namespace {

std::vector<oc::CameraInfo> camerasNamed(const std::vector<std::string>& names) {
  std::vector<oc::CameraInfo> cameras;
  for (const std::string& name : names) {
    oc::CameraInfo camera;
    camera.index = static_cast<int>(cameras.size());
    camera.name = name;
    cameras.push_back(camera);
  }
  return cameras;
}

const std::vector<oc::CameraInfo>& someCameras() {
  static const auto cameras =
      camerasNamed({"ZWO ASI120MC", "ZWO ASI290MM", "ZWO ASI290MM Mini", "Neptune-C II"});
  return cameras;
}

int chosen(const std::string& wish) {
  return chooseCamera(someCameras(), wish).index;
}

std::string refusal(const std::vector<oc::CameraInfo>& cameras, const std::string& wish) {
  return testing::failureOf<UsageError>([&] { chooseCamera(cameras, wish); });
}

TEST(CameraChoice, ByIndex) {
  EXPECT_EQ(chosen("0"), 0);
  EXPECT_EQ(chosen("3"), 3);
}

TEST(CameraChoice, ByPartOfTheNameInAnyCase) {
  EXPECT_EQ(chosen("neptune"), 3);
  EXPECT_EQ(chosen("120"), 0);
  EXPECT_EQ(chosen("MINI"), 2);
}

TEST(CameraChoice, PrefersAWholeName) {
  EXPECT_EQ(chosen("zwo asi290mm"), 1);
}

TEST(CameraChoice, TakesANumberThatIsNoIndexAsPartOfAName) {
  EXPECT_EQ(refusal(someCameras(), "290"),
            "More than one camera fits \"290\": 1 (ZWO ASI290MM), 2 (ZWO ASI290MM Mini); give the "
            "index or more of the name.");
  EXPECT_EQ(chooseCamera(camerasNamed({"Model 9"}), "9").index, 0);
}

TEST(CameraChoice, TakesTheIndexOfTheDescriptionWhereOthersAreMissing) {
  auto cameras = someCameras();
  cameras.erase(cameras.begin());
  EXPECT_EQ(chooseCamera(cameras, "1").index, 1);
}

TEST(CameraChoice, RefusesWhatFitsNothing) {
  EXPECT_EQ(refusal(camerasNamed({"A", "B"}), "2"),
            "No camera fits \"2\"; there are 0 (A), 1 (B).");
  EXPECT_EQ(refusal(someCameras(), ""), "The camera's name must not be empty.");
}

TEST(CameraChoice, RefusesANameThatTwoCamerasHave) {
  EXPECT_EQ(refusal(camerasNamed({"Twin", "Twin", "Twin II"}), "twin"),
            "More than one camera fits \"twin\": 0 (Twin), 1 (Twin); give the index or more of the "
            "name.");
}

}  // namespace

}  // namespace orvane::host
