// The surroundings of a live view: a simulated SDK with two small cameras, and a directory for
// recordings.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "cpp_face/face_test.hpp"
#include "live_view/live_session.hpp"
#include "scratch_directory.hpp"
#include "ser_file.hpp"

namespace orvane::testing {

class LiveTest : public FaceTest {
 protected:
  LiveTest() {
    sdk.setCameras({colourCamera(), monoCamera()});
    sdk.stop_clock(0);
  }

  static SimCamera colourCamera() {
    SimCamera camera = smallCamera();
    setText(camera.name, "Colour One");
    camera.id = 3;
    camera.height = 200;
    camera.formats[1] = 2;  // raw 16 after raw 8, and no other
    camera.formats[2] = -1;
    camera.gainMax = 300;
    camera.exposureMaxUs = 60000000;
    camera.offsetMax = 80;
    return camera;
  }

  static SimCamera monoCamera() {
    SimCamera camera = colourCamera();
    setText(camera.name, "Mono Two");
    camera.id = 4;
    camera.isColor = 0;
    return camera;
  }

  host::LiveOptions options(const std::string& camera = "Colour") const {
    return {directory.utf8(), camera, scratch.path()};
  }

  // The only recording, which has its settings log beside it.
  std::filesystem::path recording() const {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(scratch.path())) {
      files.push_back(entry.path());
    }
    std::ranges::sort(files);  // .ser before .txt
    EXPECT_EQ(files.size(), 2U);
    return files.empty() ? std::filesystem::path() : files.front();
  }

  ScratchDirectory scratch;
};

}  // namespace orvane::testing
