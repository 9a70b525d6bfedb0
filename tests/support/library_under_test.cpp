// The built library, loaded into this process as a host does.
#include "support/library_under_test.hpp"

#include <filesystem>
#include <stdexcept>
#include <string>

namespace orvane::testing {

LibraryUnderTest::LibraryUnderTest() : OrvaneDesktopCamera() {
  const auto path = std::filesystem::absolute(ORVANE_LIBRARY_FILE).make_preferred().u8string();
  const std::string file(path.begin(), path.end());
  char message[4096];
  if (orvane_desktop_camera_load(this, file.c_str(), message, sizeof message) == 0) {
    throw std::runtime_error(message);
  }
}

}  // namespace orvane::testing
