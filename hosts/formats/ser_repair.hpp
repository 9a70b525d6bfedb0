// Repairs recordings that were not finished.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "formats/ser_reader.hpp"
#include "system/file.hpp"

namespace orvane::host {

/// What a repair finds, and puts into the new file.
struct SerRepairFacts {
  std::int32_t promisedFrames = 0;  ///< in the damaged file's header
  std::int32_t frames = 0;          ///< whole frames, all of which are in the new file
  std::int32_t timedFrames = 0;     ///< those whose time is known; the others have the time 0
  std::int64_t cutBytes = 0;        ///< of a frame that was cut off, or of other remains
};

/// A recording that a killed program or a power failure has left. Its frames are in the file, but
/// the header may count others, and the time stamps may be missing. These are in its time journal.
class SerRepair {
 public:
  /// Finds what is there and changes nothing. Throws std::runtime_error with a sentence that names
  /// the file, if it cannot be read or is no SER file.
  explicit SerRepair(const std::filesystem::path& damaged);

  const SerRepairFacts& facts() const { return facts_; }

  /// False if the file is whole.
  bool isNeeded() const { return isNeeded_; }

  /// Writes the repaired recording into another file. `copied` is told how many bytes have been
  /// copied, and of how many. Throws std::runtime_error with a sentence that names a file.
  void write(const std::filesystem::path& repaired, Existing existing,
             const std::function<void(std::int64_t bytes, std::int64_t all)>& copied) const;

 private:
  void addJournal(const std::filesystem::path& journal, std::int64_t startUtc);

  InputFile file_;
  SerRepairFacts facts_;
  std::vector<std::int64_t> times_;  // one for each frame; 0 if unknown
  std::int64_t contentEnd_ = 0;      // of the header and the whole frames
  bool isNeeded_ = false;
};

}  // namespace orvane::host
