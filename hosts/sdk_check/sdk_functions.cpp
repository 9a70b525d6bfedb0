// Which SDKs the library uses, and which functions of each it calls: the names come out of the
// declarations that the library itself calls them by, so that none can be forgotten here.
#include "sdk_check/sdk_functions.hpp"

#include <array>

namespace orvane::host {

namespace {

enum Position : std::size_t { Asi, PlayerOne, Qhy, ToupTek, sdkCount };

// A function's own variable: what is static in a file may be needed before it has been made.
std::array<Sdk, sdkCount>& sdks() {
  static std::array<Sdk, sdkCount> all{{{"ZWO ASI", "ASICamera2", {}},
                                        {"Player One", "PlayerOneCamera", {}},
                                        {"QHYCCD", "qhyccd", {}},
                                        {"ToupTek", "toupcam", {}}}};
  return all;
}

struct Listed {
  Listed(Position sdk, const char* function) { sdks().at(sdk).functions.emplace_back(function); }
};

}  // namespace

std::span<const Sdk> allSdks() {
  return sdks();
}

}  // namespace orvane::host

// The declarations name the SDK and the function; from here on they list them.
#define SDK_FUNCTION(sdk, name, ...) \
  static const host::Listed name##IsListed(host::Position::sdk, #name)
#define SDK_HRESULT_FUNCTION(sdk, name, ...) SDK_FUNCTION(sdk, name, __VA_ARGS__)

#include "vendors/sdk/asi_sdk.hpp"
#include "vendors/sdk/playerone_sdk.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"
#include "vendors/sdk/toupcam_sdk.hpp"
