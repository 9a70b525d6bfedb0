// The floors call the makers' functions in a plain program: they look them up by name, as the
// library does.
#pragma once

#include <filesystem>
#include <string>

#include "platform/platform.hpp"

// The types of the makers' functions, name##Signature.
#define SDK_FUNCTION(maker, name, ...) using name##Signature = __VA_ARGS__
#define SDK_HRESULT_FUNCTION(maker, name, ...) SDK_FUNCTION(maker, name, __VA_ARGS__)
#include "vendors/sdk/asi_sdk.hpp"
#include "vendors/sdk/playerone_sdk.hpp"
#include "vendors/sdk/qhyccd_sdk.hpp"
#include "vendors/sdk/toupcam_sdk.hpp"

/// One SDK call of a floor: a look-up and a call.
#define FLOOR_CALL(sdk, name) \
  (reinterpret_cast<name##Signature*>(platform::findFunction(sdk, #name)))

namespace orvane::benchmarks {

/// The full path. Windows searches a library's own directory only if the path is full.
inline std::filesystem::path fullPath(const std::string& path) {
  return std::filesystem::absolute(path).make_preferred();
}

}  // namespace orvane::benchmarks
