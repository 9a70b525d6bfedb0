// The C++ face in a program that loads the library at run time and does not link it.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "doubles/sdk_directory.hpp"
#include "orvane_desktop_camera.hpp"
#include "orvane_desktop_camera_loader.h"

namespace orvane::testing {
namespace {

TEST(CppFaceLoaded, TheFaceWorksWithTheLoadersFunctions) {
  const SdkDirectory sdks;
  sdks.add("toupcam");
  OrvaneDesktopCamera loaded;
  char message[256];
  ASSERT_EQ(orvane_desktop_camera_load(
                &loaded, oc::Directory(std::filesystem::path(ORVANE_LIBRARY_FILE)).utf8().c_str(),
                message, sizeof message),
            1)
      << message;
  {
    const oc::Library library = oc::Library::from(loaded);
    const oc::Scan found = oc::scan(sdks.path(), library);
    ASSERT_FALSE(found.cameras.empty());
    oc::CaptureThread capture(found.cameras[0], {.width = 64, .height = 32}, {}, library);
    EXPECT_TRUE(capture.next(std::chrono::seconds(10)));
  }
  EXPECT_EQ(loaded.buffer_size(), 0);
  orvane_desktop_camera_unload(&loaded);
}

}  // namespace
}  // namespace orvane::testing
