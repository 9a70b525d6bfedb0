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

// Text of the maker's kind. On Windows the three bytes that a lone surrogate would have give that
// surrogate, so that a test can have a name that is no valid text; other invalid bytes become
// replacement characters.
ToupcamText nativeText(std::string_view utf8);

// Copies text into a field of a device entry. Text that is as long as the field or longer fills it
// and leaves no NUL.
void setText(ToupcamChar (&field)[textFieldLength], const ToupcamText& text);

// The text in a field that a user hands back, up to its NUL or, without one, to the field's end.
ToupcamText textIn(const ToupcamChar* field);

// For the log: what is not plain ASCII becomes a question mark.
std::string plainText(const ToupcamText& text);

}  // namespace orvane::sim
