// Reads SER files, written from the format's description and without the writer's code.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvane::testing {

struct SerFile {
  /// Reads the whole file. Throws std::runtime_error if it is too short for its own header.
  explicit SerFile(const std::filesystem::path& file);

  std::string fileId;
  std::int32_t luId = 0;
  std::int32_t colorId = 0;
  std::int32_t littleEndian = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t depth = 0;
  std::int32_t frameCount = 0;
  std::string observer;  ///< up to the first NUL, like the two below
  std::string instrument;
  std::string telescope;
  std::int64_t startLocal = 0;
  std::int64_t startUtc = 0;
  std::vector<std::vector<std::uint8_t>> frames;
  std::vector<std::int64_t> timeStamps;  ///< none if there is no room for one for each frame
  std::int64_t unreadBytes = 0;          ///< after all that
};

}  // namespace orvane::testing
