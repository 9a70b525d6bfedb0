// What to do about a finding, in words for the SDK's user.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sdk_check/examination.hpp"

namespace orvane::host {

/// How to get a library that is missing, as far as its name tells. One or two sentences.
std::string cureOfMissing(std::string_view library);

/// What to do about the SDK, one cure after the other; empty if it is healthy or not there.
std::vector<std::string> curesOf(const SdkFindings& findings);

/// What to do about a directory without an SDK.
std::string cureOfNoSdk();

}  // namespace orvane::host
