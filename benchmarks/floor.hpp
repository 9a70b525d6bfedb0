// The floors call the makers' functions in a plain program.
#pragma once

#include <filesystem>
#include <string>

#include "platform/platform.hpp"

// The makers' functions, and their types under the names name##Signature.
#include "simulated_sdk.hpp"
#include "vendors/sdk/asi_sdk.hpp"
#include "vendors/sdk/playerone_sdk.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"
#include "vendors/sdk/toupcam_sdk.hpp"

/// One SDK call of a floor: a look-up by name, as in the library, and a call.
#define FLOOR_CALL(sdk, name) \
  (reinterpret_cast<name##Signature*>(platform::findFunction(sdk, #name)))

namespace orvane::benchmarks {

/// The full path. Windows searches a library's own directory only if the path is full.
inline std::filesystem::path fullPath(const std::string& path) {
  return std::filesystem::absolute(path).make_preferred();
}

}  // namespace orvane::benchmarks
