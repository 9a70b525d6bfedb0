// What the library's messages mean to an observer, and what to do about them.
#pragma once

#include <string>
#include <string_view>

namespace orvane::host {

/// The library's text, followed by what it means and what to do, for a person at the telescope.
/// Takes what oc_error(), oc::Error::what() or oc::Scan::error returned. Of a scan's text with
/// several messages, each known one is on a line of its own. An unknown text comes back unchanged.
std::string explained(std::string_view libraryText);

/// The same, with a full stop at the end of an unknown text, too.
std::string explainedSentence(std::string_view libraryText);

}  // namespace orvane::host
