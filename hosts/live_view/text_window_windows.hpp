// A window with a long text to read.
#pragma once

#include <string>

namespace orvane::host {

/// Shows lines of UTF-8 that can be scrolled and copied. Returns when the user closes the window.
void showTextWindow(const wchar_t* title, const std::string& utf8);

}  // namespace orvane::host
