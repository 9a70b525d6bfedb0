// Repairs recordings that were not finished.
#include "formats/ser_repair.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <stdexcept>
#include <system_error>

#include "formats/ser_layout.hpp"
#include "formats/ser_writer.hpp"

namespace orvane::host {

namespace {

std::vector<std::uint8_t> trailerOf(const std::vector<std::int64_t>& times) {
  std::vector<std::uint8_t> trailer(times.size() * ser::timeStampSize);
  for (std::size_t frame = 0; frame < times.size(); ++frame) {
    ser::putInteger(trailer, frame * ser::timeStampSize, times[frame]);
  }
  return trailer;
}

}  // namespace

SerRepair::SerRepair(const std::filesystem::path& damaged) : file_(damaged) {
  const SerReader reader(damaged);
  const SerFacts& facts = reader.facts();
  const std::int64_t frames = facts.frames + facts.framesBehind;
  if (frames > std::numeric_limits<std::int32_t>::max()) {
    throw std::runtime_error(file_.name() + " has more frames than a SER file can hold.");
  }
  facts_.promisedFrames = facts.promisedFrames;
  facts_.frames = static_cast<std::int32_t>(frames);
  facts_.cutBytes = facts.unusedBytes;
  contentEnd_ = static_cast<std::int64_t>(ser::headerSize) +
                frames * static_cast<std::int64_t>(reader.frameBytes());

  const std::size_t count = static_cast<std::size_t>(frames);
  const bool hasTrailer = reader.trailer().size() >= count;
  times_ = reader.trailer();
  times_.resize(count);
  if (!hasTrailer) {
    addJournal(timeJournalOf(damaged), facts.startUtc);
  }
  facts_.timedFrames = static_cast<std::int32_t>(
      std::count_if(times_.begin(), times_.end(), [](std::int64_t time) { return time != 0; }));
  // Other programs may keep data of their own behind the time stamps.
  isNeeded_ = facts.isDamaged() || (!hasTrailer && (facts_.cutBytes > 0 || facts_.timedFrames > 0));
}

// Takes the times that are not known yet.
void SerRepair::addJournal(const std::filesystem::path& journal, std::int64_t startUtc) {
  std::error_code ignored;
  if (!std::filesystem::exists(journal, ignored)) {
    return;
  }
  const InputFile file(journal);
  // The last frame's time is written before the frame, so the journal may have one more.
  const std::size_t count =
      std::min(times_.size(), static_cast<std::size_t>(file.size()) / ser::timeStampSize);
  std::vector<std::uint8_t> bytes(count * ser::timeStampSize);
  file.readAt(0, bytes);
  for (std::size_t frame = 0; frame < count; ++frame) {
    // After a power failure, parts of a file may be 0.
    const auto time = ser::integerAt<std::int64_t>(bytes, frame * ser::timeStampSize);
    if (times_[frame] == 0 && isFrameTime(time, startUtc)) {
      times_[frame] = time;
    }
  }
}

void SerRepair::write(
    const std::filesystem::path& repaired, Existing existing,
    const std::function<void(std::int64_t bytes, std::int64_t all)>& copied) const {
  OutputFile file(repaired, existing);
  constexpr std::int64_t pieceSize = 4 << 20;
  std::vector<std::uint8_t> piece;
  for (std::int64_t at = 0; at < contentEnd_; at += static_cast<std::int64_t>(piece.size())) {
    piece.resize(static_cast<std::size_t>(std::min(pieceSize, contentEnd_ - at)));
    file_.readAt(at, piece);
    file.writeAt(at, piece);
    copied(at + static_cast<std::int64_t>(piece.size()), contentEnd_);
  }
  std::array<std::uint8_t, 4> count{};
  ser::putInteger(count, 0, facts_.frames);
  file.writeAt(static_cast<std::int64_t>(ser::offset::frameCount), count);
  if (facts_.timedFrames > 0) {
    file.writeAt(contentEnd_, trailerOf(times_));
  }
  file.close();
}

}  // namespace orvane::host
