// Writes PNG files.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "imaging/image.hpp"
#include "system/file.hpp"

namespace orvane::host {

/// The bytes of such a file, of an image with one or three channels. Throws std::runtime_error if
/// there is not enough memory.
std::vector<std::uint8_t> pngBytes(const ScreenImage& image);

/// Writes an image with one or three channels. Throws std::runtime_error with a sentence that names
/// the file.
void writePng(const std::filesystem::path& path, const ScreenImage& image,
              Existing existing = Existing::Refuse);

}  // namespace orvane::host
