// Writes PNG files.
#pragma once

#include <filesystem>

#include "imaging/image.hpp"
#include "system/file.hpp"

namespace orvane::host {

/// Writes an image with one or three channels. Throws std::runtime_error with a sentence that names
/// the file.
void writePng(const std::filesystem::path& path, const ScreenImage& image,
              Existing existing = Existing::Refuse);

}  // namespace orvane::host
