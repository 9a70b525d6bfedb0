// Writes SER files, version 3: a header, frames of one size, and a time stamp for each frame.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "imaging/frame_layout.hpp"
#include "system/output_file.hpp"

namespace orvane::host {

/// What a SER file says about a recording.
struct SerDescription {
  FrameLayout layout;
  std::string observer;    ///< cut to 40 bytes, like the two below
  std::string instrument;  ///< the camera
  std::string telescope;
  std::int64_t startLocal = 0;  ///< serLocalTicks()
  std::int64_t startUtc = 0;    ///< serTicks()
};

/// A SER file that is being recorded. It is valid at any time: the frame count in its header is
/// brought up to date by checkpoint(), and the frames beyond it are all that a crash costs.
///
/// Rows are stored from the top. Samples of 16 bits are stored little-endian with the header's
/// "LittleEndian" at 0: the programs in use read that field the other way round from what its name
/// says.
///
/// A 16-bit recording always states a depth of 16 bits. Some makers' samples fill the 16 bits from
/// the top, others' use only the low bits, and the library does not say which; a depth of less than
/// 16 makes readers clip or shift samples of the first kind, while one of 16 only makes those of
/// the second kind look dark until they are stretched, and keeps every number.
///
/// Every member throws std::runtime_error with a sentence that names the file.
class SerWriter {
 public:
  SerWriter(const std::filesystem::path& path, const SerDescription& description);

  /// Finishes the file as close() does, but quietly.
  ~SerWriter();
  SerWriter(const SerWriter&) = delete;
  SerWriter& operator=(const SerWriter&) = delete;

  /// Appends a frame. After a failure the file still holds all the frames before it.
  void addFrame(std::span<const std::uint8_t> frame, std::int64_t utcTicks);

  /// Brings the frame count in the header up to date.
  void checkpoint();

  /// Writes the time stamps and the final frame count and closes the file. Where there is no room
  /// for the time stamps the file is valid without them.
  void close();

  /// How many frames have been written in full.
  std::int32_t frameCount() const { return static_cast<std::int32_t>(timeStamps_.size()); }

  /// The most frames that a SER file can hold.
  static constexpr std::int32_t maxFrameCount = 0x7FFFFFFF;

 private:
  void finish();
  std::int64_t framesEnd() const;

  OutputFile file_;
  std::size_t frameBytes_;
  std::vector<std::int64_t> timeStamps_;
  bool isOpen_ = true;
};

}  // namespace orvane::host
