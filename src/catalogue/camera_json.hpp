// The JSON description of a camera. Pure text functions: they call no SDK.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "catalogue/camera_info.hpp"

namespace orvane {

/// The text in double quotes. Escapes quote and backslash, drops bytes below 0x20 and keeps all
/// others.
std::string jsonString(std::string_view text);

/// The numbers as a JSON array without spaces, "[]" for none.
std::string jsonIntArray(std::span<const std::int32_t> numbers);

/// The description that oc_info() returns: one JSON object on one line, in a fixed order of keys.
/// `index` is the camera's position in the catalogue.
std::string cameraJson(std::int32_t index, const CameraInfo& camera);

}  // namespace orvane
