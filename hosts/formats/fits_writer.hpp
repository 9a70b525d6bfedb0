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

namespace orvane::host {

/// What a FITS file says about its image.
struct FitsDescription {
  FrameLayout layout;
  std::chrono::system_clock::time_point start;  ///< of the exposure
  double exposureSeconds = 0;
  int gain = 0;
  int offset = 0;
  int bin = 1;
  double pixelSizeUm = 0;             ///< of the sensor; left out when it is no number
  std::optional<double> temperature;  ///< degrees Celsius
  std::string camera;                 ///< these three lose what is not ASCII
  std::string observer;               ///< left out when empty, like the telescope
  std::string telescope;
};

/// The file's bytes for a frame of frameBytes(layout) bytes. Rows are stored from the top, which
/// the header says; samples of 16 bits as FITS has them, signed, with their zero at 32768; RGB as
/// three planes.
std::vector<std::uint8_t> fitsFile(std::span<const std::uint8_t> frame,
                                   const FitsDescription& description);

/// Writes that file. Throws std::runtime_error with a sentence that names it.
void writeFits(const std::filesystem::path& path, std::span<const std::uint8_t> frame,
               const FitsDescription& description);

}  // namespace orvane::host
