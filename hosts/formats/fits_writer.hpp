// Writes FITS files with one image.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "imaging/frame_layout.hpp"
#include "imaging/region.hpp"
#include "system/file.hpp"

namespace orvane::host {

/// The contents of the FITS header.
struct FitsDescription {
  FrameLayout layout;
  std::chrono::system_clock::time_point start;  ///< of the exposure
  double exposureSeconds = 0;
  int gain = 0;
  int offset = 0;
  int bin = 1;
  std::optional<Region> region = {};  ///< of the camera's frame, if the image was cut out of one
  double pixelSizeUm = 0;             ///< of the sensor; left out if it is not a positive number
  std::optional<double> temperature;  ///< degrees Celsius
  std::string camera;                 ///< in these three, bytes other than ASCII become "?"
  std::string observer;               ///< left out if empty, like the telescope
  std::string telescope;
  std::string target = {};  ///< left out if empty, like the filter
  std::string filter = {};
};

/// The file's bytes for a frame of frameBytes(layout) bytes. Rows are stored from the top, as the
/// header says, 16-bit samples as signed numbers with BZERO 32768, RGB as three planes.
std::vector<std::uint8_t> fitsFile(std::span<const std::uint8_t> frame,
                                   const FitsDescription& description);

/// Writes that file. Throws std::runtime_error with a sentence that names it.
void writeFits(const std::filesystem::path& path, std::span<const std::uint8_t> frame,
               const FitsDescription& description, Existing existing = Existing::Refuse);

}  // namespace orvane::host
