// Writes PNG files. The only source file that contains the image library's code.
#include "formats/png_writer.hpp"

#include <cstdint>
#include <stdexcept>
#include <vector>

#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO
#include <stb_image_write.h>

namespace orvane::host {

namespace {

extern "C" void appendBytes(void* file, void* bytes, int count) {
  const auto* const begin = static_cast<const std::uint8_t*>(bytes);
  static_cast<std::vector<std::uint8_t>*>(file)->assign(begin, begin + count);
}

}  // namespace

std::vector<std::uint8_t> pngBytes(const ScreenImage& image) {
  std::vector<std::uint8_t> bytes;
  if (stbi_write_png_to_func(appendBytes, &bytes, image.width, image.height, image.channels,
                             image.samples.data(), 0) == 0) {
    throw std::runtime_error("There is not enough memory for the preview image.");
  }
  return bytes;
}

void writePng(const std::filesystem::path& path, const ScreenImage& image, Existing existing) {
  const std::vector<std::uint8_t> bytes = pngBytes(image);
  OutputFile file(path, existing);
  file.writeAt(0, bytes);
  file.close();
}

}  // namespace orvane::host
