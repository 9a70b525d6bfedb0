// Writes SER files, version 3: a header, frames of one size, and a time stamp for each frame.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "imaging/frame_layout.hpp"
#include "system/file.hpp"

namespace orvane::host {

/// What a SER file says about a recording.
struct SerDescription {
  FrameLayout layout;
  std::string observer;    ///< truncated to 40 bytes, like the two below
  std::string instrument;  ///< the camera
  std::string telescope;
  std::int64_t startLocal = 0;  ///< serLocalTicks()
  std::int64_t startUtc = 0;    ///< serTicks()
};

/// The time journal of a recording: the frames' time stamps, 8 bytes each, before the trailer is
/// written. It has its own file beside the recording, and lets SerRepair rebuild the trailer.
std::filesystem::path timeJournalOf(const std::filesystem::path& recording);

/// A SER file that is being recorded. It appears with its first frame and is valid from then on;
/// without a frame there is no file, and an existing one stays. checkpoint() updates the frame
/// count in its header. After a crash, SerRepair recovers the frames since the last checkpoint.
///
/// Rows are stored from the top, samples of 16 bits little-endian.
///
/// A 16-bit recording always states a depth of 16 bits. The samples of some makers are
/// left-aligned, those of others right-aligned, and the library does not tell which. With a smaller
/// depth, readers would clip or shift left-aligned samples. With 16, right-aligned samples only
/// look dark until they are stretched.
///
/// Every member throws std::runtime_error with a sentence that names the file.
class SerWriter {
 public:
  SerWriter(const std::filesystem::path& path, const SerDescription& description,
            Existing existing = Existing::Refuse);

  /// Finishes the file as close() does, but ignores failures.
  ~SerWriter();
  SerWriter(const SerWriter&) = delete;
  SerWriter& operator=(const SerWriter&) = delete;

  /// Appends a frame. After a failure the file still holds all the frames before it.
  void addFrame(std::span<const std::uint8_t> frame, std::int64_t utcTicks);

  /// Updates the frame count in the header.
  void checkpoint();

  /// Writes the time stamps and the final frame count, closes the file and removes the journal. If
  /// there is no room for the time stamps, the file is valid without them, and the journal stays.
  void close();

  /// How many frames have been written in full.
  std::int32_t frameCount() const { return static_cast<std::int32_t>(timeStamps_.size()); }

  /// The most frames that a SER file can hold.
  static constexpr std::int32_t maxFrameCount = 0x7FFFFFFF;

 private:
  void noteTime(std::int64_t utcTicks);
  void writeFrameCount(std::int32_t count);
  void publish();
  void finish();
  std::int64_t framesEnd() const;

  const std::filesystem::path journalPath_;
  OutputFile file_;
  std::optional<OutputFile> journal_;
  bool hasJournal_ = true;  // false once it cannot be written
  std::size_t frameBytes_;
  std::vector<std::int64_t> timeStamps_;
  bool isOpen_ = true;
};

}  // namespace orvane::host
