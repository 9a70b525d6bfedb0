// Which SDKs the library uses, and which functions of each it calls. The names come from the
// declarations that the library itself uses, so the lists are complete.
#include "sdk_check/sdk_functions.hpp"

#include <array>

#include "catalogue/camera_info.hpp"

namespace orvane::host {

namespace {

// In a function, because the lists are filled before main(), in no fixed order. The rows are in the
// order of Vendor.
std::array<Sdk, vendorCount>& sdks() {
  static std::array<Sdk, vendorCount> all{{
      {"ZWO ASI", "ASICamera2", {}},
      {"Player One", "PlayerOneCamera", {}},
      {"QHYCCD", "qhyccd", {}},
      {"ToupTek", "toupcam", {}},
  }};
  return all;
}

struct Listed {
  Listed(Vendor vendor, const char* function) {
    sdks().at(static_cast<std::size_t>(vendor)).functions.emplace_back(function);
  }
};

}  // namespace

std::span<const Sdk> allSdks() {
  return sdks();
}

}  // namespace orvane::host

#define SDK_FUNCTION(vendor, name, ...) \
  static const host::Listed name##IsListed(Vendor::vendor, #name)
#define SDK_HRESULT_FUNCTION(vendor, name, ...) SDK_FUNCTION(vendor, name, __VA_ARGS__)

#include "vendors/sdk/asi_sdk.hpp"
#include "vendors/sdk/playerone_sdk.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"
#include "vendors/sdk/toupcam_sdk.hpp"
