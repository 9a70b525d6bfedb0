// Player One's settings are passed by value in eight bytes. The library must initialise all of
// them.
#include <gtest/gtest.h>

#include <cstring>

#include "api/state.hpp"
#include "capture/capture.hpp"
#include "doubles/scripted_platform.hpp"
#include "vendors/sdk/playerone_sdk.hpp"

namespace orvane {
namespace {

std::vector<std::uint64_t> sent;

TEST(ConfigValue, AllEightBytesAreDefined) {
  scripted::platform() = {};
  state = LibraryState{};
  scripted::platform().libraries["sdk/PlayerOneCamera"].add(
      POASetConfig, [](int, int, POAConfigValue value, int) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, &value, sizeof bytes);
        sent.push_back(bytes);
        return 0;
      });
  loadVendorLibrary(libraryOf(Vendor::PlayerOne), "PlayerOneCamera", "sdk");
  state.active.info.vendor = Vendor::PlayerOne;
  applyCameraSettings(2147483647, -3, -1);
  // On Windows a long has four bytes; the other four must be zero.
  const std::uint64_t mask = sizeof(long) == 4 ? 0xFFFFFFFFU : ~std::uint64_t{0};
  EXPECT_EQ(sent, (std::vector<std::uint64_t>{2147483647, ~std::uint64_t{2} & mask,
                                              ~std::uint64_t{0} & mask}));
}

}  // namespace
}  // namespace orvane
