// Which SDKs the library uses, and which functions of each it calls.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace orvane::host {

/// One maker's SDK.
struct Sdk {
  const char* maker;
  const char* baseName;                ///< of its library, without prefix and ending
  std::vector<std::string> functions;  ///< that the library calls
};

/// All SDKs, in the order in which the library loads them.
std::span<const Sdk> allSdks();

}  // namespace orvane::host
