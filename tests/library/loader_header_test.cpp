// The header for programs that load the library at run time.
#include "orvane_desktop_camera_loader.h"

#include "library/library_test.hpp"

namespace orvane::testing {
namespace {

void expectNothingLoaded(const OrvaneDesktopCamera& camera) {
  EXPECT_EQ(camera.module, nullptr);
  EXPECT_EQ(camera.library_dir, nullptr);
  EXPECT_EQ(camera.scan, nullptr);
  EXPECT_EQ(camera.error, nullptr);
}

class LoaderHeader : public ::testing::Test {
 protected:
  bool load(const std::filesystem::path& file) {
    return orvane_desktop_camera_load(&camera_, utf8Of(file).c_str(), message_, sizeof message_) ==
           1;
  }

  OrvaneDesktopCamera camera_;
  char message_[4096] = "before";
};

// All other library tests call the members.
TEST_F(LoaderHeader, LoadsFromAPathWithBlanksAndAccents) {
  const SdkDirectory sdks;
  sdks.add("ASICamera2");
  const std::filesystem::path directory = sdks.path() / std::filesystem::path(u8"Äußere Schicht é");
  std::filesystem::create_directories(directory);
  const std::filesystem::path file =
      directory / std::filesystem::path(ORVANE_LIBRARY_FILE).filename();
  std::filesystem::copy_file(ORVANE_LIBRARY_FILE, file,
                             std::filesystem::copy_options::overwrite_existing);
  ASSERT_TRUE(load(file)) << message_;
  EXPECT_STREQ(message_, "");

  camera_.library_dir(sdks.utf8().c_str());
  ASSERT_GT(camera_.scan(), 0);
  EXPECT_STREQ(camera_.libraries(), "ASICamera2");
  orvane_desktop_camera_unload(&camera_);
  expectNothingLoaded(camera_);
}

TEST_F(LoaderHeader, AMissingFileIsNamed) {
  const std::filesystem::path file = SdkDirectory().path() / "nowhere.dll";
  EXPECT_FALSE(load(file));
  EXPECT_EQ(message_, "Cannot load " + utf8Of(file));
  expectNothingLoaded(camera_);
}

TEST_F(LoaderHeader, TheFirstMissingFunctionIsNamed) {
  const SdkDirectory sdks;
  sdks.add("toupcam");
  const std::filesystem::path file = sdks.file("toupcam");
  EXPECT_FALSE(load(file));
  EXPECT_EQ(message_, utf8Of(file) + " has no function oc_library_dir");
  expectNothingLoaded(camera_);
}

TEST_F(LoaderHeader, AMessageIsTruncatedToFitAndIsOptional) {
  EXPECT_EQ(orvane_desktop_camera_load(&camera_, "/nowhere", message_, 12), 0);
  EXPECT_STREQ(message_, "Cannot load");
  EXPECT_EQ(orvane_desktop_camera_load(&camera_, "/nowhere", nullptr, 0), 0);
  EXPECT_EQ(orvane_desktop_camera_load(&camera_, "/nowhere", message_, 0), 0);
  EXPECT_STREQ(message_, "Cannot load");
  expectNothingLoaded(camera_);
}

TEST_F(LoaderHeader, UnloadingTwiceIsNoError) {
  ASSERT_TRUE(load(ORVANE_LIBRARY_FILE)) << message_;
  orvane_desktop_camera_unload(&camera_);
  orvane_desktop_camera_unload(&camera_);
  expectNothingLoaded(camera_);
}

#ifdef _WIN32
TEST_F(LoaderHeader, OnWindowsAPathThatIsNotFullOrNotUtf8IsRefused) {
  EXPECT_FALSE(load("orvane_desktop_camera.dll"));
  EXPECT_STREQ(message_, "Cannot load orvane_desktop_camera.dll");
  EXPECT_EQ(orvane_desktop_camera_load(&camera_, "C:\\\xff.dll", message_, sizeof message_), 0);
  expectNothingLoaded(camera_);
}
#endif

}  // namespace
}  // namespace orvane::testing
