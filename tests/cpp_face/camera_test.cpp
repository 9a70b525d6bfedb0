// A scan and an open camera through the C++ face.
#include <filesystem>
#include <limits>
#include <span>
#include <stdexcept>
#include <vector>

#include "cpp_face/face_test.hpp"
#include "cpp_face/scripted_library.hpp"

namespace orvane::testing {
namespace {

using CppFaceScan = FaceTest;
using CppFaceCamera = FaceTest;

TEST_F(CppFaceScan, TellsCamerasAndSdks) {
  directory.add("toupcam");
  const oc::Scan found = oc::scan(directory.path());
  EXPECT_EQ(found.libraries, (std::vector<std::string>{"ASICamera2", "toupcam"}));
  EXPECT_EQ(found.error, "");
  ASSERT_GT(found.cameras.size(), 4U);
  EXPECT_EQ(found.cameras[1].index, 1);
  EXPECT_EQ(found.cameras[0].name, "ZWO ASI120MC-S");
}

TEST_F(CppFaceScan, NumbersCamerasOfOneName) {
  SimCamera one = smallCamera();
  SimCamera other = one;
  setText(other.name, "other");
  sdk.setCameras({one, other, one});
  const oc::Scan found = oc::scan(directory.utf8().c_str());
  ASSERT_EQ(found.cameras.size(), 3U);
  EXPECT_EQ(found.cameras[0].ordinal, 0);
  EXPECT_EQ(found.cameras[1].ordinal, 0);
  EXPECT_EQ(found.cameras[2].ordinal, 1);
}

TEST_F(CppFaceScan, TellsWhatFailed) {
  sdk.forceResult("ASIGetCameraProperty", 4, 2, 1);
  const oc::Scan found = oc::scan(directory.utf8());
  EXPECT_EQ(found.cameras.size(), 1U);
  EXPECT_NE(found.error, "");
  EXPECT_EQ(found.error, oc_error());
}

TEST_F(CppFaceScan, OfADirectoryWithAccentsOrWithoutSdks) {
  const SdkDirectory accents("sdk \xc3\xa9\xc3\xb6");
  EXPECT_TRUE(oc::scan(accents.path()).libraries.empty());
  accents.add("qhyccd");
  EXPECT_EQ(oc::scan(accents.path()).libraries, std::vector<std::string>{"qhyccd"});
}

TEST_F(CppFaceScan, IsRefusedWhileACameraIsOpen) {
  const oc::Camera camera(first(), small());
  EXPECT_EQ(errorOf([&] { oc::scan(directory.utf8()); }), oc_error());
  EXPECT_NE(std::string(oc_error()), "");
}

TEST(CppFaceScripted, ADescriptionThatCannotBeReadIsLeftOutAndTold) {
  script().infos = {infoText(0, "a"), "{}", infoText(2, "a")};
  script().error = "one maker failed";
  const oc::Scan found = oc::scan("anywhere", scriptedLibrary());
  ASSERT_EQ(found.cameras.size(), 2U);
  EXPECT_EQ(found.cameras[1].index, 2);
  EXPECT_EQ(found.error,
            "one maker failed; The description of camera 1 cannot be read: there is no usable "
            "\"id\".");
}

TEST(CppFaceScripted, ANumberThatIsNoTemperatureIsNone) {
  const oc::Camera camera(oc::CameraInfo{}, oc::Settings{}, scriptedLibrary());
  double celsius = 0;
  script().temperature = [&] { return celsius; };
  EXPECT_EQ(camera.temperature(), 0.0);
  for (const double odd : {std::numeric_limits<double>::quiet_NaN(), 4294967295.0, -300.0, 150.0,
                           -150.0, std::numeric_limits<double>::infinity()}) {
    celsius = odd;
    EXPECT_FALSE(camera.temperature()) << odd;
  }
}

TEST(CppFaceScripted, AnExceptionOutOfAnOpenLeavesNoCameraOpen) {
  script().open = [](int, int) -> int { throw 7; };
  EXPECT_THROW(oc::Camera(oc::CameraInfo{}, oc::Settings{}, scriptedLibrary()), int);
  EXPECT_EQ(script().closed, 1);
}

TEST_F(CppFaceCamera, WithoutASizeTheWholeSensorIsTaken) {
  sdk.setCameras({smallCamera()});
  const oc::Camera camera(first(), {.format = oc::Format::Raw16});
  EXPECT_EQ(camera.layout().width, 320);
  EXPECT_EQ(camera.layout().height, 202);
  EXPECT_EQ(camera.layout().format, oc::Format::Raw16);
  EXPECT_EQ(camera.layout().bayer, oc::Bayer::Rggb);
  EXPECT_GE(camera.bufferSize(), 2U * 320 * 202);
}

TEST_F(CppFaceCamera, OnlyRawFramesHaveABayerPattern) {
  sdk.setCameras({smallCamera()});
  const oc::CameraInfo info = first();
  for (const oc::Format format : {oc::Format::Rgb24, oc::Format::Mono8}) {
    EXPECT_EQ(oc::Camera(info, {.format = format}).layout().bayer, oc::Bayer::None);
  }
}

TEST_F(CppFaceCamera, AnOpenThatFailsThrowsTheLibrarysText) {
  const oc::CameraInfo info = first();
  const auto refusal = [&](const oc::Settings& settings) {
    return errorOf([&] { oc::Camera(info, settings); });
  };
  EXPECT_EQ(refusal({.exposureUs = 0}), "Exposure out of range");
  EXPECT_EQ(refusal({.bin = 99}), "Unsupported bin or format");
  expectClean(sdk);
}

TEST_F(CppFaceCamera, AReadHasThreeOutcomes) {
  const oc::CameraInfo info = first();
  {
    oc::Camera camera(info, small());
    std::vector<std::uint8_t> buffer(camera.bufferSize());

    const oc::WritableBytes frame = camera.read(buffer, 1000ms);
    EXPECT_EQ(frame.size(), 64U * 32);
    EXPECT_EQ(frame.data(), buffer.data());
    const std::span<const std::uint8_t> span = frame;
    EXPECT_EQ(span.size(), frame.size());

    sdk.forceResult("ASIGetVideoData", 11, 1, 1);
    EXPECT_TRUE(camera.read(buffer, 0ms).empty());

    sdk.forceResult("ASIGetVideoData", 5, 1, 1);
    EXPECT_EQ(errorOf([&] { camera.read(buffer, 0ms); }), "ASIGetVideoData: 5");
    EXPECT_EQ(errorOf([&] {
                camera.read({buffer.data(), 3}, 0ms);
              }),
              "Camera closed or buffer too small");
    EXPECT_FALSE(camera.read(buffer, 1000ms).empty());
  }
  expectClean(sdk);
}

TEST_F(CppFaceCamera, ARefusedSettingThrowsTheLibrarysText) {
  oc::Camera camera(first(), small());
  camera.apply(2000, 1, 1);
  EXPECT_EQ(errorOf([&] { camera.apply(0, 1, 1); }), "Exposure out of range");
  sdk.forceResult("ASISetControlValue", 2);
  EXPECT_EQ(errorOf([&] { camera.apply(2000, 1, 1); }), "ASI exposure: 2");
}

}  // namespace
}  // namespace orvane::testing
