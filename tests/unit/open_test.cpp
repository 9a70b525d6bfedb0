// Opens a camera that no scan lists: the test fills the catalogue itself.
#include <gtest/gtest.h>

#include "api/state.hpp"
#include "orvane_desktop_camera.h"

namespace orvane {
namespace {

TEST(Open, BinOfZeroIsRefusedEvenWhenItIsListed) {
  state = LibraryState{};
  CameraInfo camera;
  camera.maxWidth = 64;
  camera.maxHeight = 64;
  camera.bins = {0};
  state.catalogue.push_back(camera);
  EXPECT_EQ(oc_open(0, 1, 1, 0, 0, 1, 0, 0), 0);
  EXPECT_STREQ(oc_error(), "Unsupported bin or format");
  EXPECT_EQ(state.active.openIndex, -1);
}

}  // namespace
}  // namespace orvane
