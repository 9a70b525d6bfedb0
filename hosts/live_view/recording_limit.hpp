// When a recording ends by itself.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace orvane::host {

/// Whatever comes first ends the recording; without either, the user does.
struct RecordingLimit {
  std::optional<std::int64_t> frames;
  std::optional<std::int64_t> microseconds;

  friend bool operator==(const RecordingLimit&, const RecordingLimit&) = default;
};

/// The limit after `now` when the user steps through them: none, the one of the command line, and
/// usual times up to ten minutes; then again none.
RecordingLimit nextLimit(const RecordingLimit& now, const RecordingLimit& given);

/// "500 frames or 1.5 s", "2 min"; "" for none.
std::string limitText(const RecordingLimit& limit);

}  // namespace orvane::host
