// The pages for people: the cameras, their state, their last picture, and the SDKs.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "oc_alpaca/devices.hpp"
#include "oc_alpaca/http_message.hpp"

namespace orvane::host {

/// Answers /, /setup and what is below it. The pages run no scripts and load nothing from
/// elsewhere.
Response answerSetup(const Devices& devices, std::string_view path);

/// The number of a device, as a path states it: decimal, without a sign. None if there is no such
/// device.
std::optional<std::size_t> deviceNumber(std::string_view text, const Devices& devices);

/// The text for a page: the characters that have a meaning in HTML are replaced.
std::string escapedHtml(std::string_view text);

}  // namespace orvane::host
