// Text in ToupTek's device entries: UTF-16 on Windows, UTF-8 on Linux.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "simulated_sdk.hpp"
#include "vendors/sdk/toupcam_sdk.hpp"

namespace orvane::sim {

using ToupcamText = std::basic_string<ToupcamChar>;

constexpr std::size_t textFieldLength = 64;

// Converts UTF-8 to the maker's text. On Windows the three bytes that encode a lone surrogate give
// that surrogate, so that a test can have a name that is not valid UTF-16. Other invalid bytes
// become replacement characters.
ToupcamText nativeText(std::string_view utf8);

// The text in a field that a user passes back, up to its NUL, or the whole field if it has none.
ToupcamText textIn(const ToupcamChar* field);

// Text for the log: every character outside ASCII becomes a question mark.
std::string plainText(const ToupcamText& text);

}  // namespace orvane::sim
