// The text by which a camera is described to the host. Pure text: nothing is asked of any camera.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "catalogue/camera_info.hpp"

namespace orvane {

/// The text between double quotes: quote and backslash escaped, bytes below 0x20 left out, all
/// others as they are.
std::string jsonString(std::string_view text);

/// The numbers as a JSON array without blanks, "[]" for none.
std::string jsonIntArray(std::span<const std::int32_t> numbers);

/// The description that oc_info() returns: one JSON object on one line, in a fixed order of keys.
/// `index` is the camera's position in the catalogue.
std::string cameraJson(std::int32_t index, const CameraInfo& camera);

}  // namespace orvane
