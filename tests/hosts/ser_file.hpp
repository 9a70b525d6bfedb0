// Reads and makes SER files, written from the format's description and without the programs' code.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvane::testing {

/// A number as it stands in a SER file: little-endian, like in the memory of both systems.
template <class Integer>
std::string serNumber(Integer value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

/// A header, by default of a file with one frame of 2 x 1 pixels of 8 bits.
struct SerHeader {
  std::int32_t colorId = 0;
  std::int32_t littleEndian = 0;
  std::int32_t width = 2;
  std::int32_t height = 1;
  std::int32_t depth = 8;
  std::int32_t frameCount = 1;
  std::string observer = {};  ///< up to the first NUL, like the two below
  std::string instrument = {};
  std::string telescope = {};
  std::int64_t startLocal = 0;
  std::int64_t startUtc = 0;

  std::string bytes() const;
};

struct SerFile : SerHeader {
  /// Reads the whole file. Throws std::runtime_error if it is too short for its own header.
  explicit SerFile(const std::filesystem::path& file);

  std::string fileId;
  std::int32_t luId = 0;
  std::vector<std::vector<std::uint8_t>> frames;
  std::vector<std::int64_t> timeStamps;  ///< none if there is no room for one for each frame
  std::int64_t unreadBytes = 0;          ///< after all that
};

}  // namespace orvane::testing
