// Facts about the makers' SDKs that the tests need: names, failure codes, and the results that are
// not codes. One row per family; every test that lists SDKs uses these rows.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulator_control.h"

namespace orvane::testing {

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): in the order in which it is read
struct SdkFamily {
  const char* maker;
  const char* baseName;
  std::int32_t rggb;  ///< the maker's code of the Bayer pattern RGGB, for SimCamera::bayerPattern
  int richFormat;     ///< a format for oc_open() with more than one byte per pixel
  /// All failure codes that the maker lists. A short run uses only every `codeStep`th.
  std::span<const std::int64_t> codes;
  std::size_t codeStep;
  const char* examineCall;  ///< called once for each camera of a scan
  const char* openCall;
  bool givesHandle;  ///< the open call returns a handle and fails only with null
  const char* closeCall;
  bool waitsForFrames;  ///< the SDK waits, so a test need not advance the clock
  int leastCalls;       ///< lower bound for the SDK calls of one session
  int leastFunctions;
};

inline std::ostream& operator<<(std::ostream& stream, const SdkFamily& family) {
  return stream << family.baseName;
}

inline constexpr std::int64_t smallCodes[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11,
                                              12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22};
inline constexpr std::int64_t qhyCodes[] = {
    1, 2, 3, 4, 5, 6, 7, 8, 9, 0x2000, 0x2001, 4294967293, 4294967294, 4294967295};
inline constexpr std::int64_t hresults[] = {-2147418113, -2147467263, -2147467262, -2147467261,
                                            -2147467259, -2147483638, -2147024891, -2147024882,
                                            -2147024809, -2147417842, -2147024865, -2147024726,
                                            -2147417825, -2147014845, -2147023673};

/// In the order in which the library scans them.
inline constexpr SdkFamily sdkFamilies[] = {
    {"ZWO ASI", "ASICamera2", 0, 2, smallCodes, 5, "ASIGetCameraProperty", "ASIOpenCamera", false,
     "ASICloseCamera", true, 80, 15},
    {"Player One", "PlayerOneCamera", 0, 1, std::span(smallCodes).first(17), 4,
     "POAGetCameraProperties", "POAOpenCamera", false, "POACloseCamera", false, 40, 17},
    {"QHYCCD", "qhyccd", 4, 1, qhyCodes, 13, "GetQHYCCDId", "OpenQHYCCD", true, "CloseQHYCCD",
     false, 55, 19},
    {"ToupTek", "toupcam", 0x42474752, 1, hresults, 5, "Toupcam_get_RawFormat", "Toupcam_Open",
     true, "Toupcam_Close", false, 34, 17},
};

inline constexpr std::size_t sdkCount = std::size(sdkFamilies);

/// The base names, in the same order.
inline constexpr std::array<const char*, sdkCount> sdkNames = [] {
  std::array<const char*, sdkCount> names{};
  for (std::size_t i = 0; i < sdkCount; ++i) {
    names[i] = sdkFamilies[i].baseName;
  }
  return names;
}();

/// The family whose SDK has this base name.
constexpr const SdkFamily& familyNamed(std::string_view baseName) {
  for (const SdkFamily& family : sdkFamilies) {
    if (family.baseName == baseName) {
      return family;
    }
  }
  throw "no such family";
}

/// All base names, joined as oc_libraries() joins them.
std::string joinedSdkNames();

/// The functions of an SDK that the library declares.
const std::vector<std::string>& functionsOf(const std::string& baseName);

/// A colour camera with every feature. The caller sets its size and the maker's own codes.
SimCamera colourCamera(const char* name, const char* key);

/// A colour camera of 16 x 96 pixels: a narrow sensor saves the simulator time. Its names are too
/// long for the small-string buffer of std::string.
SimCamera torturedCamera(const SdkFamily& family);

}  // namespace orvane::testing
